// Text files: plain lines of bytes, read and written through the file numbers
// as the old systems' ASCII files were. A line ends with LF or CR LF; the last
// one may have no end. Bytes pass unchanged, NUL included. Output is buffered
// and written at CLOSE, at the end of the run, before input and when the
// buffer fills; reading follows the file from its start and sees what this
// process wrote to it.
#pragma once
#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/base_list.h"
#include "base/print_sink.h"
#include "files/data_file.h"

// One item of a line as READ # takes it: a number, or a string (quoted, or
// the text up to the next comma, blanks around it dropped).
struct TextItem {
  bool isNumber = false;
  float number = 0;
  std::string_view text;  // a number's text as written; valid until the file is used again
  size_t length = 0;      // bytes of the line the item and its comma take
  bool endsLine = false;  // no comma follows: the line is used up
};

// Cuts the item at the start of rest, the rest of a line: false when only
// blanks are left. A number may have a sign, a fraction, an exponent, or be
// 0x hexadecimal, and must fit a 32-bit float; anything else is a string. A
// quoted string takes "" as one quote; one not closed, or followed by text
// before the comma, is text as written. scratch holds what needs unquoting.
bool CutTextItem(std::string_view rest, TextItem* item, std::string* scratch);

class TextFile final : public PrintSink, public BaseNode_T<TextFile> {
 public:
  // How the next read went: kOverflow is a line longer than the longest string.
  enum Read { kOk, kEnd, kOverflow, kError };

  TextFile() = default;
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  ~TextFile() { Close(); }

  // Opens a file that is not a data file; create makes a missing one (with the
  // name as typed), and refuses a data file. Writing replaces the old text from
  // the first write on, or with append adds to its end. *note as for DataFile.
  OpenStatus Open(const std::string& name, bool readOnly, bool create, bool append,
                  std::string* note);
  // Writes what is buffered and lets the file go: 0, or the error of the write.
  int Close();
  bool IsOpen() const { return fd_ >= 0; }
  bool Writable() const { return writable_; }
  dev_t Device() const { return device_; }
  ino_t Inode() const { return inode_; }

  // The rest of the line at the read position, without its line end; valid
  // until the file is used again. Nothing moves until Take.
  Read PeekLine(std::string_view* line);
  // The next item, across line ends (a line of blanks holds none, a comma at
  // a line's end one empty string). Nothing moves until Take.
  Read PeekItem(TextItem* item);
  void TakeLine();
  void TakeItem(const TextItem& item);
  uint32_t LineNumber() const { return line_; }  // of the read position, from 1
  uint32_t ItemNumber() const { return item_; }  // in that line, from 1

  // A PRINT # or MAT PRINT # begins: from now on the file is being written,
  // its old text replaced unless it was opened to append.
  void StartWriting();
  // Output: PRINT's layout onto the file. A line has no width, so it is never
  // folded and a comma always moves to the next zone.
  void Print(char c) override;
  void Print(std::string_view text) override;
  int64_t Column() const override { return column_; }
  int Width() const override { return 0; }
  int CursorX() const override { return 0; }
  // Writes what is buffered: 0, or the error of a write that failed (also
  // kept for Error() when output flushed itself).
  int Flush();
  int Error() const { return error_; }
  void ClearError() { error_ = 0; }

  // Every open text file's output: before input, a wait or the process's end.
  static void FlushAll();

 private:
  bool Fill();  // more of the file into the input: false at its end or on an error
  void Write(bool all);

  int fd_ = -1;
  bool writable_ = false;
  bool append_ = false;
  bool wrote_ = false;      // PRINT # began since it was opened
  bool replacing_ = false;  // written to since it was opened: the old text is gone
  dev_t device_ = 0;
  ino_t inode_ = 0;
  int error_ = 0;

  std::unique_ptr<char[]> in_;
  size_t inSize_ = 0;        // bytes in_ holds room for
  size_t inPos_ = 0;         // the read position in in_
  size_t inEnd_ = 0;         // bytes of in_ read from the file
  off_t inOffset_ = 0;       // where in_ starts in the file
  size_t lineBytes_ = 0;     // of the line last peeked, its line end included
  off_t lineEnd_ = -1;       // where in the file the line end last found lies
  bool afterComma_ = false;  // the read position follows a comma in its line
  uint32_t line_ = 1;
  uint32_t item_ = 1;
  std::string scratch_;  // an unquoted item

  std::string out_;      // buffered output
  off_t outOffset_ = 0;  // where it goes when not appending
  int64_t column_ = 0;
};
