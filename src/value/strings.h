// String storage: scalars and arrays of string values, created by the link
// pass and by DIM.
#pragma once
#include <cstdint>
#include <memory>

#include "base/errors.h"
#include "value/numeric.h"
#include "value/string_value.h"

class VarToken;

// declared: the length DIM or COM gave, 0 for none. It limits only what a
// text file's line or item may put in the variable (LINPUT #, READ #).
struct StringSimpleData {
  const VarToken* name;
  StringValue value;
  uint32_t declared = 0;
};

struct StringScriptData : ArrayShape {
  const VarToken* name;
  std::unique_ptr<StringValue[]> elements;
  uint32_t declared = 0;
};

// Creates an array; 59 when it has too many elements, 3 when memory is short.
ErrorCode MakeStringArray(const VarToken* name, DimensionList dims,
                          std::unique_ptr<StringScriptData>* out);
