#pragma once

#include <unicode/ucnv.h>

#include <memory>
#include <string>
#include <string_view>

#include "platform/Locale.h"

namespace vesko {

/// Owns one of ICU's converters, which keep the state of a conversion.
struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using ConverterPtr = std::unique_ptr<UConverter, CloseConverter>;

/// One narrow code page by ICU's tables. Text without a character above 127 takes a short way past
/// ICU. For one thread, as every conversion uses the same converter.
class IcuCodePage {
 public:
  /// An unknown code page counts as 65001. Run-time error 5 where ICU was built without the table.
  explicit IcuCodePage(int code_page);

  /// The code page in use.
  int Number() const { return number_; }

  /// As the members of Locale of the same names. Bytes are untrusted: malformed ones become U+FFFD,
  /// and only Character throws.
  Text ToText(std::string_view bytes) const;
  std::string ToBytes(TextView text) const;
  std::unique_ptr<TextDecoder> NewDecoder() const;
  int TrailBytes(uint8_t lead) const;
  Text Character(std::string_view bytes) const;

 private:
  int number_;
  ConverterPtr converter_;  // reset before each use
};

}  // namespace vesko
