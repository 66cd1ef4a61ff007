#include "lex/keywords.h"

#include <memory>
#include <vector>

namespace {

// Loaded in this order; lookup takes the first match in a bucket.
constexpr KeywordRow kStatements[] = {
    {"LET", 0xF00A},      {"PRINT", 0xF019},     {"IF", 0xF00B},     {"GOTO", 0xF00C},
    {"GOSUB", 0xF00D},    {"RETURN", 0xF00E},    {"STOP", 0xF011},   {"END", 0xF012},
    {"REM", 0xF01B},      {"FOR", 0xF00F},       {"NEXT", 0xF010},   {"DIM", 0xF01C},
    {"DEF", 0xF021},      {"INPUT", 0xF016},     {"READ", 0xF014},   {"DATA", 0xF013},
    {"ENTER", 0xF017},    {"RESTORE", 0xF015},   {"MAT", 0xF023},    {"LINPUT", 0xF018},
    {"CONVERT", 0xF022},  {"CHAIN", 0xF01E},     {"SPAWN", 0xF01F},  {"IMAGE", 0xF01A},
    {"COM", 0xF01D},      {"ELSE", 0xF033},      {"ENDIF", 0xF034},  {"WHILE", 0xF035},
    {"ENDWHILE", 0xF036}, {"REPEAT", 0xF037},    {"UNTIL", 0xF038},  {"SELECT", 0xF039},
    {"CASE", 0xF03A},     {"ENDSELECT", 0xF03B}, {"SLEEP", 0xF03C},  {"ON", 0xF025},
    {"OFF", 0xF026},      {"ASSIGN", 0xF028},    {"CLOSE", 0xF031},  {"FILES", 0xF027},
    {"OPEN", 0xF030},     {"ADVANCE", 0xF02B},   {"UPDATE", 0xF02C}, {"LOCK", 0xF02D},
    {"UNLOCK", 0xF02E},   {"CREATE", 0xF029},    {"PURGE", 0xF02A},  {"EXTEND", 0xF02F},
    {"SYSTEM", 0xF024},   {"WINDOW", 0xF03D},    {"SHOW", 0xF03E},   {"HIDE", 0xF03F},
    {"MOVETO", 0xF040},   {"LINETO", 0xF041},    {"COLOR", 0xF042},
};

constexpr KeywordRow kSecondary[] = {
    {"USING", 0xE014}, {"ERROR", 0xE015}, {"STEP", 0xE016}, {"THEN", 0xE017}, {"TO", 0xE019},
    {"OF", 0xE01A},    {"RR", 0xE01B},    {"WR", 0xE01D},   {"ZER", 0xE01E},  {"CON", 0xE01F},
    {"IDN", 0xE020},   {"TRN", 0xE021},   {"INV", 0xE022},  {"DO", 0xE018},   {"NR", 0xE01C},
};

constexpr KeywordRow kFunctions[] = {
    {"ABS", 0x900A},  {"ATN", 0x900B},  {"BRK", 0x901A},   {"COS", 0x900C},    {"EXP", 0x900D},
    {"INT", 0x900E},  {"ITM", 0x9019},  {"LOG", 0x9010},   {"REC", 0x9018},    {"RND", 0x9011},
    {"SGN", 0x9012},  {"SIN", 0x9013},  {"SQR", 0x9014},   {"TAN", 0x9015},    {"TIM", 0x901B},
    {"TID", 0x9016},  {"TYP", 0x901C},  {"FIX", 0x900F},   {"SYS", 0x901D},    {"PI", 0x9022},
    {"CHR$", 0x800B}, {"UPS$", 0x800A}, {"LEFT$", 0x800D}, {"RIGHT$", 0x800E}, {"MID$", 0x800F},
    {"DEC$", 0x800C}, {"LEN", 0x901F},  {"NUM", 0x9020},   {"ASC", 0x9020},    {"POS", 0x9021},
    {"DEC", 0x901E},  {"LIN", 0x500A},  {"SPA", 0x500B},   {"TAB", 0x500C},    {"CTL", 0x500D},
    {"VER", 0x9017},
};

constexpr KeywordRow kOperators[] = {
    {"MIN", 0xD012}, {"MAX", 0xD013}, {"AND", 0xC00A}, {"OR", 0xC00B},  {"XOR", 0xC00D},
    {"NOT", 0xC00C}, {"IMP", 0xC00F}, {"MOD", 0xD010}, {"DIV", 0xD011}, {"EQV", 0xC00E},
};

struct KeywordTable {
  std::vector<std::unique_ptr<BasicToken>> buckets[kOtherBucket + 1];

  KeywordTable() {
    for (const auto& row : kStatements) Add(row);
    for (const auto& row : kSecondary) Add(row);
    for (const auto& row : kFunctions) Add(row);
    for (const auto& row : kOperators) Add(row);
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
  return all;
}
