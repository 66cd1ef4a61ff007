// Parsing of built-in function calls: the keyword picks the argument shapes.
#include "expr/expr_context.h"
#include "expr/function_nodes.h"
#include "lex/parse_attempt.h"

namespace {

bool IsSystemFunction(TokenCode code) {
  switch (code) {
    case tok::kFnTid:
    case tok::kFnVer:
    case tok::kFnBrk:
    case tok::kFnTim:
    case tok::kFnTyp:
    case tok::kFnRec:
    case tok::kFnItm:
    case tok::kFnSys:
      return true;
    default:
      return false;
  }
}

}  // namespace

NumericExpPtr ParseNumericFunction(ExprContext& p) {
  ParseAttempt call(p);
  TokenCode code = p.GetToken();
  const KeyToken* key = p.Symbol();
  if (tok::Category(code) != tok::kNumFunc || !key) return call.Fail();
  TokenCode open = p.AcceptOpener();
  if (!open) return call.Replace(err::kMissingLParen);

  NumericExpPtr node;
  switch (code) {
    case tok::kFnPi:
      node = MakePi(key);
      break;
    case tok::kFnDec:
    case tok::kFnLen:
    case tok::kFnNum: {
      StringExpPtr arg = ParseStringExp(p);
      if (!arg) return call.Fail();
      node = MakeStringArgFunction(key, std::move(arg), nullptr);
      break;
    }
    case tok::kFnPos: {
      StringExpPtr text = ParseStringExp(p);
      if (!text) return call.Fail();
      if (!p.Accept(tok::kComma)) return call.Replace(err::kMissingDelimiter);
      StringExpPtr pattern = ParseStringExp(p);
      if (!pattern) return call.Fail();
      node = MakeStringArgFunction(key, std::move(text), std::move(pattern));
      break;
    }
    default: {
      NumericExpPtr arg = ParseNumericExp(p);
      if (!arg) return call.Fail();
      node = IsSystemFunction(code) ? MakeSystemFunction(key, std::move(arg), p)
                                    : MakeMathFunction(key, std::move(arg));
      if (!node) return call.Replace(err::kBadNumericExp);
      break;
    }
  }
  if (!p.AcceptCloser(open)) return call.Replace(err::kMissingRParen);
  SetParseError(0);
  return node;
}

StringExpPtr ParseStringFunction(ExprContext& p) {
  ParseAttempt call(p);
  TokenCode code = p.GetToken();
  const KeyToken* key = p.Symbol();
  if (tok::Category(code) != tok::kStrFunc || !key) return call.Fail();
  TokenCode open = p.AcceptOpener();
  if (!open) return call.Replace(err::kMissingLParen);

  StringExpPtr text;
  NumericExpPtr number, count;
  switch (code) {
    case tok::kFnUps:
      if (!(text = ParseStringExp(p))) return call.Fail();
      break;
    case tok::kFnChr:
    case tok::kFnDecStr:
      if (!(number = ParseNumericExp(p))) return call.Fail();
      break;
    case tok::kFnLeft:
    case tok::kFnRight:
    case tok::kFnMid:
      if (!(text = ParseStringExp(p))) return call.Fail();
      if (!p.Accept(tok::kComma)) return call.Replace(err::kMissingDelimiter);
      if (!(number = ParseNumericExp(p))) return call.Fail();
      if (code == tok::kFnMid && p.Accept(tok::kComma) && !(count = ParseNumericExp(p)))
        return call.Fail();
      break;
    default:
      return call.Replace(err::kBadStringExp);
  }
  if (!p.AcceptCloser(open)) return call.Replace(err::kMissingRParen);
  SetParseError(0);
  return MakeStringFunction(key, std::move(text), std::move(number), std::move(count));
}
