// PRINT lists: items, print functions and separators as a tree parsed once,
// listed back and executed onto a print sink, plus the layout rules they share.
// Inherited names: PrintSpecList is the base of a PRINT list's items,
// separator groups and end markers (each one part of the statement's list).
#pragma once
#include <memory>
#include <string>
#include <string_view>

#include "lex/token.h"

class PrintSink;
class ExprContext;

class PrintSpecList {
 public:
  // Kind tags of the nodes that are neither expressions nor print functions.
  static constexpr int kStringItem = 8192;
  static constexpr int kNewLineEnd = 29, kSemiEnd = 30, kCommaEnd = 31;

  virtual ~PrintSpecList() = default;
  virtual size_t Size() const = 0;
  virtual void List(std::string& out) const = 0;
  virtual int Kind() const = 0;
  virtual void Execute(PrintSink& out) = 0;
};
using PrintSpecPtr = std::unique_ptr<PrintSpecList>;

// Parses "item {[,|;] item} [,|;]" up to the end of the statement into the
// items' tree and the end marker that closes it. False with the parse error
// set (position restored) when an item is missing or malformed.
bool ParsePrintList(ExprContext& prog, PrintSpecPtr* items, PrintSpecPtr* end);
// TAB, SPA or LIN with its argument, for lists that take PRINT's functions
// among other items (PRINT # to a text file). Null with the position restored
// when none is next; the parse error is then set only for a malformed one.
PrintSpecPtr ParsePrintFunctionItem(ExprContext& prog);

// TAB, SPA or LIN with its parenthesised argument, the name (code) consumed.
PrintSpecPtr ParsePrintFunction(ExprContext& prog, TokenCode code);

// Layout steps shared by PRINT, PRINT USING and MAT PRINT.
void NewPrintLine(PrintSink& out);  // CR then LF
// Starts a new line when the item of `reserve` characters would pass the width.
void FoldLine(PrintSink& out, int reserve);
void CommaZone(PrintSink& out);  // next 15-column zone, or a new line past column 60
void PrintText(PrintSink& out, std::string_view text);  // folded first when it would not fit
