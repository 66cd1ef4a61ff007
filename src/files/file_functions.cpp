#include "files/file_functions.h"

#include <cmath>

#include "base/convert.h"
#include "base/errors.h"
#include "expr/function_nodes.h"
#include "files/file_units.h"
#include "stmt/run_state.h"

namespace {

class TypFunc final : public NumericArgFunc {
 public:
  TypFunc(const KeyToken* key, NumericExpPtr arg, FileUnits& files, DataReader& data)
      : NumericArgFunc(key, std::move(arg)), files_(files), data_(data) {}
  size_t Size() const override { return sizeof *this + arg_->Size(); }
  // 0 asks about DATA; n about file n, -n the same looking past end-of-record marks.
  float Evaluate() override {
    static constexpr float kNumber = 1, kString = 2, kNone = 3;
    double n = conv::RoundHalfUp(arg_->Evaluate());
    if (n != 0) {
      FileUnit* unit = files_.OpenUnit(static_cast<float>(std::fabs(n)));
      return unit ? unit->Type(n < 0) : kNone;
    }
    const DataItem* item = data_.item;
    if (!item) return kNone;
    return item->type == tok::kStrVar ? kString : kNumber;
  }

 private:
  FileUnits& files_;
  DataReader& data_;
};

// REC(n) and ITM(n): the record of file n's pointer and the number of the item
// it stands on within that record.
class FilePointerFunc final : public NumericArgFunc {
 public:
  FilePointerFunc(const KeyToken* key, NumericExpPtr arg, FileUnits& files)
      : NumericArgFunc(key, std::move(arg)), files_(files) {}
  size_t Size() const override { return sizeof *this + arg_->Size(); }
  float Evaluate() override {
    float n = arg_->Evaluate();
    FileUnit* unit = g_err.run ? nullptr : files_.OpenUnit(n);
    if (!unit) return 0;
    return static_cast<float>(Kind() == static_cast<int>(tok::kFnRec) ? unit->Record()
                                                                      : unit->Item());
  }

 private:
  FileUnits& files_;
};

}  // namespace

NumericExpPtr MakeFileFunction(const KeyToken* key, NumericExpPtr arg, FileUnits& files,
                               DataReader& data) {
  switch (key->Code()) {
    case tok::kFnTyp:
      return std::make_unique<TypFunc>(key, std::move(arg), files, data);
    case tok::kFnRec:
    case tok::kFnItm:
      return std::make_unique<FilePointerFunc>(key, std::move(arg), files);
    default:
      return nullptr;
  }
}
