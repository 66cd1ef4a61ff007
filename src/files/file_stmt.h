// What the statements on one file number share: READ #, PRINT #, UPDATE #,
// ADVANCE, LOCK in file_io.cpp and MAT READ #, MAT PRINT # in mat_file.cpp.
#pragma once
#include <string>

#include "expr/numeric_exp.h"
#include "files/file_units.h"
#include "stmt/statement.h"

class StmtContext;

// The open unit a file number expression names; null with the error set.
FileUnit* UnitOf(FileUnits& units, NumericExp& number);
// "KEYWORD #n" or "KEYWORD #n,r" as a statement lists it.
void ListFileRecord(std::string& out, const char* keyword, const NumericExpPtr& number,
                    const NumericExpPtr& record);

// "#" and the file number expression; kMissingFileNumber when either is missing.
NumericExpPtr ParseFileNumber(StmtContext& p);
// "#n" and, when allowed, ",r"; kMissingRecordNumber for a "," without one.
bool ParseFileRecord(StmtContext& p, bool recordAllowed, NumericExpPtr* number,
                     NumericExpPtr* record);
// ";" before a list; kMissingSemicolon when it is missing.
bool ExpectSemicolon(StmtContext& p);

// A statement on one file number: the end of the file goes to the ON END #
// target, or fails with "End-of-file".
class FileStmt : public Statement {
 protected:
  FileStmt(FileUnits& units, NumericExpPtr number) : units_(units), number_(std::move(number)) {}
  Statement* Finish(FileUnit* unit, FileUnit::Result result);
  // The unit, moved to the record when the statement names one (which must
  // then be writable for a write); null with *next set where the run goes.
  FileUnit* Position(NumericExp* record, bool write, Statement** next);
  size_t BaseSize() const { return number_->Size(); }

  FileUnits& units_;
  NumericExpPtr number_;
};
