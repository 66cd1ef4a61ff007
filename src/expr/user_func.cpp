// User function definitions and calls. A call passes its arguments through
// the program's data stacks, so parameters are local to the call.
#include "expr/user_func.h"

#include <algorithm>

#include "expr/expr_context.h"
#include "expr/function_nodes.h"
#include "lex/parse_attempt.h"

// --- Parameter lists and definitions.

bool ParameterSpec::Add(const VarToken* name, bool isString) {
  if (SlotOf(name, isString) >= 0) return false;
  params_.push_back({name, isString, isString ? strCount_++ : numCount_++});
  return true;
}

int ParameterSpec::SlotOf(const VarToken* name, bool isString) const {
  for (const Parameter& param : params_)
    if (param.name == name && param.isString == isString) return static_cast<int>(param.slot);
  return -1;
}

void ParameterSpec::List(std::string& out) const {
  out += '(';
  for (size_t i = 0; i < params_.size(); ++i) {
    if (i) out += ',';
    out += params_[i].name->Name();
  }
  out += ')';
}

void FuncSpec::List(std::string& out) const {
  out += name_->Name();
  params_.List(out);
  out += '=';
  ListBody(out);
}

namespace {

// Parameter names bind to frame slots while a body is parsed; restored on every path.
class ParamsScope final {
 public:
  ParamsScope(ExprContext& p, const ParameterList* params) : p_(p), saved_(p.params) {
    p.params = params;
  }
  ~ParamsScope() { p_.params = saved_; }
  ParamsScope(const ParamsScope&) = delete;
  ParamsScope& operator=(const ParamsScope&) = delete;

 private:
  ExprContext& p_;
  const ParameterList* saved_;
};

bool StartsWithFn(std::string_view name) {
  return name.size() > 2 && (name[0] == 'f' || name[0] == 'F') &&
         (name[1] == 'n' || name[1] == 'N');
}

bool ParseParameters(ExprContext& p, ParameterSpec* out) {
  TokenCode open = p.AcceptOpener();
  if (!open) return SetParseError(err::kMissingLParen), false;
  if (p.AcceptCloser(open)) return true;
  for (;;) {
    TokenCode category = tok::Category(p.GetToken());
    if ((category != tok::kNumVar && category != tok::kStrVar) || !p.Symbol())
      return SetParseError(err::kBadParam), false;
    if (!out->Add(static_cast<const VarToken*>(p.Symbol()), category == tok::kStrVar))
      return SetParseError(err::kDuplicateParam), false;
    if (p.AcceptCloser(open)) return true;
    if (!p.Accept(tok::kComma)) return SetParseError(err::kBadParamList), false;
  }
}

template <typename Spec, typename Body>
std::unique_ptr<FuncSpec> ParseBody(ExprContext& p, const VarToken* name, ParameterSpec params,
                                    Body (*parse)(ExprContext&), ErrorCode missing) {
  ParseAttempt attempt(p);
  Body body;
  {
    ParamsScope scope(p, &params);
    body = parse(p);
  }
  if (!body) return attempt.Fail(missing);
  return std::make_unique<Spec>(name, std::move(params), std::move(body));
}

}  // namespace

std::unique_ptr<FuncSpec> ParseFuncSpec(ExprContext& p) {
  ParseAttempt attempt(p);
  TokenCode category = tok::Category(p.GetToken());
  const KeyToken* symbol = p.Symbol();
  if ((category != tok::kNumUserFn && category != tok::kStrUserFn) || !symbol) {
    // "FNA" without brackets scans as a plain variable: its parameter list is missing.
    bool plain = (category == tok::kNumVar || category == tok::kStrVar) && symbol;
    return attempt.Replace(plain && StartsWithFn(symbol->Name()) ? err::kMissingParamDef
                                                                 : err::kBadFunctionName);
  }
  const auto* name = static_cast<const VarToken*>(symbol);
  ParameterSpec params;
  std::unique_ptr<FuncSpec> spec;
  if (!ParseParameters(p, &params)) {
  } else if (!p.Accept(tok::kEQ)) {
    SetParseError(err::kMissingAssignOp);
  } else if (category == tok::kNumUserFn) {
    spec = ParseBody<FuncNumericSpec>(p, name, std::move(params), ParseNumericExp,
                                      err::kBadNumericExp);
  } else {
    spec =
        ParseBody<FuncStringSpec>(p, name, std::move(params), ParseStringExp, err::kBadStringExp);
  }
  if (!spec) return attempt.Fail();
  return spec;
}

// --- Calls.

namespace {

// One argument of a call: a number or a string.
struct Argument {
  NumericExpPtr number;
  StringExpPtr text;
};

// "(arg,...)": each argument a numeric expression, else a string expression.
bool ParseArguments(ExprContext& p, std::vector<Argument>* out) {
  if (!p.SpendExpression()) return SetParseError(err::kBadNumericExp), false;
  ParseAttempt attempt(p);
  TokenCode open = p.AcceptOpener();
  if (!open) return SetParseError(err::kMissingLParen), false;
  if (p.AcceptCloser(open)) return true;
  do {
    Argument arg;
    // A string expression that ends its argument is one. Read first, it spares each
    // nested string call a second reading, which doubled the work with every level.
    ParseAttempt text(p);
    ErrorCode before = g_err.parse;
    if ((arg.text = ParseStringExp(p)) && (p.Peek() == tok::kComma || ClosesList(p.Peek(), open))) {
      out->push_back(std::move(arg));
      continue;
    }
    arg.text.reset();
    text.Rewind();
    SetParseError(before);
    if (!(arg.number = ParseNumericExp(p))) {
      ErrorCode numericError = g_err.parse;
      if (!(arg.text = ParseStringExp(p))) {
        attempt.Fail(numericError ? numericError : err::kBadParam);
        return false;
      }
    }
    out->push_back(std::move(arg));
  } while (p.Accept(tok::kComma));
  if (!p.AcceptCloser(open)) return SetParseError(err::kMissingRParen), false;
  SetParseError(0);
  return true;
}

// The shared part of the call nodes: binding, and entering and leaving a frame.
class UserCall final {
 public:
  UserCall(const VarToken* name, std::vector<Argument> args, ExprContext& prog)
      : name_(name), args_(std::move(args)), frames_(prog.calls) {}

  size_t Size() const {
    size_t size = args_.size() * sizeof(Argument);
    for (const Argument& arg : args_) size += arg.number ? arg.number->Size() : arg.text->Size();
    return size;
  }

  void List(std::string& out) const {
    out += name_->Name();
    out += '(';
    for (size_t i = 0; i < args_.size(); ++i) {
      if (i) out += ',';
      if (args_[i].number)
        args_[i].number->List(out);
      else
        args_[i].text->List(out);
    }
    out += ')';
  }

  ErrorCode Link(ExprContext& prog) {
    active_ = 0;  // every run starts with no call active
    auto found = std::find_if(prog.functions.begin(), prog.functions.end(),
                              [this](const FuncSpec* f) { return f->Name() == name_; });
    if (found == prog.functions.end()) return err::kUndefinedFunction;
    if (!Compatible((*found)->Params())) return err::kIncompatibleArgs;
    spec_ = *found;
    frames_.Reserve(spec_->Params().NumericCount(), spec_->Params().StringCount());
    return 0;
  }

  // Takes the frame and stores the arguments, evaluated in the caller's
  // frame; false (with kRecursion raised) when this call site is already active.
  bool Enter(CallFrames::Saved* saved) {
    if (active_ != 0) {
      SetRunError(err::kRecursion);  // the error ends the run; the site stays as it was
      return false;
    }
    ++active_;
    const ParameterSpec& params = spec_->Params();
    CallFrames::Frame frame = frames_.Push(params.NumericCount(), params.StringCount(), saved);
    for (size_t i = 0; i < args_.size(); ++i) {
      const ParameterSpec::Parameter& param = params.Parameters()[i];
      if (param.isString) {
        StringValue& slot = frames_.String(frame, param.slot);
        HoldIn(slot, args_[i].text->Evaluate(slot));
      } else {
        frames_.Number(frame, param.slot) = args_[i].number->Evaluate();
      }
    }
    frames_.Enter(frame);
    return true;
  }

  void Leave(const CallFrames::Saved& saved) {
    frames_.Pop(saved);
    --active_;
  }

  const FuncSpec* Spec() const { return spec_; }

 private:
  bool Compatible(const ParameterSpec& params) const {
    if (params.Parameters().size() != args_.size()) return false;
    for (size_t i = 0; i < args_.size(); ++i)
      if (params.Parameters()[i].isString != (args_[i].text != nullptr)) return false;
    return true;
  }

  const VarToken* name_;
  std::vector<Argument> args_;
  CallFrames& frames_;
  uint32_t active_ = 0;
  const FuncSpec* spec_ = nullptr;  // bound by the link pass
};

class NumericUserFunc final : public NumericExp, public Reference {
 public:
  NumericUserFunc(const VarToken* name, std::vector<Argument> args, ExprContext& prog)
      : call_(name, std::move(args), prog) {}
  int Kind() const override { return static_cast<int>(tok::kNumUserFn); }
  size_t Size() const override { return sizeof *this + call_.Size(); }
  void List(std::string& out) const override { call_.List(out); }
  ErrorCode Link(ExprContext& prog) override { return call_.Link(prog); }
  float Evaluate() override {
    CallFrames::Saved saved;
    if (!call_.Enter(&saved)) return 0.0f;
    float value = static_cast<const FuncNumericSpec*>(call_.Spec())->Body().Evaluate();
    call_.Leave(saved);
    return value;
  }

 private:
  UserCall call_;
};

class StringUserFunc final : public StringExp, public Reference {
 public:
  StringUserFunc(const VarToken* name, std::vector<Argument> args, ExprContext& prog)
      : call_(name, std::move(args), prog) {}
  int Kind() const override { return static_cast<int>(tok::kStrUserFn); }
  size_t Size() const override { return sizeof *this + call_.Size(); }
  void List(std::string& out) const override { call_.List(out); }
  ErrorCode Link(ExprContext& prog) override { return call_.Link(prog); }
  std::string_view Evaluate(StringValue& work) override {
    CallFrames::Saved saved;
    if (!call_.Enter(&saved)) return {};
    // The result may lie in a parameter slot, which the next call reuses.
    HoldIn(work, static_cast<const FuncStringSpec*>(call_.Spec())->Body().Evaluate(work));
    call_.Leave(saved);
    return work.View();
  }

 private:
  UserCall call_;
};

template <typename Node, typename Ptr>
Ptr ParseCall(ExprContext& p, TokenCode category) {
  ParseAttempt attempt(p);
  const KeyToken* symbol = nullptr;
  if (tok::Category(p.GetToken()) == category) symbol = p.Symbol();
  std::vector<Argument> args;
  if (!symbol || !ParseArguments(p, &args)) return attempt.Fail();
  auto node = std::make_unique<Node>(static_cast<const VarToken*>(symbol), std::move(args), p);
  p.References().Append(node.get());
  return node;
}

}  // namespace

NumericExpPtr ParseNumericUserCall(ExprContext& p) {
  return ParseCall<NumericUserFunc, NumericExpPtr>(p, tok::kNumUserFn);
}

StringExpPtr ParseStringUserCall(ExprContext& p) {
  return ParseCall<StringUserFunc, StringExpPtr>(p, tok::kStrUserFn);
}
