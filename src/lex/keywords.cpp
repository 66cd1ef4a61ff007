#include "lex/keywords.h"

#include <memory>
#include <vector>

namespace {

// Loaded in this order; lookup takes the first match in a bucket.
constexpr KeywordRow kStatements[] = {
    {"LET", tok::kLet},
    {"PRINT", tok::kPrint},
    {"IF", tok::kIf},
    {"GOTO", tok::kGoto},
    {"GOSUB", tok::kGosub},
    {"RETURN", tok::kReturn},
    {"STOP", tok::kStop},
    {"END", tok::kEnd},
    {"REM", tok::kRem},
    {"FOR", tok::kFor},
    {"NEXT", tok::kNext},
    {"DIM", tok::kDim},
    {"DEF", tok::kDef},
    {"INPUT", tok::kInput},
    {"READ", tok::kRead},
    {"DATA", tok::kData},
    {"ENTER", tok::kEnter},
    {"RESTORE", tok::kRestore},
    {"MAT", tok::kMat},
    {"LINPUT", tok::kLinput},
    {"CONVERT", tok::kConvert},
    {"CHAIN", tok::kChain},
    {"SPAWN", tok::kSpawn},
    {"IMAGE", tok::kImage},
    {"COM", tok::kCom},
    {"ELSE", tok::kElse},
    {"ENDIF", tok::kEndIf},
    {"WHILE", tok::kWhile},
    {"ENDWHILE", tok::kEndWhile},
    {"REPEAT", tok::kRepeat},
    {"UNTIL", tok::kUntil},
    {"SELECT", tok::kSelect},
    {"CASE", tok::kCase},
    {"ENDSELECT", tok::kEndSelect},
    {"SLEEP", tok::kSleep},
    {"ON", tok::kOn},
    {"OFF", tok::kOff},
    {"ASSIGN", tok::kAssign},
    {"CLOSE", tok::kClose},
    {"FILES", tok::kFiles},
    {"OPEN", tok::kOpen},
    {"ADVANCE", tok::kAdvance},
    {"UPDATE", tok::kUpdate},
    {"LOCK", tok::kLock},
    {"UNLOCK", tok::kUnlock},
    {"CREATE", tok::kCreate},
    {"PURGE", tok::kPurge},
    {"EXTEND", tok::kExtend},
    {"SYSTEM", tok::kSystem},
    {"WINDOW", tok::kWindow},
    {"SHOW", tok::kShow},
    {"HIDE", tok::kHide},
    {"MOVETO", tok::kMoveTo},
    {"LINETO", tok::kLineTo},
    {"COLOR", tok::kColor},
    {"TRACE", tok::kTrace},
    {"TRON", tok::kTron},
    {"TROFF", tok::kTroff},
};

// Keywords only where a statement starts; RANDOM is the older spelling.
constexpr KeywordRow kStatementWords[] = {
    {"RANDOMIZE", tok::kRandomize},
    {"RANDOM", tok::kRandomize},
};

constexpr KeywordRow kSecondary[] = {
    {"USING", tok::kUsing}, {"ERROR", tok::kError}, {"STEP", tok::kStep}, {"THEN", tok::kThen},
    {"TO", tok::kTo},       {"OF", tok::kOf},       {"RR", tok::kRr},     {"WR", tok::kWr},
    {"ZER", tok::kZer},     {"CON", tok::kCon},     {"IDN", tok::kIdn},   {"TRN", tok::kTrn},
    {"INV", tok::kInv},     {"DO", tok::kDo},       {"NR", tok::kNr},
};

constexpr KeywordRow kFunctions[] = {
    {"ABS", tok::kFnAbs},  {"ATN", tok::kFnAtn},     {"BRK", tok::kFnBrk},
    {"COS", tok::kFnCos},  {"EXP", tok::kFnExp},     {"INT", tok::kFnInt},
    {"ITM", tok::kFnItm},  {"LOG", tok::kFnLog},     {"REC", tok::kFnRec},
    {"RND", tok::kFnRnd},  {"SGN", tok::kFnSgn},     {"SIN", tok::kFnSin},
    {"SQR", tok::kFnSqr},  {"TAN", tok::kFnTan},     {"TIM", tok::kFnTim},
    {"TID", tok::kFnTid},  {"TYP", tok::kFnTyp},     {"FIX", tok::kFnFix},
    {"SYS", tok::kFnSys},  {"PI", tok::kFnPi},       {"CHR$", tok::kFnChr},
    {"UPS$", tok::kFnUps}, {"LEFT$", tok::kFnLeft},  {"RIGHT$", tok::kFnRight},
    {"MID$", tok::kFnMid}, {"DEC$", tok::kFnDecStr}, {"LEN", tok::kFnLen},
    {"NUM", tok::kFnNum},  {"ASC", tok::kFnNum},     {"POS", tok::kFnPos},
    {"DEC", tok::kFnDec},  {"LIN", tok::kFnLin},     {"SPA", tok::kFnSpa},
    {"TAB", tok::kFnTab},  {"CTL", tok::kFnCtl},     {"VER", tok::kFnVer},
};

constexpr KeywordRow kOperators[] = {
    {"MIN", tok::kMin}, {"MAX", tok::kMax}, {"AND", tok::kAnd}, {"OR", tok::kOr},
    {"XOR", tok::kXor}, {"NOT", tok::kNot}, {"IMP", tok::kImp}, {"MOD", tok::kMod},
    {"DIV", tok::kDiv}, {"EQV", tok::kEqv},
};

struct KeywordTable {
  std::vector<std::unique_ptr<BasicToken>> buckets[kOtherBucket + 1];
  std::vector<std::unique_ptr<BasicToken>> statementWords;

  KeywordTable() {
    for (const auto& row : kStatements) Add(row);
    for (const auto& row : kSecondary) Add(row);
    for (const auto& row : kFunctions) Add(row);
    for (const auto& row : kOperators) Add(row);
    for (const auto& row : kStatementWords)
      statementWords.push_back(std::make_unique<BasicToken>(row));
  }
  void Add(const KeywordRow& row) {
    buckets[BucketOf(row.name)].push_back(std::make_unique<BasicToken>(row));
  }
};

const KeywordTable& Table() {
  static const KeywordTable table;
  return table;
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

}  // namespace

int BucketOf(std::string_view name) {
  if (name.empty()) return kOtherBucket;
  char c = name[0];
  if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return c >= 'A' && c <= 'Z' ? c - 'A' : kOtherBucket;
}

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (Lower(a[i]) != Lower(b[i])) return false;
  return true;
}

const BasicToken* FindKeyword(std::string_view word) {
  for (const auto& entry : Table().buckets[BucketOf(word)])
    if (SameName(entry->Name(), word)) return entry.get();
  return nullptr;
}

const BasicToken* FindStatementWord(std::string_view word) {
  for (const auto& entry : Table().statementWords)
    if (SameName(entry->Name(), word)) return entry.get();
  return nullptr;
}

size_t KeywordLengthAt(std::string_view text) {
  size_t longest = 0;
  auto consider = [&](std::string_view name) {
    if (name.size() > longest && SameName(text.substr(0, name.size()), name)) longest = name.size();
  };
  for (const auto& entry : Table().buckets[BucketOf(text)]) consider(entry->Name());
  for (const auto& entry : Table().statementWords) consider(entry->Name());
  return longest;
}

const char* KeywordName(TokenCode code) {
  for (const auto& bucket : Table().buckets)
    for (const auto& entry : bucket)
      if (entry->Code() == code) return entry->Name();
  return "";
}

std::vector<const BasicToken*> AllKeywords() {
  std::vector<const BasicToken*> all;
  for (const auto& bucket : Table().buckets)
    for (const auto& entry : bucket) all.push_back(entry.get());
  for (const auto& entry : Table().statementWords) all.push_back(entry.get());
  return all;
}
