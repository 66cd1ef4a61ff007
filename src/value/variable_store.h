// The variables of a program at run time: scalars and arrays of both kinds,
// found by their symbol's ordinal. The link pass creates them and binds every
// reference to its storage, so a running expression never looks one up.
#pragma once
#include <cstddef>
#include <memory>
#include <vector>

#include "value/numeric.h"
#include "value/strings.h"

class VarToken;

class VariableStore final {
 public:
  NumericSimpleData* NumericSimple(const VarToken* name);            // found or created
  NumericSimpleData* FindNumericSimple(const VarToken* name) const;  // null when not created
  std::unique_ptr<NumericScriptData>& NumericArray(const VarToken* name);
  StringSimpleData* StringSimple(const VarToken* name);
  StringSimpleData* FindStringSimple(const VarToken* name) const;  // null when not created
  std::unique_ptr<StringScriptData>& StringArray(const VarToken* name);
  void Clear();
  size_t HeapSize() const;
  // The variables made so far, by ordinal; a slot is null when its name has none.
  const std::vector<std::unique_ptr<NumericSimpleData>>& NumericSimples() const {
    return numSimple_;
  }
  const std::vector<std::unique_ptr<NumericScriptData>>& NumericArrays() const {
    return numArrays_;
  }
  const std::vector<std::unique_ptr<StringSimpleData>>& StringSimples() const { return strSimple_; }
  const std::vector<std::unique_ptr<StringScriptData>>& StringArrays() const { return strArrays_; }

 private:
  std::vector<std::unique_ptr<NumericSimpleData>> numSimple_;  // by symbol ordinal
  std::vector<std::unique_ptr<NumericScriptData>> numArrays_;
  std::vector<std::unique_ptr<StringSimpleData>> strSimple_;
  std::vector<std::unique_ptr<StringScriptData>> strArrays_;
};
