#include "base/errors.h"

ErrorState g_err;

namespace {

struct ErrorRow {
  ErrorCode code;
  const char* message;
};

// The rows of errors.def in their order, ended by the row that ends every search.
constexpr ErrorRow kErrorTable[] = {
#define ERR(code, name, message) {err::name, message},
#include "base/errors.def"
#undef ERR
    {0, "OK!"},
};

}  // namespace

const char* MessageOf(ErrorCode code) {
  const ErrorRow* row = kErrorTable;
  while (row->code != 0 && row->code != code) ++row;
  return row->message;
}
