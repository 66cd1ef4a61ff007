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
#include "program/renumber.h"
#include "program/run.h"
#include "program/statement_table.h"
#include "shell/catalog.h"
#include "shell/history_file.h"
#include "shell/syms.h"
#include "stmt/simple_stmts.h"

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
  kRenumber = 0x112,
  kAuto = 0x113,
  kEdit = 0x114,
  kAppend = 0x115,
  kMerge = 0x116,
  kCatalog = 0x117,
  kLibrary = 0x118,
  kDelete = 0x119,
  kTraceOn = 0x11a,
  kTraceOff = 0x11b,
  kTrace = 0x11c,
  kContinue = 0x11d,
  kRandomize = 0x11e,
};

struct CommandRow {
  const char* name;
  unsigned code;
};

constexpr CommandRow kCommands[] = {
    {"LIST", kList},         {"NEW", kNew},         {"SCR", kNew},
    {"RUN", kRun},           {"BYE", kBye},         {"EXIT", kBye},
    {"QUIT", kBye},          {"PRINT", kPrint},     {"GET", kGet},
    {"LEN", kLen},           {"DEL", kDel},         {"SAVE", kSave},
    {"DUMP", kDump},         {"SYMS", kSyms},       {"LABELS", kLabels},
    {"HELP", kHelp},         {"CLS", kCls},         {"WIDTH", kWidth},
    {"TEST", kTest},         {"CLASSIC", kClassic}, {"RENUMBER", kRenumber},
    {"RENUM", kRenumber},    {"AUTO", kAuto},       {"EDIT", kEdit},
    {"APPEND", kAppend},     {"MERGE", kMerge},     {"CATALOG", kCatalog},
    {"CAT", kCatalog},       {"LIBRARY", kLibrary}, {"DELETE", kDelete},
    {"TRACE", kTrace},       {"TRON", kTraceOn},    {"TROFF", kTraceOff},
    {"CONTINUE", kContinue}, {"CONT", kContinue},   {"RANDOMIZE", kRandomize},
    {"RANDOM", kRandomize},
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

// How the last run of the shell's program ended, for CONTINUE.
enum class Halt {
  kNone,     // no run since the program was made or loaded
  kEnded,    // END, the end of the program, or a STOP in a chained program
  kFailed,   // an error, the link's included
  kStopped,  // STOP or a break: CONTINUE may go on
  kChanged,  // stopped, and a line was stored, deleted or renumbered since
};

// A range of statement numbers as LIST, DUMP and DELETE take it.
struct LineRange {
  uint32_t start;
  uint32_t end;
  bool single;  // one number alone
};

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
  void Continue();
  void AfterRun(ErrorCode code);
  void Bye();
  // PRINT or RANDOMIZE typed without a number, with the last run's variables.
  void Immediate(TokenCode keyword);
  void Get(const char* line);
  void Merge(const char* line, bool append);
  void Len();
  void Del();
  void Delete();
  void Save(const char* line);
  void Dump();
  void Labels();
  void Width();
  void Classic();
  void Renumber();
  void Auto();
  void Edit();
  void Catalog(bool library);
  void Trace(unsigned command);
  void NewProgram(std::unique_ptr<Program> prog);
  // Opens and loads a program file as GET does, reporting what the loader
  // reports; null after "Unable to open". APPEND and MERGE share it with GET.
  std::unique_ptr<Program> LoadNamed(const char* line);
  // Reports the bad lines of a loaded program as GET does.
  void ReportBadLines(const Program& loaded);
  // Stores a line typed in AUTO or EDIT as a line typed at the prompt is stored.
  void TypedLine(const char* line);
  // Reads a range: "[start [end]]", "a-b", "a,b", "-b", "a-"; false after the message.
  bool Range(LineRange* range);
  bool Range(uint32_t* start, uint32_t* end);
  // Reads up to max numbers separated by blanks or commas; false after the message.
  bool Numbers(std::vector<uint64_t>* numbers, size_t max);
  // Deletes the lines numbered start to end; returns how many went.
  size_t DeleteLines(uint32_t start, uint32_t end);
  void ReportDeleted(size_t lines);
  // Writes a line for each statement from start to end (unnumbered ones where
  // they stand, hidden ones only withHidden), as format fills it; false when
  // Ctrl+C stopped the walk.
  template <typename Format>
  bool WriteRange(uint32_t start, uint32_t end, bool withHidden, Format format);

  std::unique_ptr<Program> prog_;
  Console& con_;
  time_t started_ = time(nullptr);
  Halt halt_ = Halt::kNone;
  uint64_t haltEdits_ = 0;  // the program's edit count when its run stopped
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
    // A stopped run whose program changed can never go on: its files close now.
    if (halt_ == Halt::kStopped && prog_->Edits() != haltEdits_) {
      halt_ = Halt::kChanged;
      prog_->run.resume = nullptr;
      prog_->run.files->CloseAll();
    }
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
  if (command == 0 && g_classic && tok::Category(code) == tok::kNumVar) {
    // PRINTA typed at the shell: the classic reading finds the keyword in it.
    prog_->StartLine(line);
    prog_->ReadClassicWords();
    code = prog_->GetToken();
    if (code >= tok::kFirstCoded) command = CommandOf(prog_->Text());
    if (command != kPrint && command != kRandomize) command = 0;
  }
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
      Immediate(tok::kPrint);
      break;
    case kRandomize:
      Immediate(tok::kRandomize);
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
      if (prog_->GetToken() == tok::kEndOfLine)
        ListVariables(*prog_, con_);
      else
        con_.Write("???\n");
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
    case kRenumber:
      Renumber();
      break;
    case kAuto:
      Auto();
      break;
    case kEdit:
      Edit();
      break;
    case kAppend:
      Merge(line, true);
      break;
    case kMerge:
      Merge(line, false);
      break;
    case kCatalog:
      Catalog(false);
      break;
    case kLibrary:
      Catalog(true);
      break;
    case kDelete:
      Delete();
      break;
    case kTrace:
    case kTraceOn:
    case kTraceOff:
      Trace(command);
      break;
    case kContinue:
      Continue();
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

// The forms: nothing, "a", "a b", "a-b", "a,b", "-b" and "a-". Numbers past
// the largest unsigned value count as it.
bool Shell::Range(LineRange* range) {
  uint64_t bounds[2] = {range->start, UINT_MAX};
  bool single = false, valid = true;
  auto number = [&](int i) {
    if (prog_->GetToken() != tok::kInteger) return false;
    bounds[i] = std::min<uint64_t>(NumberValue(prog_->Text()), UINT_MAX);
    return true;
  };
  TokenCode code = prog_->GetToken();
  if (code == tok::kMinus) {
    valid = number(1);
  } else if (code == tok::kInteger) {
    bounds[0] = std::min<uint64_t>(NumberValue(prog_->Text()), UINT_MAX);
    code = prog_->GetToken();
    if (code == tok::kEndOfLine) {
      single = true;
      prog_->BackUp();
    } else if (code == tok::kInteger) {
      prog_->BackUp();
      valid = number(1);
    } else if (code == tok::kComma) {
      valid = number(1);
    } else if (code == tok::kMinus) {
      if (prog_->Peek() != tok::kEndOfLine) valid = number(1);
    } else {
      valid = false;
    }
  } else if (code != tok::kEndOfLine) {
    valid = false;
  } else {
    prog_->BackUp();
  }
  if (!valid || prog_->GetToken() != tok::kEndOfLine) {
    con_.Write("INVALID STATEMENT NUMBER\n");
    return false;
  }
  if (bounds[1] < bounds[0]) {
    con_.Write("INVALID STATEMENT RANGE\n");
    return false;
  }
  *range = {static_cast<uint32_t>(bounds[0]), static_cast<uint32_t>(bounds[1]), single};
  return true;
}

bool Shell::Range(uint32_t* start, uint32_t* end) {
  LineRange range{*start, UINT_MAX, false};
  if (!Range(&range)) return false;
  *start = range.start;
  *end = range.end;
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
  AfterRun(code);
}

void Shell::AfterRun(ErrorCode code) {
  if (prog_->run.resume) {
    halt_ = Halt::kStopped;
    haltEdits_ = prog_->Edits();
  } else {
    halt_ = code ? Halt::kFailed : Halt::kEnded;
  }
  if (code)
    ReportRunError(false);
  else
    con_.Write("\nDONE\n");
}

// Goes on after STOP or Ctrl+C, as long as no line changed since.
void Shell::Continue() {
  if (prog_->GetToken() != tok::kEndOfLine) {
    con_.Write("???\n");
    return;
  }
  switch (halt_) {
    case Halt::kStopped:
      AfterRun(::Continue(*prog_, con_));
      return;
    case Halt::kChanged:
      con_.Write("Cannot continue: the program was changed.\n");
      return;
    case Halt::kFailed:
      con_.Write("Cannot continue after an error.\n");
      return;
    case Halt::kEnded:
      con_.Write("Cannot continue: the run has ended.\n");
      return;
    case Halt::kNone:
      break;
  }
  con_.Write("Cannot continue: nothing was stopped.\n");
}

void Shell::Bye() {
  time_t now = time(nullptr);
  auto minutes = static_cast<unsigned>((now - started_ + 30) / 60);
  con_.Printf("\n%04u MINUTES OF TERMINAL TIME\n", minutes);
  prog_.reset();
  con_.Flush();
}

void Shell::Immediate(TokenCode keyword) {
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
  prog_->ReadClassicWords();
  // Through the table, so that PRINT # is the data-file statement, as in a program.
  StatementPtr stmt = ParseKeywordStatement(*prog_, keyword);
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
  // A halted run's program is gone: that is a change, not a run never made.
  halt_ = halt_ == Halt::kStopped || halt_ == Halt::kChanged ? Halt::kChanged : Halt::kNone;
  if (con_.Width() >= 0 && con_.Width() <= 255) con_.SetWidth(72);
}

std::unique_ptr<Program> Shell::LoadNamed(const char* line) {
  std::string name;
  FileName(line, prog_->Text().size(), &name);
  if (name.empty()) return nullptr;
  SourceFile file;
  if (!file.Open(name)) {
    con_.Printf("Unable to open %s%s.\n", name.c_str(),
                RefusalNote(file.Error(), file.Note()).c_str());
    return nullptr;
  }
  return LoadProgram(file, name, true);
}

void Shell::ReportBadLines(const Program& loaded) {
  for (const Statement* s = loaded.First(); s; s = s->Next()) {
    if (ErrorCode code = s->ParseError()) {
      Raise(code, s->Location());
      SetErrorFile(nullptr);
      ReportRunError(false);
    }
  }
  ClearError();
  SetParseError(0);
}

void Shell::Get(const char* line) {
  std::unique_ptr<Program> loaded = LoadNamed(line);
  if (!loaded) return;
  NewProgram(std::move(loaded));
  if (g_err.parse != 0 && g_err.parse != err::kEndOfFile)
    con_.Printf("%s (%u)\n", MessageOf(g_err.parse), g_err.parse);
  prog_->NumberUnnumbered();
  ReportBadLines(*prog_);
}

// APPEND adds a file's lines after the last line, and refuses when one would
// not come after it; MERGE adds them by number, replacing lines of the same
// number. Each line is stored as its listing reads back, as SAVE and GET would
// carry it; a load that stopped early adds nothing.
void Shell::Merge(const char* line, bool append) {
  std::unique_ptr<Program> loaded = LoadNamed(line);
  if (!loaded) return;
  if (g_err.parse != 0 && g_err.parse != err::kEndOfFile) {
    con_.Printf("%s (%u)\n", MessageOf(g_err.parse), g_err.parse);
    SetParseError(0);
    return;
  }
  SetParseError(0);
  uint32_t last = 0;
  for (const Statement* s = prog_->First(); s; s = s->Next()) last = std::max(last, s->Number());
  // The unnumbered lines of an appended file follow the last line.
  loaded->NumberUnnumbered(append ? last : 0);
  const Statement* first = loaded->First();
  while (first != loaded->EndMark() && first->Hidden()) first = first->Next();
  if (append && first != loaded->EndMark() && first->Number() <= last) {
    con_.Printf("Not appended: line %u is not above line %u (renumber first).\n", first->Number(),
                last);
    return;
  }
  ReportBadLines(*loaded);
  std::string text;
  for (const Statement* s = loaded->First(); s && s != loaded->EndMark(); s = s->Next()) {
    if (s->Hidden()) continue;
    std::vector<StatementPtr> stored;
    if (ErrorCode code = s->ParseError()) {
      text.clear();
      s->List(text);
      stored.push_back(std::make_unique<InvalidStmt>(std::string_view(text).substr(1), code));
    } else {
      text = Program::LineText(s);
      text.erase(0, text.find(' ') + 1);
      SetParseError(0);
      if (text.size() > Program::kLineMax) {
        stored.push_back(std::make_unique<InvalidStmt>(text, err::kLineTooLong));
      } else {
        prog_->StartLine(text.c_str());
        stored = prog_->ParseLine();
        if (g_err.parse == err::kEndOfLine) stored.push_back(std::make_unique<BlankLineStmt>());
      }
    }
    stored.front()->SetNumber(s->Number());
    prog_->InsertTyped(std::move(stored));
  }
  prog_->StartLine("");
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
  ReportDeleted(DeleteLines(static_cast<uint32_t>(std::min<uint64_t>(start, UINT_MAX)),
                            static_cast<uint32_t>(std::min<uint64_t>(end, UINT_MAX))));
}

// DELETE a alone, or a range as LIST takes it.
void Shell::Delete() {
  if (prog_->Peek() == tok::kEndOfLine) {
    con_.Write("MISSING STATEMENT NUMBER\n");
    return;
  }
  LineRange range{1, UINT_MAX, false};
  if (!Range(&range)) return;
  ReportDeleted(DeleteLines(range.start, range.single ? range.start : range.end));
}

size_t Shell::DeleteLines(uint32_t start, uint32_t end) {
  size_t lines = 0;
  Statement* s = prog_->First();
  while (s && s != prog_->EndMark()) {
    Statement* next = s->Next();
    uint32_t number = s->Number();
    if (number > end) break;
    if (number >= start && !(s->Location() & loc::kTrailing)) {
      while (next && next != prog_->EndMark() && (next->Location() & loc::kTrailing))
        next = next->Next();
      prog_->Delete(s);
      ++lines;
    }
    s = next;
  }
  return lines;
}

// A deletion of more than one line says how many went; none asks first.
void Shell::ReportDeleted(size_t lines) {
  if (lines > 1) con_.Printf("%zu lines deleted\n", lines);
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

bool Shell::Numbers(std::vector<uint64_t>* numbers, size_t max) {
  for (TokenCode code = prog_->GetToken(); code != tok::kEndOfLine;) {
    if (code != tok::kInteger || numbers->size() == max) {
      con_.Write("INVALID STATEMENT NUMBER\n");
      return false;
    }
    numbers->push_back(NumberValue(prog_->Text()));
    code = prog_->GetToken();
    if (code == tok::kComma) {
      code = prog_->GetToken();
      if (code == tok::kEndOfLine) code = tok::kComma;  // a comma at the end is refused
    }
  }
  return true;
}

// RENUMBER [new [,step [,first [,last]]]]: the checks and the rewriting are the
// program's; the shell reads the numbers and prints what it says.
void Shell::Renumber() {
  std::vector<uint64_t> n;
  if (!Numbers(&n, 4)) return;
  RenumberRequest request;
  uint64_t values[4] = {request.start, request.step, request.first, request.last};
  for (size_t i = 0; i < n.size(); ++i) values[i] = n[i];
  if (values[0] < 1 || values[0] > Program::kMaxNumber || values[1] < 1 ||
      values[1] > Program::kMaxNumber) {
    con_.Write("INVALID STATEMENT NUMBER\n");
    return;
  }
  if (values[3] < values[2]) {
    con_.Write("INVALID STATEMENT RANGE\n");
    return;
  }
  request.start = static_cast<uint32_t>(values[0]);
  request.step = static_cast<uint32_t>(values[1]);
  request.first = static_cast<uint32_t>(std::min<uint64_t>(values[2], UINT_MAX));
  request.last = static_cast<uint32_t>(std::min<uint64_t>(values[3], UINT_MAX));
  RenumberReport report = RenumberLines(*prog_, request);
  if (!report.refusal.empty()) {
    con_.Printf("Not renumbered: %s\n", report.refusal.c_str());
    return;
  }
  for (const std::string& note : report.notes) con_.Printf("%s\n", note.c_str());
}

void Shell::TypedLine(const char* line) {
  prog_->StartLine(line);
  TokenCode code = prog_->GetToken();
  if (code == tok::kInteger)
    ProgramLine();
  else if (code != tok::kEndOfLine)
    con_.Write("???\n");
}

// AUTO [start [,step]]: offers each number in turn; an empty line, Escape,
// Ctrl+C or the end of the input ends it, and so does a number that holds a line.
void Shell::Auto() {
  std::vector<uint64_t> n;
  if (!Numbers(&n, 2)) return;
  uint64_t number = n.size() > 0 ? n[0] : 10, step = n.size() > 1 ? n[1] : 10;
  if (number < 1 || number > Program::kMaxNumber || step < 1) {
    con_.Write("INVALID STATEMENT NUMBER\n");
    return;
  }
  static char typed[Console::kLineMax + 1];
  std::string line;
  for (; number <= Program::kMaxNumber; number += step) {
    if (prog_->Find(static_cast<uint32_t>(number))) {
      con_.Printf("Line %u exists: AUTO stops.\n", static_cast<unsigned>(number));
      return;
    }
    con_.Printf("%u ", static_cast<unsigned>(number));
    int length = con_.EditLine(typed, "");
    if (length == Console::kBreakRead) {
      SetRunError(0);
      con_.Write("\nBREAK\n");
    }
    if (length <= 0) return;
    line = std::to_string(number) + ' ' + typed;
    history_.Append(line);
    TypedLine(line.c_str());
  }
  con_.Write("AUTO stops at 999999.\n");
}

// EDIT n: the line's listing, ready for the editing keys. Enter stores what the
// line then holds as a typed line is stored; Escape or Ctrl+C leaves it as it was.
void Shell::Edit() {
  TokenCode code = prog_->GetToken();
  if (code == tok::kEndOfLine) {
    con_.Write("MISSING STATEMENT NUMBER\n");
    return;
  }
  uint64_t number = code == tok::kInteger ? NumberValue(prog_->Text()) : 0;
  if (number == 0 || prog_->GetToken() != tok::kEndOfLine) {
    con_.Write("INVALID STATEMENT NUMBER\n");
    return;
  }
  const Statement* s =
      number <= Program::kMaxNumber ? prog_->Find(static_cast<uint32_t>(number)) : nullptr;
  if (!s) {
    con_.Printf("No line %llu.\n", static_cast<unsigned long long>(number));
    return;
  }
  std::string text = Program::LineText(s);
  // A bad line is edited as it was typed, without the "?" that LIST shows.
  if (s->ParseError()) text.erase(text.find(' ') + 1, 1);
  // The editor holds what a typed line may hold: a longer line would be cut.
  if (text.size() > Console::kLineMax) {
    con_.Printf("Line %s is too long to edit.\n", text.substr(0, text.find(' ')).c_str());
    return;
  }
  static char typed[Console::kLineMax + 1];
  int length = con_.EditLine(typed, text);
  if (length == Console::kBreakRead) {
    SetRunError(0);
    con_.Write("\nBREAK\n");
  }
  if (length <= 0) return;
  history_.Append(std::string_view(typed, static_cast<size_t>(length)));
  TypedLine(typed);
}

// CATALOG [$ | *], LIBRARY.
void Shell::Catalog(bool library) {
  std::string_view rest = prog_->RawAfterCurrent();
  while (!rest.empty() && rest.back() == ' ') rest.remove_suffix(1);
  if (library ? !rest.empty() : !(rest.empty() || rest == "$" || rest == "*")) {
    con_.Write(library ? "LIBRARY takes no name.\n" : "CATALOG, CATALOG $ or CATALOG *.\n");
    return;
  }
  ::Catalog(con_, CatalogFolder(library ? "$" : std::string(rest)));
}

// TRACE ON, TRACE OFF, TRON, TROFF: as the statements do.
void Shell::Trace(unsigned command) {
  bool on = command == kTraceOn;
  if (command == kTrace) {
    TokenCode code = prog_->GetToken();
    if (code != tok::kOn && code != tok::kOff) {
      con_.Write("TRACE ON or TRACE OFF.\n");
      return;
    }
    on = code == tok::kOn;
  }
  if (prog_->GetToken() != tok::kEndOfLine) {
    con_.Write("???\n");
    return;
  }
  SetTracing(on);
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
#ifdef __EMSCRIPTEN__
  constexpr const char* kPlatform = "in a web page";
#else
  constexpr const char* kPlatform = "for POSIX terminals";
#endif
  TheConsole().Printf("\n%s %s\n%s\n", kProductName, kPlatform,
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
