// WINDOW, CLOSE @, COLOR, MOVETO, LINETO, UPDATE @, SHOW and HIDE: the
// statements that draw into graphics windows, each written with "@" and a
// GDI number. They list as `LINETO @1; X,Y`.
#include <array>

#include "base/convert.h"
#include "gdi/gdi.h"
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

// What distinguishes the eight statements: keyword, code, how many arguments
// follow the GDI number, and what runs on the rounded values.
struct GdiForm {
  const char* keyword;
  TokenCode code;
  int args;
  ErrorCode (*run)(const int32_t* v);  // v[0] is the GDI number
};

constexpr GdiForm kWindow{"WINDOW", tok::kWindow, 2,
                          [](const int32_t* v) { return gdi::Window(v[0], v[1], v[2]); }};
constexpr GdiForm kCloseGdi{"CLOSE", tok::kClose, 0,
                            [](const int32_t* v) { return gdi::Close(v[0]); }};
constexpr GdiForm kColor{"COLOR", tok::kColor, 3,
                         [](const int32_t* v) { return gdi::Color(v[0], v[1], v[2], v[3]); }};
constexpr GdiForm kMoveTo{"MOVETO", tok::kMoveTo, 2,
                          [](const int32_t* v) { return gdi::MoveTo(v[0], v[1], v[2]); }};
constexpr GdiForm kLineTo{"LINETO", tok::kLineTo, 2,
                          [](const int32_t* v) { return gdi::LineTo(v[0], v[1], v[2]); }};
constexpr GdiForm kUpdateGdi{"UPDATE", tok::kUpdate, 0,
                             [](const int32_t* v) { return gdi::Update(v[0]); }};
constexpr GdiForm kShow{"SHOW", tok::kShow, 0, [](const int32_t* v) { return gdi::Show(v[0]); }};
constexpr GdiForm kHide{"HIDE", tok::kHide, 0, [](const int32_t* v) { return gdi::Hide(v[0]); }};

class GdiStmt final : public Statement {
 public:
  static constexpr int kMaxArgs = 3;
  using Args = std::array<NumericExpPtr, kMaxArgs>;

  GdiStmt(const GdiForm& form, NumericExpPtr number, Args args)
      : form_(form), number_(std::move(number)), args_(std::move(args)) {}

  // Every value is evaluated and rounded before any check.
  Statement* Execute() override {
    int32_t v[1 + kMaxArgs];
    v[0] = conv::RoundToInt32(number_->Evaluate());
    for (int i = 0; i < form_.args && !g_err.run; ++i)
      v[1 + i] = conv::RoundToInt32(args_[i]->Evaluate());
    if (g_err.run) return successor_;
    ErrorCode code = form_.run(v);
    return code ? Fail(code) : successor_;
  }
  TokenCode Code() const override { return form_.code; }
  size_t Size() const override {
    size_t size = sizeof *this + number_->Size();
    for (int i = 0; i < form_.args; ++i) size += args_[i]->Size();
    return size;
  }
  void List(std::string& out) const override {
    out += form_.keyword;
    out += " @";
    number_->List(out);
    for (int i = 0; i < form_.args; ++i) {
      out += i == 0 ? "; " : ",";
      args_[i]->List(out);
    }
  }

 private:
  const GdiForm& form_;
  NumericExpPtr number_;
  Args args_;
};

// An expression, or null with the parse error set (the expression's own, else code).
NumericExpPtr Expect(StmtContext& p, ErrorCode code) {
  ParseAttempt attempt(p);
  NumericExpPtr exp = ParseNumericExp(p);
  if (!exp) return attempt.Fail(code);
  return exp;
}

// "@" number, then count arguments after "; " and between ",".
StatementPtr ParseGdi(StmtContext& p, const GdiForm& form) {
  if (!p.Accept(tok::kAt)) {
    SetParseError(err::kMissingGdiAt);
    return nullptr;
  }
  NumericExpPtr number = Expect(p, err::kMissingGdiNumber);
  if (!number) return nullptr;
  GdiStmt::Args args;
  for (int i = 0; i < form.args; ++i) {
    if (!p.Accept(i == 0 ? tok::kSemicolon : tok::kComma)) {
      SetParseError(i == 0 ? err::kMissingSemicolon : err::kMissingDelimiter);
      return nullptr;
    }
    if (!(args[i] = Expect(p, err::kBadNumericExp))) return nullptr;
  }
  return std::make_unique<GdiStmt>(form, std::move(number), std::move(args));
}

}  // namespace

StatementPtr ParseWindow(StmtContext& p) { return ParseGdi(p, kWindow); }
StatementPtr ParseColor(StmtContext& p) { return ParseGdi(p, kColor); }
StatementPtr ParseMoveTo(StmtContext& p) { return ParseGdi(p, kMoveTo); }
StatementPtr ParseLineTo(StmtContext& p) { return ParseGdi(p, kLineTo); }
StatementPtr ParseShow(StmtContext& p) { return ParseGdi(p, kShow); }
StatementPtr ParseHide(StmtContext& p) { return ParseGdi(p, kHide); }

// CLOSE #n and UPDATE #n are the file statements, which the statement table sends to files/.
StatementPtr ParseClose(StmtContext& p) {
  if (p.Peek() == tok::kAt) return ParseGdi(p, kCloseGdi);
  SetParseError(err::kNotSupported);
  return nullptr;
}
StatementPtr ParseUpdate(StmtContext& p) {
  if (p.Peek() == tok::kAt) return ParseGdi(p, kUpdateGdi);
  SetParseError(err::kNotSupported);
  return nullptr;
}
