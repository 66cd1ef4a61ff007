#include "stmt/targets.h"

#include "lex/parse_attempt.h"
#include "stmt/stmt_context.h"

namespace {

std::unique_ptr<Target> ParseOneTarget(StmtContext& p) {
  if (auto numeric = ParseNumericVar(p)) return std::make_unique<NumericTarget>(std::move(numeric));
  if (auto text = ParseStringVar(p)) return std::make_unique<StringTarget>(std::move(text));
  return nullptr;
}

}  // namespace

bool ParseTargetList(StmtContext& p, TargetList* out) {
  ParseAttempt attempt(p);
  auto first = ParseOneTarget(p);
  if (!first) return true;
  out->push_back(std::move(first));
  while (p.Accept(tok::kComma)) {
    auto next = ParseOneTarget(p);
    if (!next) {
      attempt.Replace(err::kBadTarget);
      out->clear();
      return false;
    }
    out->push_back(std::move(next));
  }
  return true;
}

size_t TargetsSize(const TargetList& targets) {
  size_t size = 0;
  for (const auto& t : targets) size += t->Size();
  return size;
}

void ListTargets(std::string& out, const TargetList& targets) {
  for (size_t i = 0; i < targets.size(); ++i) {
    if (i) out += ',';
    targets[i]->List(out);
  }
}
