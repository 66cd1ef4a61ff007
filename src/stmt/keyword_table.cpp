#include "shell/program.h"
#include "stmt/parsers.h"

namespace {

struct KeywordStmtRow {
  const char* keyword;
  TokenCode code;
  ParseRoutine parse;  // null: accepted only as text, the line is kept as a bad line
};

constexpr KeywordStmtRow kStatementTable[] = {
    {"LET", 0xF00A, ParseLet},
    {"PRINT", 0xF019, ParsePrint},
    {"IF", 0xF00B, ParseIf},
    {"GOTO", 0xF00C, ParseGoto},
    {"GOSUB", 0xF00D, ParseGosub},
    {"RETURN", 0xF00E, ParseReturn},
    {"STOP", 0xF011, ParseStop},
    {"END", 0xF012, ParseEnd},
    {"REM", 0xF01B, ParseRem},
    {"FOR", 0xF00F, ParseFor},
    {"NEXT", 0xF010, ParseNext},
    {"DIM", 0xF01C, ParseDim},
    {"DEF", 0xF021, ParseDef},
    {"INPUT", 0xF016, ParseInput},
    {"READ", 0xF014, ParseRead},
    {"DATA", 0xF013, ParseData},
    {"ENTER", 0xF017, nullptr},
    {"RESTORE", 0xF015, ParseRestore},
    {"MAT", 0xF023, nullptr},
    {"LINPUT", 0xF018, nullptr},
    {"CONVERT", 0xF022, nullptr},
    {"CHAIN", 0xF01E, nullptr},
    {"SPAWN", 0xF01F, nullptr},
    {"IMAGE", 0xF01A, nullptr},
    {"COM", 0xF01D, nullptr},
    {"ELSE", 0xF033, ParseElse},
    {"ENDIF", 0xF034, ParseEndIf},
    {"WHILE", 0xF035, ParseWhile},
    {"ENDWHILE", 0xF036, ParseEndWhile},
    {"REPEAT", 0xF037, ParseRepeat},
    {"UNTIL", 0xF038, ParseUntil},
    {"SELECT", 0xF039, ParseSelect},
    {"CASE", 0xF03A, ParseCase},
    {"ENDSELECT", 0xF03B, ParseEndSelect},
    {"SLEEP", 0xF03C, ParseSleep},
    {"ON", 0xF025, ParseOn},
    {"OFF", 0xF026, ParseOff},
    {"ASSIGN", 0xF028, nullptr},
    {"CLOSE", 0xF031, nullptr},
    {"FILES", 0xF027, nullptr},
    {"OPEN", 0xF030, nullptr},
    {"ADVANCE", 0xF02B, nullptr},
    {"UPDATE", 0xF02C, nullptr},
    {"LOCK", 0xF02D, nullptr},
    {"UNLOCK", 0xF02E, nullptr},
    {"CREATE", 0xF029, nullptr},
    {"PURGE", 0xF02A, nullptr},
    {"EXTEND", 0xF02F, nullptr},
    {"SYSTEM", 0xF024, nullptr},
    {"WINDOW", 0xF03D, nullptr},
    {"SHOW", 0xF03E, nullptr},
    {"HIDE", 0xF03F, nullptr},
    {"MOVETO", 0xF040, nullptr},
    {"LINETO", 0xF041, nullptr},
    {"COLOR", 0xF042, nullptr},
};

}  // namespace

ParseRoutine RoutineOf(TokenCode keyword) {
  for (const auto& row : kStatementTable)
    if (row.code == keyword) return row.parse;
  return nullptr;
}

StatementPtr ParseStatement(Program& p) {
  TokenCode code = p.GetToken();
  if (tok::Category(code) != tok::kStatement) {
    p.BackUp();
    return ParseImpliedLet(p);
  }
  ParseRoutine parse = RoutineOf(code);
  if (!parse) {
    SetParseError(err::kNotSupported);
    return nullptr;
  }
  return parse(p);
}
