#include "program/renumber.h"

#include <sys/stat.h>

#include <algorithm>
#include <set>
#include <unordered_map>

#include "program/program.h"

namespace {

// The lines of the program in list order: their first statements.
std::vector<Statement*> Lines(const Program& prog) {
  std::vector<Statement*> lines;
  for (Statement* s = prog.First(); s && s != prog.EndMark(); s = s->Next())
    if (!s->Hidden() && s->Number() != 0) lines.push_back(s);
  return lines;
}

// The numbers a line's statements refer to that no line carries.
std::vector<uint32_t> Missing(const Program& prog, const Statement* head) {
  std::vector<const TargetLabel*> targets;
  for (const Statement* s = head;; s = s->Next()) {
    s->Targets(targets);
    if (!s->Followed() || !s->Next()) break;
  }
  std::vector<uint32_t> missing;
  for (const TargetLabel* t : targets)
    if (!t->IsName() && !prog.Find(t->Number()) &&
        std::find(missing.begin(), missing.end(), t->Number()) == missing.end())
      missing.push_back(t->Number());
  return missing;
}

// Two names of one file: the same file on disk, or the same text when either is gone.
bool SameFile(const std::string& a, const std::string& b) {
  struct stat sa, sb;
  if (stat(a.c_str(), &sa) == 0 && stat(b.c_str(), &sb) == 0)
    return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
  return a == b;
}

}  // namespace

RenumberReport RenumberLines(Program& prog, const RenumberRequest& request) {
  RenumberReport report;
  std::vector<Statement*> lines = Lines(prog);
  size_t begin = 0;
  while (begin < lines.size() && lines[begin]->Number() < request.first) ++begin;
  size_t end = begin;
  while (end < lines.size() && lines[end]->Number() <= request.last) ++end;
  if (begin == end) {
    report.refusal = "no lines from " + std::to_string(request.first) + " to " +
                     std::to_string(request.last) + ".";
    return report;
  }
  uint64_t newLast = request.start + uint64_t{request.step} * (end - begin - 1);
  if (newLast > Program::kMaxNumber) {
    report.refusal = "line " + std::to_string(lines[end - 1]->Number()) + " would become " +
                     std::to_string(newLast) + ", past 999999.";
    return report;
  }
  if (begin > 0 && request.start <= lines[begin - 1]->Number()) {
    report.refusal = "line " + std::to_string(lines[begin]->Number()) + " would become " +
                     std::to_string(request.start) + ", not after line " +
                     std::to_string(lines[begin - 1]->Number()) + ".";
    return report;
  }
  if (end < lines.size() && newLast >= lines[end]->Number()) {
    report.refusal = "line " + std::to_string(lines[end - 1]->Number()) + " would become " +
                     std::to_string(newLast) + ", not before line " +
                     std::to_string(lines[end]->Number()) + ".";
    return report;
  }

  // A reference to a missing line keeps its number: no moved line may take it.
  std::set<uint32_t> dangling;
  for (const auto& t : prog.targets.All())
    if (t->users && !t->IsName() && !prog.Find(t->Number())) dangling.insert(t->Number());
  std::vector<std::pair<Statement*, uint32_t>> moves;
  std::unordered_map<uint32_t, uint32_t> newNumber;
  for (size_t i = begin; i < end; ++i) {
    auto number = static_cast<uint32_t>(request.start + uint64_t{request.step} * (i - begin));
    if (dangling.count(number)) {
      std::string naming = "a reference";
      for (const Statement* head : lines)
        for (uint32_t m : Missing(prog, head))
          if (m == number && naming[0] == 'a') naming = "line " + std::to_string(head->Number());
      report.refusal = "line " + std::to_string(lines[i]->Number()) + " would become " +
                       std::to_string(number) + ", which " + naming +
                       " refers to though no line has it.";
      return report;
    }
    moves.emplace_back(lines[i], number);
    newNumber.emplace(lines[i]->Number(), number);
  }

  // CHAIN's start belongs to the file it names: it moves only when that file is this program.
  if (!prog.Name().empty()) {
    for (Statement* s = prog.First(); s; s = s->Next()) {
      std::string file;
      if (ChainStart* start = s->LiteralChain(&file); start && SameFile(file, prog.Name()))
        if (auto it = newNumber.find(start->number); it != newNumber.end())
          start->number = it->second;
    }
  }
  prog.Renumber(moves);

  for (const Statement* head : Lines(prog)) {
    if (head->ParseError()) {
      report.notes.push_back(Program::LineText(head) + ": not rewritten");
      continue;
    }
    std::vector<uint32_t> missing = Missing(prog, head);
    if (missing.empty()) continue;
    std::string note =
        Program::LineText(head) + (missing.size() == 1 ? ": no line " : ": no lines ");
    for (size_t i = 0; i < missing.size(); ++i) {
      if (i) note += ", ";
      note += std::to_string(missing[i]);
    }
    report.notes.push_back(std::move(note));
  }
  return report;
}
