// Parsing of built-in function calls: the keyword picks the argument shapes.
#include "expr/function_nodes.h"
#include "shell/program.h"

namespace {

// Fails a call: the error is stored (unless code is 0) and the position restored.
template <typename Ptr>
Ptr Fail(Program& p, size_t mark, ErrorCode code) {
  if (code) SetParseError(code);
  p.Restore(mark);
  return nullptr;
}

bool IsSystemFunction(TokenCode code) {
  switch (code) {
    case tok::kFnTid:
    case tok::kFnVer:
    case tok::kFnBrk:
    case tok::kFnTim:
    case tok::kFnTyp:
    case tok::kFnSys:
      return true;
    default:
      return false;
  }
}

}  // namespace

NumericExpPtr ParseNumericFunction(Program& p) {
  size_t mark = p.Mark();
  TokenCode code = p.GetToken();
  const KeyToken* key = p.Symbol();
  if (tok::Category(code) != tok::kNumFunc || !key) return Fail<NumericExpPtr>(p, mark, 0);
  if (!p.Accept(tok::kLParen)) return Fail<NumericExpPtr>(p, mark, err::kMissingLParen);

  NumericExpPtr node;
  switch (code) {
    case tok::kFnPi:
      node = MakePi(key);
      break;
    case tok::kFnDec:
    case tok::kFnLen:
    case tok::kFnNum: {
      StringExpPtr arg = ParseStringExp(p);
      if (!arg) return Fail<NumericExpPtr>(p, mark, 0);
      node = MakeStringArgFunction(key, std::move(arg), nullptr);
      break;
    }
    case tok::kFnPos: {
      StringExpPtr text = ParseStringExp(p);
      if (!text) return Fail<NumericExpPtr>(p, mark, 0);
      if (!p.Accept(tok::kComma)) return Fail<NumericExpPtr>(p, mark, err::kMissingDelimiter);
      StringExpPtr pattern = ParseStringExp(p);
      if (!pattern) return Fail<NumericExpPtr>(p, mark, 0);
      node = MakeStringArgFunction(key, std::move(text), std::move(pattern));
      break;
    }
    case tok::kFnRec:
    case tok::kFnItm:
      return Fail<NumericExpPtr>(p, mark, err::kBadNumericExp);
    default: {
      NumericExpPtr arg = ParseNumericExp(p);
      if (!arg) return Fail<NumericExpPtr>(p, mark, 0);
      node = IsSystemFunction(code) ? MakeSystemFunction(key, std::move(arg), p)
                                    : MakeMathFunction(key, std::move(arg));
      if (!node) return Fail<NumericExpPtr>(p, mark, err::kBadNumericExp);
      break;
    }
  }
  if (!p.Accept(tok::kRParen)) return Fail<NumericExpPtr>(p, mark, err::kMissingRParen);
  SetParseError(0);
  return node;
}

StringExpPtr ParseStringFunction(Program& p) {
  size_t mark = p.Mark();
  TokenCode code = p.GetToken();
  const KeyToken* key = p.Symbol();
  if (tok::Category(code) != tok::kStrFunc || !key) return Fail<StringExpPtr>(p, mark, 0);
  if (!p.Accept(tok::kLParen)) return Fail<StringExpPtr>(p, mark, err::kMissingLParen);

  StringExpPtr text;
  NumericExpPtr number, count;
  switch (code) {
    case tok::kFnUps:
      if (!(text = ParseStringExp(p))) return Fail<StringExpPtr>(p, mark, 0);
      break;
    case tok::kFnChr:
    case tok::kFnDecStr:
      if (!(number = ParseNumericExp(p))) return Fail<StringExpPtr>(p, mark, 0);
      break;
    case tok::kFnLeft:
    case tok::kFnRight:
    case tok::kFnMid:
      if (!(text = ParseStringExp(p))) return Fail<StringExpPtr>(p, mark, 0);
      if (!p.Accept(tok::kComma)) return Fail<StringExpPtr>(p, mark, err::kMissingDelimiter);
      if (!(number = ParseNumericExp(p))) return Fail<StringExpPtr>(p, mark, 0);
      if (code == tok::kFnMid && p.Accept(tok::kComma) && !(count = ParseNumericExp(p)))
        return Fail<StringExpPtr>(p, mark, 0);
      break;
    default:
      return Fail<StringExpPtr>(p, mark, err::kBadStringExp);
  }
  if (!p.Accept(tok::kRParen)) return Fail<StringExpPtr>(p, mark, err::kMissingRParen);
  SetParseError(0);
  return MakeStringFunction(key, std::move(text), std::move(number), std::move(count));
}
