#include "base/Variant.h"

#include <array>
#include <charconv>
#include <cmath>
#include <compare>
#include <limits>
#include <type_traits>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

/// Groups of types that compare with each other, in the order of the groups.
enum class Rank { kEmpty, kNumber, kText, kObject, kBytes, kWords };

Rank RankOf(const Variant& value) {
  if (IsEmpty(value)) return Rank::kEmpty;
  if (std::holds_alternative<Text>(value)) return Rank::kText;
  if (std::holds_alternative<std::shared_ptr<Object>>(value)) return Rank::kObject;
  if (std::holds_alternative<ByteArray>(value)) return Rank::kBytes;
  if (std::holds_alternative<WordArray>(value)) return Rank::kWords;
  return Rank::kNumber;
}

template <typename Ordered>
int Sign(const Ordered& left, const Ordered& right) {
  return left < right ? -1 : right < left ? 1 : 0;
}

template <typename Alternative>
int SignOf(const Variant& left, const Variant& right) {
  return Sign(std::get<Alternative>(left), std::get<Alternative>(right));
}

int SignOfObjects(const Variant& left, const Variant& right) {
  auto order = std::compare_three_way()(std::get<std::shared_ptr<Object>>(left).get(),
                                        std::get<std::shared_ptr<Object>>(right).get());
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

/// Up to 15 significant digits: more would show the noise of the binary fraction.
Text DoubleToText(double number) {
  std::array<char, 32> digits;
  auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                    std::chars_format::general, 15);
  return FromAscii(std::string_view(digits.data(), end - digits.data()));
}

int32_t RoundToInt32(double number) {
  double rounded = std::nearbyint(number);  // half to even
  if (!(rounded >= std::numeric_limits<int32_t>::min() &&
        rounded <= std::numeric_limits<int32_t>::max())) {
    throw RunTimeError(kOverflow);
  }
  return static_cast<int32_t>(rounded);
}

}  // namespace

int Compare(const Variant& left, const Variant& right) {
  Rank rank = RankOf(left);
  if (rank != RankOf(right)) return Sign(rank, RankOf(right));
  switch (rank) {
    case Rank::kEmpty:
      return 0;
    case Rank::kNumber:
      return Sign(ToDouble(left), ToDouble(right));
    case Rank::kText:
      return SignOf<Text>(left, right);
    case Rank::kObject:
      return SignOfObjects(left, right);
    case Rank::kBytes:
      return SignOf<ByteArray>(left, right);
    case Rank::kWords:
      return SignOf<WordArray>(left, right);
  }
  return 0;
}

Text ToText(const Variant& value) {
  if (IsEmpty(value)) return {};
  if (auto* text = std::get_if<Text>(&value)) return *text;
  if (auto* truth = std::get_if<bool>(&value)) return *truth ? u"True" : u"False";
  if (auto* number = std::get_if<int16_t>(&value)) return Decimal(*number);
  if (auto* number = std::get_if<int32_t>(&value)) return Decimal(*number);
  if (auto* number = std::get_if<double>(&value)) return DoubleToText(*number);
  throw RunTimeError(kTypeMismatch);
}

int32_t ToInt32(const Variant& value) {
  if (auto* text = std::get_if<Text>(&value)) return ToInt32(TextView(*text));
  return RoundToInt32(ToDouble(value));
}

double ToDouble(const Variant& value) {
  if (IsEmpty(value)) return 0;
  if (auto* text = std::get_if<Text>(&value)) return ToDouble(TextView(*text));
  if (auto* truth = std::get_if<bool>(&value)) return *truth ? -1 : 0;
  if (auto* number = std::get_if<int16_t>(&value)) return *number;
  if (auto* number = std::get_if<int32_t>(&value)) return *number;
  if (auto* number = std::get_if<double>(&value)) return *number;
  throw RunTimeError(kTypeMismatch);
}

}  // namespace vesko
