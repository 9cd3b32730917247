#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/RunTimeError.h"
#include "base/Variant.h"

namespace vesko {
namespace {

TEST(Variant, OrdersAcrossAndWithinTypes) {
  struct Item : Object {};
  auto item = std::make_shared<Item>();
  const Variant ascending[] = {Variant(),
                               -2.5,
                               true,  // -1
                               int16_t{0},
                               0.5,
                               int32_t{1},
                               Text(),
                               Text(u"10"),
                               Text(u"9"),
                               Text(u"Z"),
                               Text(u"a"),
                               Text(u"\uFFFF"),
                               std::shared_ptr<Object>(item),
                               ByteArray{1},
                               ByteArray{1, 0},
                               WordArray{-1}};
  for (size_t i = 0; i < std::size(ascending); ++i) {
    for (size_t j = 0; j < std::size(ascending); ++j) {
      EXPECT_EQ(Compare(ascending[i], ascending[j]), i < j ? -1 : i > j ? 1 : 0) << i << " " << j;
    }
  }
  EXPECT_EQ(Compare(int16_t{1}, 1.0), 0);
  EXPECT_EQ(Compare(false, int32_t{0}), 0);
}

/// The error that a conversion raises, 0 for none.
template <typename Conversion>
int32_t ErrorOf(Conversion&& conversion) {
  try {
    conversion();
  } catch (const RunTimeError& error) {
    return error.Number();
  }
  return 0;
}

TEST(Variant, ConvertsToInt32) {
  struct Row {
    Variant value;
    int32_t expected;
    int32_t error = 0;
  };
  const Row rows[] = {
      {Variant(), 0},
      {true, -1},
      {0.5, 0},
      {1.5, 2},
      {-2.5, -2},
      {2147483647.4, 2147483647},
      {Text(u" 12 "), 12},
      {2147483647.5, 0, kOverflow},
      {-2147483649.0, 0, kOverflow},
      {std::nan(""), 0, kOverflow},
      {std::numeric_limits<double>::infinity(), 0, kOverflow},
      {Text(), 0, kTypeMismatch},
      {Text(u"12 apples"), 0, kTypeMismatch},
      {Text(u"99999999999"), 0, kOverflow},
      {ByteArray{1}, 0, kTypeMismatch},
      {std::shared_ptr<Object>(), 0, kTypeMismatch},
  };
  for (const Row& row : rows) {
    int32_t number = 0;
    EXPECT_EQ(ErrorOf([&] { number = ToInt32(row.value); }), row.error) << &row - rows;
    EXPECT_EQ(number, row.expected) << &row - rows;
  }
}

TEST(Variant, ConvertsToText) {
  struct Row {
    Variant value;
    Text expected;
    int32_t error = 0;
  };
  const Row rows[] = {
      {Variant(), u""},
      {false, u"False"},
      {int16_t{-7}, u"-7"},
      {0.1, u"0.1"},
      {1.0 / 3, u"0.333333333333333"},
      {25.0, u"25"},
      {Text(u" x "), u" x "},
      {ByteArray{65}, u"", kTypeMismatch},
      {WordArray{65}, u"", kTypeMismatch},
      {std::shared_ptr<Object>(), u"", kTypeMismatch},
  };
  for (const Row& row : rows) {
    Text text;
    EXPECT_EQ(ErrorOf([&] { text = ToText(row.value); }), row.error) << &row - rows;
    EXPECT_EQ(text, row.expected) << &row - rows;
  }
}

}  // namespace
}  // namespace vesko
