// libFuzzer target: any bytes as an IMAGE format in both grammars, run over a
// few numbers and strings. The line must stay within its bound and the code
// among the format's.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "format/using_runner.h"

namespace {

class FuzzValues final : public UsingValues {
 public:
  bool Remains() const override { return next_ < 6; }
  FieldValue Take() override {
    static constexpr float kNumbers[] = {3.14159f, -1.5f, 0.0f, 3.4e38f, -1e-30f, 1e9f};
    size_t i = next_++;
    if (i % 3 == 2) return {true, 0, i == 2 ? std::string_view("text") : std::string_view()};
    return {false, kNumbers[i], {}};
  }

 private:
  size_t next_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t kMaxLine = 1 << 20;  // small, so that runs stay fast
  std::string_view text(reinterpret_cast<const char*>(data), size);
  // Each text is read in both grammars: this language's and the classic switch's.
  for (auto grammar : {ImageFormat::kOwn, ImageFormat::kClassic}) {
    ImageFormat image(text, grammar);
    FuzzValues values;
    FormatRunner runner(kMaxLine);
    ErrorCode code = runner.Run(image, values);
    if (runner.Line().size() > kMaxLine) std::abort();
    // Only the format errors (kBadReplicator to kBadLiteral) and an overflowing string may come
    // back.
    bool formatError = code >= err::kBadReplicator && code <= err::kBadLiteral;
    if (code != 0 && code != err::kStringOverflow && !formatError) std::abort();
  }
  return 0;
}
