// Evaluation cost of linked numeric expression trees of a few nodes.
#include <benchmark/benchmark.h>

#include "expr/numeric_exp.h"
#include "program/program.h"

namespace {

// A program holding one parsed, linked expression with its variables set.
class Linked {
 public:
  explicit Linked(const char* text) {
    prog_.StartLine(text);
    exp_ = ParseNumericExp(prog_);
    for (Reference* r = prog_.References().First(); r; r = r->Next()) r->Link(prog_);
    for (const char* name : {"X", "Y", "I"}) Set(name, 3);
    Set("A(3)", 2);
  }
  bool ok() const { return exp_ != nullptr; }
  NumericExp& exp() { return *exp_; }

 private:
  void Set(const char* target, float value) {
    prog_.StartLine(target);
    auto v = ParseNumericVar(prog_);
    static_cast<Reference&>(*v).Link(prog_);
    v->Assign(value);
  }
  Program prog_;
  NumericExpPtr exp_;
};

void Evaluate(benchmark::State& state, const char* text) {
  Linked linked(text);
  if (!linked.ok()) {
    state.SkipWithError("no parse");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(linked.exp().Evaluate());
}

BENCHMARK_CAPTURE(Evaluate, literal, "2");
BENCHMARK_CAPTURE(Evaluate, var_plus_const, "X+1");
BENCHMARK_CAPTURE(Evaluate, four_nodes, "X*Y+A(I)");
BENCHMARK_CAPTURE(Evaluate, relation_and, "X*2+Y<10 AND A(I)>1");
BENCHMARK_CAPTURE(Evaluate, power_and_mod, "(X^2+Y^2) MOD 7");

}  // namespace
