#include "program/statement_table.h"

#include <cstddef>

#include "files/file_parsers.h"
#include "lex/keywords.h"
#include "matrix/mat.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

using namespace stmt_kind;

// Every statement keyword of the scanner's table has a row here; a test holds
// the two tables together.
constexpr KeywordStmtRow kStatementTable[] = {
    {tok::kLet, ParseLet, 0},
    {tok::kPrint, ParsePrint, 0},
    {tok::kIf, ParseIf, 0},
    {tok::kGoto, ParseGoto, 0},
    {tok::kGosub, ParseGosub, 0},
    {tok::kReturn, ParseReturn, 0},
    {tok::kStop, ParseStop, 0},
    {tok::kEnd, ParseEnd, 0},
    {tok::kRem, ParseRem, kInert},
    {tok::kFor, ParseFor, kBlock},
    {tok::kNext, ParseNext, kBlock},
    {tok::kDim, ParseDim, kInert},
    {tok::kDef, ParseDef, kInert},
    {tok::kInput, ParseInput, 0},
    {tok::kRead, ParseRead, 0},
    {tok::kData, ParseData, kInert},
    {tok::kEnter, ParseEnter, 0},
    {tok::kRestore, ParseRestore, 0},
    {tok::kMat, ParseMat, 0},
    {tok::kLinput, ParseLinput, 0},
    {tok::kConvert, ParseConvert, 0},
    {tok::kChain, ParseChain, 0},
    {tok::kSpawn, nullptr, kUnsupported},
    {tok::kImage, ParseImage, kInert},
    {tok::kCom, ParseCom, kInert},
    {tok::kElse, ParseElse, kBlock},
    {tok::kEndIf, ParseEndIf, kBlock},
    {tok::kWhile, ParseWhile, kBlock},
    {tok::kEndWhile, ParseEndWhile, kBlock},
    {tok::kRepeat, ParseRepeat, kBlock},
    {tok::kUntil, ParseUntil, kBlock},
    {tok::kSelect, ParseSelect, kBlock},
    {tok::kCase, ParseCase, kBlock},
    {tok::kEndSelect, ParseEndSelect, kBlock},
    {tok::kSleep, ParseSleep, 0},
    {tok::kOn, ParseOn, 0},
    {tok::kOff, ParseOff, 0},
    {tok::kAssign, ParseAssign, 0},
    {tok::kClose, ParseClose, 0},
    {tok::kFiles, ParseFiles, kInert},
    {tok::kOpen, nullptr, kUnsupported},
    {tok::kAdvance, ParseAdvance, 0},
    {tok::kUpdate, ParseUpdate, 0},
    {tok::kLock, ParseLock, 0},
    {tok::kUnlock, ParseUnlock, 0},
    {tok::kCreate, ParseCreate, 0},
    {tok::kPurge, ParsePurge, 0},
    {tok::kExtend, nullptr, kUnsupported},
    {tok::kSystem, nullptr, kUnsupported},
    {tok::kWindow, ParseWindow, 0},
    {tok::kShow, ParseShow, 0},
    {tok::kHide, ParseHide, 0},
    {tok::kMoveTo, ParseMoveTo, 0},
    {tok::kLineTo, ParseLineTo, 0},
    {tok::kColor, ParseColor, 0},
    {tok::kRandomize, ParseRandomize, 0},
    {tok::kTrace, ParseTrace, 0},
    {tok::kTron, ParseTron, 0},
    {tok::kTroff, ParseTroff, 0},
};

// A data-file form: the keyword, and the word after it when there is one,
// followed by "#". Taken with those words consumed, before the keyword's row.
struct FileFormRow {
  TokenCode keyword;
  TokenCode second;  // 0: "#" follows the keyword itself
  ParseRoutine parse;
};

constexpr FileFormRow kFileForms[] = {
    {tok::kRead, 0, ParseReadFile},
    {tok::kLinput, 0, ParseLinputFile},
    {tok::kPrint, 0, ParsePrintFile},
    {tok::kUpdate, 0, ParseUpdateFile},
    {tok::kClose, 0, ParseCloseFile},
    {tok::kMat, tok::kRead, ParseMatReadFile},
    {tok::kMat, tok::kPrint, ParseMatPrintFile},
    {tok::kOn, tok::kEnd, ParseOnEndFile},
    {tok::kIf, tok::kEnd, ParseOnEndFile},
    {tok::kOff, tok::kEnd, ParseOffEndFile},
};

// A statement word (RANDOMIZE) at the statement's start, consumed; else 0.
TokenCode AcceptStatementWord(StmtContext& p) {
  TokenCode code = p.GetToken();
  TokenCode lexClass = p.Current().lexClass;
  if ((lexClass == tok::kWord || lexClass == tok::kWordBracket) && code >= tok::kFirstCoded)
    if (const BasicToken* word = FindStatementWord(p.Text())) return word->Code();
  p.BackUp();
  return 0;
}

std::nullptr_t RefuseAfterThen() {
  if (!g_err.parse) SetParseError(err::kNotAfterThen);
  return nullptr;
}

}  // namespace

const KeywordStmtRow* StatementRowOf(TokenCode keyword) {
  for (const auto& row : kStatementTable)
    if (row.code == keyword) return &row;
  return nullptr;
}

bool RefusedAfterThen(TokenCode keyword) {
  const KeywordStmtRow* row = StatementRowOf(keyword);
  return row && (row->flags & (kBlock | kInert)) != 0;
}

StatementPtr ParseStatement(StmtContext& p) {
  TokenCode code = p.GetToken();
  if (tok::Category(code) != tok::kStatement) {
    p.BackUp();
    if (StatementPtr go = ParseClassicGo(p)) return go;
    if (StatementPtr let = ParseImpliedLet(p)) return let;
    ErrorCode error = g_err.parse;
    // A statement word that does not read as an assignment is its statement.
    if (TokenCode word = AcceptStatementWord(p)) {
      SetParseError(0);
      return ParseKeywordStatement(p, word);
    }
    // A word that fails as an assignment and begins with REM is a remark.
    if (StatementPtr remark = ParseRemWord(p)) {
      SetParseError(0);
      return remark;
    }
    SetParseError(error);
    return nullptr;
  }
  return ParseKeywordStatement(p, code);
}

StatementPtr ParseKeywordStatement(StmtContext& p, TokenCode keyword) {
  const KeywordStmtRow* row = StatementRowOf(keyword);
  if (!row || !row->parse) {
    SetParseError(err::kNotSupported);
    return nullptr;
  }
  for (const FileFormRow& form : kFileForms) {
    if (form.keyword != keyword) continue;
    size_t mark = p.Mark();
    if ((!form.second || p.Accept(form.second)) && p.Peek() == tok::kHash) return form.parse(p);
    p.Restore(mark);
  }
  return row->parse(p);
}

StatementPtr ParseStatementAfterThen(StmtContext& p) {
  if (RefusedAfterThen(p.Peek())) return RefuseAfterThen();
  StatementPtr stmt = ParseStatement(p);
  if (!stmt) return nullptr;
  // END IF, END WHILE and END SELECT start with END.
  if (RefusedAfterThen(stmt->Code())) return RefuseAfterThen();
  return stmt;
}
