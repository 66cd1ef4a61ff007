#include "shell/shell.h"

#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <new>
#include <stdexcept>

#include "base/dialect.h"
#include "console/console.h"
#include "console/console_backend.h"
#include "console/key_source.h"
#include "console/line_history.h"
#include "help/help_tree.h"
#include "platform/break_flag.h"
#include "program/loader.h"
#include "program/program.h"
#include "program/run.h"
#include "program/statement_table.h"
#include "shell/history_file.h"

namespace {

enum Command : unsigned {
  kList = 0x101,
  kNew = 0x102,
  kRun = 0x103,
  kBye = 0x104,
  kPrint = 0x105,
  kGet = 0x106,
  kLen = 0x107,
  kDel = 0x108,
  kSave = 0x109,
  kDump = 0x10a,
  kSyms = 0x10b,
  kLabels = 0x10c,
  kHelp = 0x10d,
  kCls = 0x10e,
  kWidth = 0x10f,
  kTest = 0x110,
  kClassic = 0x111,
};

struct CommandRow {
  const char* name;
  unsigned code;
};

constexpr CommandRow kCommands[] = {
    {"LIST", kList}, {"NEW", kNew},   {"SCR", kNew},     {"RUN", kRun},   {"BYE", kBye},
    {"EXIT", kBye},  {"QUIT", kBye},  {"PRINT", kPrint}, {"GET", kGet},   {"LEN", kLen},
    {"DEL", kDel},   {"SAVE", kSave}, {"DUMP", kDump},   {"SYMS", kSyms}, {"LABELS", kLabels},
    {"HELP", kHelp}, {"CLS", kCls},   {"WIDTH", kWidth}, {"TEST", kTest}, {"CLASSIC", kClassic},
};

}  // namespace

std::vector<std::string_view> CommandNames() {
  std::vector<std::string_view> names;
  for (const auto& row : kCommands) names.emplace_back(row.name);
  return names;
}

namespace {

unsigned CommandOf(std::string_view word) {
  for (const auto& row : kCommands)
    if (SameName(row.name, word)) return row.code;
  return 0;
}

// An unsigned number token's value, saturating far above any statement number.
uint64_t NumberValue(std::string_view digits) {
  uint64_t value = 0;
  for (char c : digits) {
    value = value * 10 + static_cast<uint64_t>(c - '0');
    if (value > UINT_MAX) return uint64_t{UINT_MAX} + 1;
  }
  return value;
}

class Shell {
 public:
  Shell() : prog_(std::make_unique<Program>()), con_(TheConsole()) {}
  int Loop();

 private:
  bool Guarded(const char* line);   // false when the shell is to end
  bool Dispatch(const char* line);  // the same, memory failures left to Guarded
  void ProgramLine();
  void List();
  void RunProgram();
  void Bye();
  void ImmediatePrint();
  void Get(const char* line);
  void Len();
  void Del();
  void Save(const char* line);
  void Dump();
  void Labels();
  void Width();
  void Classic();
  void NewProgram(std::unique_ptr<Program> prog);
  // Reads "[start [end]]"; false after printing the range message.
  bool Range(uint32_t* start, uint32_t* end);
  // Writes a line for each statement from start to end (unnumbered ones where
  // they stand, hidden ones only withHidden), as format fills it; false when
  // Ctrl+C stopped the walk.
  template <typename Format>
  bool WriteRange(uint32_t start, uint32_t end, bool withHidden, Format format);

  std::unique_ptr<Program> prog_;
  Console& con_;
  time_t started_ = time(nullptr);
  // Lines typed at a terminal are kept for later sessions; piped ones are not.
  HistoryFile history_{con_.ReadsKeys() ? HistoryFile::DefaultPath() : ""};
};

int Shell::Loop() {
  static char line[Console::kLineMax + 1];
  for (const std::string& earlier : history_.Load()) con_.History().Add(earlier);
  for (;;) {
    int n = con_.ReadLine(line);
    if (n == Console::kBreakRead) {
      SetRunError(0);
      con_.Write("\nBREAK\n");
      continue;
    }
    if (n == Console::kEndOfInput) {
      Bye();
      return 0;
    }
    if (n < 0) continue;
    history_.Append(std::string_view(line, static_cast<size_t>(n)));
    if (!Guarded(line)) return 0;
  }
}

// Memory that cannot be had ends the command, not the shell; the program stays.
bool Shell::Guarded(const char* line) {
  try {
    return Dispatch(line);
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  con_.Printf("%s\n", MessageOf(err::kNoMemory));
  SetParseError(0);
  ClearError();
  return true;
}

bool Shell::Dispatch(const char* line) {
  prog_->StartLine(line);
  TokenCode code = prog_->GetToken();
  if (code == tok::kEndOfLine) return true;
  if (code == tok::kInteger) {
    ProgramLine();
    return true;
  }
  unsigned command = code >= tok::kFirstCoded || code == tok::kWord ? CommandOf(prog_->Text()) : 0;
  switch (command) {
    case kList:
      List();
      break;
    case kNew:
      NewProgram(std::make_unique<Program>());
      break;
    case kRun:
      RunProgram();
      break;
    case kBye:
      Bye();
      return false;
    case kPrint:
      ImmediatePrint();
      break;
    case kGet:
      Get(line);
      break;
    case kLen:
      Len();
      break;
    case kDel:
      Del();
      break;
    case kSave:
      Save(line);
      break;
    case kDump:
      Dump();
      break;
    case kSyms:
      break;
    case kLabels:
      Labels();
      break;
    case kHelp:
      ShowHelp(prog_->RawAfterCurrent(), con_);
      break;
    case kCls:
      con_.Cls();
      break;
    case kWidth:
      Width();
      break;
    case kClassic:
      Classic();
      break;
    default:
      con_.Write("???\n");
      break;
  }
  return true;
}

void Shell::ProgramLine() {
  uint64_t number = NumberValue(prog_->Text());
  if (number == 0 || number > 999999) {
    con_.Write("ERROR: Invalid Statement Number.\n");
    SetParseError(0);
    return;
  }
  SetParseError(0);
  std::vector<StatementPtr> line = prog_->ParseLine();
  if (g_err.parse == err::kEndOfLine) {
    if (Statement* s = prog_->Find(static_cast<uint32_t>(number))) prog_->Delete(s);
    SetParseError(0);
    return;
  }
  if (g_err.parse) con_.Printf("ERROR: %s\n", MessageOf(g_err.parse));
  line.front()->SetNumber(static_cast<uint32_t>(number));
  prog_->InsertTyped(std::move(line));
  SetParseError(0);
}

bool Shell::Range(uint32_t* start, uint32_t* end) {
  uint64_t bounds[2] = {*start, UINT_MAX};
  for (int i = 0; i < 3; ++i) {
    TokenCode code = prog_->GetToken();
    if (code == tok::kEndOfLine) break;
    if (code != tok::kInteger || i == 2) {
      con_.Write("INVALID STATEMENT NUMBER\n");
      return false;
    }
    bounds[i] = std::min<uint64_t>(NumberValue(prog_->Text()), UINT_MAX);
  }
  if (bounds[1] < bounds[0]) {
    con_.Write("INVALID STATEMENT RANGE\n");
    return false;
  }
  *start = static_cast<uint32_t>(bounds[0]);
  *end = static_cast<uint32_t>(bounds[1]);
  return true;
}

void Shell::List() {
  uint32_t start = 1, end;
  if (!Range(&start, &end)) return;
  TestAndClearBreak();
  if (!prog_->Name().empty()) con_.Printf("%s\n", prog_->Name().c_str());
  con_.Write("\n");
  int depth = 0;
  bool whole = WriteRange(start, end, false, [&](std::string& text, const Statement* s) {
    depth = prog_->ListLine(text, s, 3, depth, true);
  });
  if (whole) con_.Write("\n");
}

template <typename Format>
bool Shell::WriteRange(uint32_t start, uint32_t end, bool withHidden, Format format) {
  std::string text;
  for (const Statement* s = prog_->First(); s; s = s->Next()) {
    if (TestAndClearBreak()) {
      con_.Write("\nBREAK\n");
      return false;
    }
    uint32_t number = s->Number();
    if (number > end) break;
    if ((s->Hidden() && !withHidden) || (number != 0 && number < start)) continue;
    text.clear();
    format(text, s);
    text += '\n';
    con_.Write(text);
  }
  return true;
}

void Shell::RunProgram() {
  ErrorCode code = Link(*prog_);
  if (!code) code = Run(*prog_, true);
  if (code)
    ReportRunError(false);
  else
    con_.Write("\nDONE\n");
}

void Shell::Bye() {
  time_t now = time(nullptr);
  auto minutes = static_cast<unsigned>((now - started_ + 30) / 60);
  con_.Printf("\n%04u MINUTES OF TERMINAL TIME\n", minutes);
  prog_.reset();
  con_.Flush();
}

void Shell::ImmediatePrint() {
  if (!prog_->HasRun()) {
    con_.Write("NO PROGRAM RUN\n");
    return;
  }
  // The error a failed run left is reported after this PRINT's values, once.
  ErrorCode left = g_err.run;
  SetRunError(0);
  SetParseError(0);
  prog_->run.console = &con_;
  Reference* lastRef = prog_->References().Last();
  // Through the table, so that PRINT # is the data-file statement, as in a program.
  StatementPtr stmt = ParseKeywordStatement(*prog_, tok::kPrint);
  if (stmt && prog_->GetToken() != tok::kEndOfLine) {
    stmt.reset();
    SetParseError(err::kTrailingChars);
  }
  if (stmt) {
    BindTargets(*prog_);
    if (ErrorCode code = stmt->Resolve(*prog_)) SetRunError(code);
    for (Reference* r = lastRef ? lastRef->Next() : prog_->References().First(); r; r = r->Next())
      if (ErrorCode code = r->Link(*prog_); code && !g_err.run) SetRunError(code);
    if (!g_err.run) stmt->Execute();
  }
  if (g_err.parse)
    con_.Printf("%s\n", MessageOf(g_err.parse));
  else if (g_err.run)
    con_.Printf("%s\n", MessageOf(g_err.run));
  else if (left)
    con_.Printf("%s\n", MessageOf(left));
  stmt.reset();
  SetParseError(0);
  ClearError();
}

// A file name: from the first non-blank after the command to the next blank,
// or a double-quoted name that may hold blanks. Returns the rest of the line.
const char* FileName(const char* text, size_t wordLength, std::string* name) {
  while (*text == ' ') ++text;
  for (size_t i = 0; i < wordLength && *text; ++i) ++text;  // the command word
  while (*text == ' ') ++text;
  name->clear();
  if (*text == '"') {
    for (++text; *text && *text != '"'; ++text) *name += *text;
    if (*text == '"') ++text;
  } else {
    for (; *text && *text != ' '; ++text) *name += *text;
  }
  return text;
}

void Shell::NewProgram(std::unique_ptr<Program> prog) {
  prog_ = std::move(prog);
  if (con_.Width() >= 0 && con_.Width() <= 255) con_.SetWidth(72);
}

void Shell::Get(const char* line) {
  std::string name;
  FileName(line, prog_->Text().size(), &name);
  if (name.empty()) return;
  SourceFile file;
  if (!file.Open(name)) {
    con_.Printf("Unable to open %s%s.\n", name.c_str(),
                RefusalNote(file.Error(), file.Note()).c_str());
    return;
  }
  NewProgram(LoadProgram(file, name, true));
  if (g_err.parse != 0 && g_err.parse != err::kEndOfFile)
    con_.Printf("%s (%u)\n", MessageOf(g_err.parse), g_err.parse);
  prog_->NumberUnnumbered();
  for (const Statement* s = prog_->First(); s; s = s->Next()) {
    if (ErrorCode code = s->ParseError()) {
      Raise(code, s->Location());
      SetErrorFile(nullptr);
      ReportRunError(false);
    }
  }
  ClearError();
  SetParseError(0);
}

void Shell::Len() {
  size_t statements = 0;
  for (const Statement* s = prog_->First(); s; s = s->Next()) statements += s->Size();
  size_t tables = prog_->SymbolStorage();
  size_t heaps = prog_->HeapSize();
  con_.Printf("%lu BYTES IN PROGRAM (class Program=%u; tables=%u; heaps=%u)\n",
              static_cast<unsigned long>(sizeof(Program) + statements + tables + heaps),
              static_cast<unsigned>(sizeof(Program)), static_cast<unsigned>(tables),
              static_cast<unsigned>(heaps));
}

void Shell::Del() {
  TokenCode code = prog_->GetToken();
  if (code != tok::kInteger) {
    con_.Write("MISSING STATEMENT NUMBER\n");
    return;
  }
  uint64_t start = NumberValue(prog_->Text()), end = UINT_MAX;
  code = prog_->GetToken();
  if (code == tok::kInteger) {
    end = NumberValue(prog_->Text());
    code = prog_->GetToken();
  }
  if (code != tok::kEndOfLine) {
    con_.Write("INVALID STATEMENT NUMBER\n");
    return;
  }
  if (end < start) {
    con_.Write("INVALID STATEMENT RANGE\n");
    return;
  }
  Statement* s = prog_->First();
  while (s && s != prog_->EndMark()) {
    Statement* next = s->Next();
    uint32_t number = s->Number();
    if (number > end) break;
    if (number >= start && !(s->Location() & loc::kTrailing)) {
      while (next && next != prog_->EndMark() && (next->Location() & loc::kTrailing))
        next = next->Next();
      prog_->Delete(s);
    }
    s = next;
  }
}

void Shell::Save(const char* line) {
  std::string name, option;
  const char* rest = FileName(line, prog_->Text().size(), &name);
  if (name.empty()) {
    con_.Write("???\n");
    return;
  }
  while (*rest == ' ') ++rest;
  bool numbers = !(*rest == 'n' || *rest == 'N');
  // A SAVE that fails keeps the program: only the message differs.
  if (SaveProgram(*prog_, name, numbers) == SaveResult::kOpen)
    con_.Printf("Unable to open %s.\n", name.c_str());
}

void Shell::Dump() {
  // After an edit the links may name deleted statements: ask for a new run.
  if (!prog_->HasRun() || !prog_->LinksCurrent()) {
    con_.Write("RUN PROGRAM FIRST\n");
    return;
  }
  uint32_t start = 1, end;
  if (!Range(&start, &end)) return;
  TestAndClearBreak();
  WriteRange(start, end, true, [](std::string& text, const Statement* s) {
    Appendf(text, "%4u [%3lu]%02x ", s->Number(), static_cast<unsigned long>(s->Size()),
            s->Location() & 0xFF);
    s->Dump(text);
  });
}

void Shell::Labels() {
  con_.Write("Statement Number References\n  ");
  unsigned count = 0, names = 0;
  for (const auto& t : prog_->targets.All()) {
    if (!t->users) continue;
    if (t->IsName()) {
      ++names;
      continue;
    }
    con_.Printf("[%4lu] (%u) ", static_cast<unsigned long>(t->Number()), t->users);
    if (++count % 6 == 0) con_.Write("\n  ");
  }
  if (count % 6 != 0) con_.Write("\n");
  con_.Printf("\nStatement Label References (%lu)\n  ", static_cast<unsigned long>(names));
  for (const auto& t : prog_->targets.All()) {
    if (!t->users || !t->IsName()) continue;
    con_.Printf("[%s] (%u) ", t->Name().c_str(), t->users);
    con_.Write("\n  ");
  }
  con_.Write("\n");
}

void Shell::Width() {
  TokenCode code = prog_->GetToken();
  if (code == tok::kEndOfLine) {
    con_.Printf("Width is %u\n", static_cast<unsigned>(con_.Width()));
    return;
  }
  uint64_t width = code == tok::kInteger ? NumberValue(prog_->Text()) : 256;
  if (width < 256 && prog_->GetToken() == tok::kEndOfLine) {
    if (con_.Width() >= 0 && con_.Width() <= 255) con_.SetWidth(static_cast<int>(width));
    return;
  }
  con_.Write("\nWidth <# of chars> 1 - 255, 0 = unlimited.\n");
}

// CLASSIC shows the switch; CLASSIC ON and CLASSIC OFF set it.
void Shell::Classic() {
  TokenCode code = prog_->GetToken();
  if (code == tok::kEndOfLine) {
    con_.Printf("Classic is %s\n", g_classic ? "ON" : "OFF");
    return;
  }
  std::string_view word = prog_->Text();
  bool on = SameName("ON", word), off = SameName("OFF", word);
  if ((on || off) && prog_->GetToken() == tok::kEndOfLine) {
    g_classic = on;
    return;
  }
  con_.Write("\nClassic ON or OFF.\n");
}

}  // namespace

void PrintBanner() {
  TheConsole().Printf("\n%s %s\n%s\n", kProductName, "for POSIX terminals",
                      "Structured HP 2000 BASIC with graphics windows");
}

int RunShell() {
  Console& con = TheConsole();
  con.SetTitle(kProductName);
  PrintBanner();
  con.Write("\nHELP is available\n\n");
  con.Write("READY\n\n");
  Shell shell;
  int status = shell.Loop();
  con.Flush();
  return status;
}

namespace {

// Under --strict a failure's report goes to standard error: the console is swapped
// for a stream on it while the report is written, after the program's own output.
class ErrorStreamScope final {
 public:
  explicit ErrorStreamScope(bool active) {
    if (!active) return;
    TheConsole().Flush();
    saved_ = InstallConsole(
        std::make_unique<Console>(MakeStreamBackend(STDERR_FILENO), MakeStringInput("")));
  }
  ~ErrorStreamScope() {
    if (!saved_) return;
    TheConsole().Flush();
    InstallConsole(std::move(saved_));
  }
  ErrorStreamScope(const ErrorStreamScope&) = delete;
  ErrorStreamScope& operator=(const ErrorStreamScope&) = delete;

 private:
  std::unique_ptr<Console> saved_;
};

}  // namespace

int RunFile(const char* path, bool strict) {
  SourceFile file;
  if (!file.Open(path, SourceFile::Kind::kAny)) {
    ErrorStreamScope errors(strict);
    PrintBanner();
    TheConsole().Printf("\nUnable to open %s%s.\n", path,
                        RefusalNote(file.Error(), file.Note()).c_str());
    TheConsole().Flush();
    return strict ? 1 : -1;
  }
  bool failed = true;
  try {
    std::unique_ptr<Program> prog;
    {
      ErrorStreamScope errors(strict);  // the load reports its bad lines
      prog = LoadProgram(file, path, true);
    }
    if (prog->BadLines() == 0 && (g_err.parse == 0 || g_err.parse == err::kEndOfFile)) {
      ErrorCode code = Link(*prog);
      if (!code) code = Run(*prog, false);
      failed = code != 0;
      if (code) {
        ErrorStreamScope errors(strict);
        ReportRunError(true);
      }
    }
  } catch (const std::bad_alloc&) {
    ClearError();
    SetErrorFile(nullptr);
    SetRunError(err::kNoMemory);
    ErrorStreamScope errors(strict);
    ReportRunError(true);
  }
  TheConsole().Flush();
  return strict && failed ? 1 : 0;
}
