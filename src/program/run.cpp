#include "program/run.h"

#include <new>
#include <unordered_set>

#include "console/console.h"
#include "expr/random.h"
#include "gdi/gdi.h"
#include "platform/break_flag.h"
#include "platform/host_notice.h"
#include "program/program.h"

namespace {

ErrorCode FailAt(ErrorCode code, const Statement* s) {
  if (!HasLocation() && s) g_err.location = s->Location();
  return SetRunError(code);
}

std::string LowerName(std::string_view name) {
  std::string lower(name);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return lower;
}

ErrorCode LinkPasses(Program& prog) {
  gdi::CloseAll();
  prog.ClearStorage();
  ClearError();
  SetErrorFile(nullptr);  // link errors name no file
  BindTargets(prog);

  // Bad lines and labels defined twice stop the link.
  std::unordered_set<std::string> labels;
  for (Statement* s = prog.First(); s; s = s->Next()) {
    if (ErrorCode code = s->ParseError()) return Raise(code, s->Location());
    if (const char* label = s->Label())
      if (!labels.insert(LowerName(label)).second)
        return Raise(err::kDuplicateLabel, s->Location());
  }

  // Successors, walked backwards so that runs of non-executing lines cost nothing.
  Statement* next = nullptr;
  for (Statement* s = prog.EndMark(); s; s = s->Prev()) {
    s->SetSuccessor(next);
    if (s->IsExecutable()) next = s;
  }
  for (Statement* s = prog.First(); s; s = s->Next())
    if (ErrorCode code = s->Resolve(prog)) return FailAt(code, s);

  for (const auto& target : prog.targets.All())
    if (target->users && !target->resolved) return SetRunError(err::kUnresolvedTarget);

  for (Statement* s = prog.First(); s; s = s->Next())
    if (ErrorCode code = s->Check(prog)) return FailAt(code, s);

  for (Reference* r = prog.References().First(); r; r = r->Next())
    if (ErrorCode code = r->Link(prog)) return FailAt(code, r->owner);

  prog.SetLinksCurrent();
  return 0;
}

}  // namespace

ErrorCode Link(Program& prog) {
  ErrorCode code = LinkPasses(prog);
  if (code) {
    prog.run.files->CloseAll();  // FILES may have opened some before the failure
    // A DEF registered before the failure may hold call sites never bound: an
    // immediate PRINT must not reach it.
    prog.functions.clear();
  }
  return code;
}

void BindTargets(Program& prog) {
  for (const auto& target : prog.targets.All()) target->resolved = nullptr;
  for (Statement* s = prog.First(); s; s = s->Next()) {
    if (uint32_t number = s->Number()) {
      TargetLabel* target = prog.FindTarget(number);
      if (target && !target->resolved) target->resolved = s;
    }
    if (const char* label = s->Label()) {
      TargetLabel* target = prog.FindTarget(std::string_view(label));
      if (target && !target->resolved) target->resolved = s;
    }
  }
}

namespace {

// TRACE: "[10]" before statement 10 runs, on the console PRINT writes to.
void Trace(Console& con, const Statement* s) {
  if (s->Code() == tok::kEndMarkStmt) return;
  char text[16];
  snprintf(text, sizeof text, "[%u]", s->Number());
  con.Print(text);
}

// Runs from s until the run ends. Only a run of the shell's own program that
// STOP or a break halted can go on later; it then keeps its files open.
ErrorCode Drive(Program& first, bool keepsProgram, Console& con, Statement* s) {
  TestAndClearBreak();
  NoteRunning(true);
  Program* prog = &first;
  std::unique_ptr<Program> owned;  // a program CHAIN brought in: the run owns it
  RunState* run = &prog->run;
  run->console = &con;
  run->current = s;
  run->resume = nullptr;
  Statement* resume = nullptr;
  const char* fileName = !keepsProgram && !prog->Name().empty() ? prog->Name().c_str() : nullptr;
  if (Tracing()) Trace(con, s);

  try {
    for (;;) {
      Statement* next = s->Execute();
      if (g_err.run == 0) [[likely]] {
        if (!BreakPending() && next) [[likely]] {
          s = next;
          continue;
        }
        // Rare: an event waits (a break, a flush, TRACE), or the statement named no
        // successor (CHAIN's hand-over, or the statement runs again).
        if (TestAndClearBreak()) {
          SetErrorFile(fileName);
          Raise(err::kBreak, s->Location());
          resume = next ? next : s;
          break;
        }
        if (next) {
          s = next;
        } else if (prog->chained) {
          // CHAIN: the program left keeps no files; a chained one goes away.
          std::unique_ptr<Program> incoming = std::move(prog->chained);
          if (ErrorCode code = run->files->CloseAll()) {
            // The caller's text could not be written: the run stops at its CHAIN.
            Raise(code, s->Location());
            SetErrorFile(fileName);
            break;
          }
          s = prog->chainStart;
          owned = std::move(incoming);
          prog = owned.get();
          run = &prog->run;
          run->StartFrame();
          run->console = &con;
          run->current = s;
          fileName = prog->Name().c_str();
        }
        if (Tracing()) Trace(con, s);
        continue;
      }
      // A STOP goes on after itself; a statement that a break cut short runs again.
      if (g_err.run == err::kStop && s != prog->EndMark())
        resume = next;
      else if (g_err.run == err::kBreak)
        resume = s;
      run->frame.failLocation = s->Location();
      // A statement that names the file itself (a CHAIN whose program fails to link) keeps it.
      if (g_err.file.empty()) SetErrorFile(fileName);
      if (g_err.run != err::kStop && !HasLocation()) g_err.location = run->frame.failLocation;
      break;
    }
  } catch (const std::bad_alloc&) {
    // Memory ran out inside a statement: the run ends there, as with any error.
    run->frame.failLocation = s->Location();
    SetErrorFile(fileName);
    Raise(err::kNoMemory, s->Location());
    prog->calls.Unwind();  // calls left mid-way
    prog->chained.reset();
    resume = nullptr;
  }
  run->current = s;
  if (keepsProgram && prog == &first && resume) {
    first.run.resume = resume;
    FlushFiles();  // what the run wrote is in its files while it waits
  } else if (ErrorCode unwritten = run->files->CloseAll()) {
    // Text the run wrote and could not write out is an error of its last statement.
    if (!g_err.run || g_err.run == err::kStop || g_err.run == err::kEnd)
      Raise(unwritten, s->Location());
  }
  prog->chained.reset();  // a CHAIN that a break overtook
  con.RestoreDefaults();
  ErrorCode code = g_err.run;
  if (code == err::kStop || code == err::kEnd) {
    SetParseError(0);
    ClearError();
    SetErrorFile(nullptr);
    code = 0;
  }
  // The error's file name is a copy; the chained program may go now.
  owned.reset();
  NoteRunning(false);
  return code;
}

}  // namespace

ErrorCode Run(Program& prog, bool keepsProgram) { return Run(prog, keepsProgram, TheConsole()); }

ErrorCode Run(Program& first, bool keepsProgram, Console& con) {
  first.run.StartFrame();
  SeedRandomFromClock();  // not at CHAIN or CONTINUE: the sequence goes on
  Statement* s = first.First();
  if (!s->IsExecutable()) s = s->NextExecutable();
  return Drive(first, keepsProgram, con, s);
}

ErrorCode Continue(Program& prog, Console& con) { return Drive(prog, true, con, prog.run.resume); }

void ReportRunError(bool statementWording) {
  Console& con = TheConsole();
  std::string message = MessageOf(g_err.run);
  if (g_err.noteCode == g_err.run && !g_err.note.empty()) message += " (" + g_err.note + ")";
  con.Write("\n");
  if (g_err.run != err::kBreak) con.Write("ERROR ");
  if (g_err.location & loc::kStmtNumber)
    con.Printf("%s in %s %u", message.c_str(), statementWording ? "statement number" : "line",
               loc::Number(g_err.location));
  else if (g_err.location & loc::kFileLine)
    con.Printf("%s in file line %u", message.c_str(), loc::Number(g_err.location));
  else
    con.Printf("%s", message.c_str());
  if (!g_err.file.empty())
    con.Printf(" in file \"%s\"\n", g_err.file.c_str());
  else
    con.Write("\n");
}
