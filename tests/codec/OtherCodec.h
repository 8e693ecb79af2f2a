#pragma once

#include <unicode/ucnv.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tarn::test {

// A character set of another library, which shares neither code nor tables with the C library's. Strict both ways.
class OtherCodec final {
public:
  explicit OtherCodec(const char* name) : name_(name) {}

  std::optional<std::string> bytesOf(std::string_view text) const { return converted(text, "UTF-8", name_); }
  std::optional<std::string> textOf(std::string_view bytes) const { return converted(bytes, name_, "UTF-8"); }

private:
  // New for each call: one that is used again forgets the header of ISO-2022-KR.
  class Converter final {
  public:
    explicit Converter(const char* name) : converter_(ucnv_open(name, &error_)) {
      ucnv_setFromUCallBack(converter_, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error_);
      ucnv_setToUCallBack(converter_, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() { ucnv_close(converter_); }

    UConverter* get() const { return converter_; }

  private:
    UErrorCode error_ = U_ZERO_ERROR;
    UConverter* const converter_;
  };

  static std::optional<std::string> converted(std::string_view input, const char* from, const char* to) {
    const Converter source(from);
    const Converter target(to);
    std::string output(8 * input.size() + 16, '\0');
    char* out = output.data();
    const char* in = input.data();
    std::array<UChar, 512> pivot;
    UChar* pivotSource = pivot.data();
    UChar* pivotTarget = pivot.data();
    UErrorCode error = U_ZERO_ERROR;
    ucnv_convertEx(target.get(), source.get(), &out, out + output.size(), &in, in + input.size(), pivot.data(),
                   &pivotSource, &pivotTarget, pivot.data() + pivot.size(), false, true, &error);
    if (U_FAILURE(error)) return std::nullopt;
    output.resize(static_cast<std::size_t>(out - output.data()));
    return output;
  }

  const char* name_;
};

}  // namespace tarn::test
