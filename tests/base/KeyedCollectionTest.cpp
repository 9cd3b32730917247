#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "base/KeyedCollection.h"
#include "support/ErrorOf.h"

namespace vesko {
namespace {

TEST(KeyedCollection, RefusesKnownKeysAndWrongPositions) {
  KeyedCollection<int> numbers;
  numbers.RemoveFirst();
  numbers.Add(1, u"a");
  numbers.Add(2, u"A");  // keys compare exactly
  EXPECT_EQ(ErrorOf([&] { numbers.Add(3, u"a"); }), kKeyAlreadyPresent);
  EXPECT_EQ(ErrorOf([&] { numbers.Item(0); }), kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([&] { numbers.Item(3); }), kSubscriptOutOfRange);
  EXPECT_EQ(*numbers.Find(u"a"), 1);
  EXPECT_FALSE(numbers.Remove(u"b"));
  EXPECT_EQ(numbers.Count(), 2u);
}

// A plain vector beside it shows what it must hold after any sequence of changes.
TEST(KeyedCollection, KeepsOrderAndKeysThroughChanges) {
  std::mt19937 random(1);
  std::vector<int> expected;
  KeyedCollection<int> actual;
  for (int i = 0; i < 20000; ++i) {
    const int value = static_cast<int>(random() % 300);
    const auto known = std::find(expected.begin(), expected.end(), value);
    const bool is_known = known != expected.end();
    const unsigned choice = i > 19000 ? 9 : random() % 10;  // at last nothing is left
    if (choice < 5) {
      EXPECT_EQ(ErrorOf([&] { actual.Add(value, Decimal(value)); }) != 0, is_known);
      if (!is_known) expected.push_back(value);
    } else if (choice < 9) {
      EXPECT_EQ(actual.Remove(Decimal(value)), is_known);
      if (is_known) expected.erase(known);
    } else {
      actual.RemoveFirst();
      if (!expected.empty()) expected.erase(expected.begin());
    }
    ASSERT_EQ(actual.Count(), expected.size());
    if (i % 50 != 0) continue;
    std::vector<int> walked;
    actual.ForEach([&](int one) { return walked.push_back(one), true; });
    ASSERT_EQ(walked, expected);
    for (int one : expected) ASSERT_EQ(*actual.Find(Decimal(one)), one);
    if (i % 400 == 0) {
      for (size_t n = 0; n < expected.size(); ++n) EXPECT_EQ(actual.Item(n + 1), expected[n]);
    }
  }
}

}  // namespace
}  // namespace vesko
