#pragma once

#include <unicode/ucnv.h>

#include <memory>
#include <string>
#include <string_view>

#include "platform/Locale.h"

namespace vesko {

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using ConverterPtr = std::unique_ptr<UConverter, CloseConverter>;

/// One narrow code page. Text without a character above 127 takes a short way past ICU. For one
/// thread.
class IcuCodePage {
 public:
  /// An unknown code page counts as 65001.
  explicit IcuCodePage(int code_page);

  int Number() const { return number_; }

  /// As the members of Locale of the same names.
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
