// The sixteen file numbers of a program and what a unit does with its file: a
// data file with a pointer (record, word, item) that moves serially through
// the records or stays bound to one, or a text file read by lines and items;
// and the end-of-file branch of ON END #.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "base/errors.h"
#include "files/data_file.h"
#include "files/text_file.h"

class Statement;
class Target;

class FileUnit final {
 public:
  // How a move or transfer ended: kEnd is the end-of-file condition (the ON END #
  // branch, or "End-of-file"); after kFail a run-time error code is set.
  enum Result { kOk, kEnd, kFail };

  // What ASSIGN asks for: whatever file the name is, or a text file made when
  // missing, written from its start (kText) or at its end (kAppend).
  enum class Ask { kAny, kText, kAppend };

  bool IsOpen() const { return file_.IsOpen() || text_.IsOpen(); }
  bool IsText() const { return text_.IsOpen(); }
  const DataFile& File() const { return file_; }
  TextFile& Text() { return text_; }
  const TextFile& Text() const { return text_; }
  // A data file, else (kAny) a file that is no data file as a text file.
  // *note gets what a failure to find the name adds to its message.
  OpenStatus Open(const std::string& path, bool readOnly, Ask ask = Ask::kAny,
                  std::string* note = nullptr);
  // Keeps the end branch: it belongs to the number. The error code of text
  // that could not be written, else 0.
  ErrorCode Close();

  // To the start of a record: kEnd past the last one, kFail (kArgOutOfRange)
  // below 1 or past the records a float can number one by one.
  Result Seek(float record);
  // The next item into target. Bound operations stay in the record they
  // started in; serial ones pass end-of-record marks into the next records.
  // A text file's items are read as INPUT reads typed ones.
  Result Read(Target& target, bool bound);
  // LINPUT #: a text file's next line into target, whole.
  Result ReadLine(Target& target);
  // The error of a text file's output that failed, once; kOk when none did.
  Result TextWritten();
  Result WriteNumber(float value, bool bound);
  Result WriteString(std::string_view text, bool bound);
  // An end-of-file mark at the pointer, which stays on it.
  Result WriteEndFile();
  // Ends a PRINT: an end-of-record mark after the items when endRecord (the
  // pointer stays on it, so the next PRINT writes over it), then writes what
  // the statement changed, all of it or, should the process be killed, none.
  Result FinishWrite(bool endRecord);
  // Replaces the next item with a value of its type; a string keeps its length.
  Result UpdateNumber(float value);
  Result UpdateString(std::string_view text);
  // Skips up to count items; *left gets how many remained at the end of the file.
  Result Skip(uint64_t count, uint64_t* left);

  // TYP: 1 number, 2 string, 3 end of file, 4 end of record; acrossRecords
  // looks past end-of-record marks (TYP of a negative file number). A text
  // file gives 1, 2 or 3.
  float Type(bool acrossRecords);
  // REC and ITM; for a text file the line the reading stands in and the item in it.
  uint32_t Record() const { return IsText() ? text_.LineNumber() : record_; }
  uint32_t Item() const { return IsText() ? text_.ItemNumber() : item_; }

  // LOCK #n and UNLOCK #n. kFail is set only for a lock that cannot be had;
  // a wait broken by Ctrl+C returns kEnd, the break left for the run.
  Result Lock();
  Result Unlock();

  Statement* endTarget = nullptr;  // ON END # target, or null

 private:
  // The item at the pointer, serially or bound; the pointer moves only across records.
  Result Next(FileItem* item, bool bound);
  // Makes room for an item of size words at the pointer.
  Result Room(uint32_t size, bool bound);
  Result Load();
  Result Failed(uint32_t code);
  Result FileFailed();  // the error of the file's last failure
  Result TextFailed(TextFile::Read read);
  Result ReadText(Target& target);
  Result RecordsOnly();  // kNotOnAsciiFile for a text file, else kOk
  void Enter(uint32_t record);

  DataFile file_;
  TextFile text_;
  uint32_t record_ = 1;  // 1-based
  uint32_t word_ = 0;    // next word in the record
  uint32_t item_ = 1;    // number of the next item in the record, for ITM
  bool entered_ = true;  // the pointer entered the record: it is read afresh
  std::string scratch_;  // a string item copied out before it is stored
};

class FileUnits final {
 public:
  static constexpr int kUnits = 16;

  // The open unit a file number names; null with kBadFileNumber (not 1 to 16)
  // or kFileNotOpen raised.
  FileUnit* OpenUnit(float number);
  // The unit of a file number, open or not; null with kBadFileNumber raised.
  FileUnit* Unit(float number);
  FileUnit& operator[](int index) { return units_[index]; }
  // True when one of the units has the file open.
  bool Holds(dev_t device, ino_t inode) const;
  // The error code of the first text file whose output could not be written, else 0.
  ErrorCode CloseAll();

  int declared = 0;  // file numbers given out by the FILES statements linked so far

 private:
  FileUnit units_[kUnits];
};
