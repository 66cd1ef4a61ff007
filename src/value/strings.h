// String storage: scalars and arrays of string values, created by the link
// pass and by DIM.
#pragma once
#include <cstdint>
#include <memory>

#include "base/errors.h"
#include "value/numeric.h"
#include "value/string_value.h"

class VarToken;

struct StringSimpleData {
  const VarToken* name;
  StringValue value;
};

struct StringScriptData : ArrayShape {
  const VarToken* name;
  std::unique_ptr<StringValue[]> elements;
};

// Creates an array; 59 when it has too many elements, 3 when memory is short.
ErrorCode MakeStringArray(const VarToken* name, DimensionList dims,
                          std::unique_ptr<StringScriptData>* out);
