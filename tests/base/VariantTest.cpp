#include <gtest/gtest.h>

#include <tuple>

#include "base/RunTimeError.h"
#include "base/Variant.h"

namespace vesko {
namespace {

TEST(Variant, OrdersAcrossAndWithinTypes) {
  struct Item : Object {};
  std::shared_ptr<Object> item = std::make_shared<Item>();
  const Variant ascending[] = {Variant(),    -2.5,         true,
                               int16_t{0},   0.5,          int32_t{1},
                               Text(),       Text(u"10"),  Text(u"9"),
                               Text(u"Z"),   Text(u"a"),   Text(u"\uFFFF"),
                               item,         ByteArray{1}, ByteArray{1, 0},
                               WordArray{-1}};
  for (size_t i = 0; i < std::size(ascending); ++i) {
    for (size_t j = 0; j < std::size(ascending); ++j) {
      EXPECT_EQ(Compare(ascending[i], ascending[j]), i < j ? -1 : i > j ? 1 : 0) << i << " " << j;
    }
  }
  EXPECT_EQ(Compare(int16_t{1}, 1.0), 0);
}

/// What a conversion yields, or "error" with the number that it raises.
template <typename Conversion>
Text Outcome(Conversion&& conversion) {
  try {
    return conversion();
  } catch (const RunTimeError& error) {
    return u"error " + Decimal(error.Number());
  }
}

TEST(Variant, Converts) {
  const std::tuple<Variant, Text, Text> rows[] = {
      {Variant(), u"", u"0"},
      {true, u"True", u"-1"},
      {int16_t{-7}, u"-7", u"-7"},
      {1.5, u"1.5", u"2"},
      {-2.5, u"-2.5", u"-2"},
      {1.0 / 3, u"0.333333333333333", u"0"},
      {Text(u" 12 "), u" 12 ", u"12"},
      {2147483647.5, u"2147483647.5", u"error 6"},
      {-1.0 / 0.0, u"-inf", u"error 6"},
      {Text(), u"", u"error 13"},
      {Text(u"12 apples"), u"12 apples", u"error 13"},
      {ByteArray{65}, u"error 13", u"error 13"},
      {std::shared_ptr<Object>(), u"error 13", u"error 13"},
  };
  for (const auto& row : rows) {
    const Variant& value = std::get<0>(row);
    const auto& [_, text, number] = row;
    EXPECT_EQ(Outcome([&] { return ToText(value); }), text) << &row - rows;
    EXPECT_EQ(Outcome([&] { return Decimal(ToInt32(value)); }), number) << &row - rows;
  }
}

}  // namespace
}  // namespace vesko
