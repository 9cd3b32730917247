#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include "base/KeyedCollection.h"

namespace vesko {
namespace {

int32_t RaisedBy(const std::function<void()>& step) {
  try {
    step();
  } catch (const RunTimeError& error) {
    return error.Number();
  }
  return 0;
}

TEST(KeyedCollection, RefusesKnownKeysAndWrongPositions) {
  KeyedCollection<int> numbers;
  numbers.RemoveFirst();
  numbers.Add(1, u"a");
  numbers.Add(2, u"A");  // keys compare exactly
  EXPECT_EQ(RaisedBy([&] { numbers.Add(3, u"a"); }), kKeyAlreadyPresent);
  EXPECT_EQ(RaisedBy([&] { numbers.Item(0); }), kSubscriptOutOfRange);
  EXPECT_EQ(RaisedBy([&] { numbers.Item(3); }), kSubscriptOutOfRange);
  EXPECT_EQ(*numbers.Find(u"a"), 1);
  EXPECT_FALSE(numbers.Remove(u"b"));
  EXPECT_EQ(numbers.Count(), 2u);
}

// A plain vector beside it shows what it must hold after any sequence of changes.
class Beside {
 public:
  void Step(unsigned choice, int value) {
    const Text key = Decimal(value);
    const auto known = std::find(expected_.begin(), expected_.end(), value);
    if (choice < 5) {
      if (known == expected_.end()) expected_.push_back(value);
      IgnoreErrors([&] { actual_.Add(value, key); });
    } else if (choice < 9) {
      EXPECT_EQ(actual_.Remove(key), known != expected_.end());
      if (known != expected_.end()) expected_.erase(known);
    } else {
      actual_.RemoveFirst();
      if (!expected_.empty()) expected_.erase(expected_.begin());
    }
    EXPECT_EQ(actual_.Count(), expected_.size());
  }

  void Check() {
    for (size_t i = 0; i < expected_.size(); ++i) EXPECT_EQ(actual_.Item(i + 1), expected_[i]);
    CheckKeys();
  }

  void CheckKeys() const {
    std::vector<int> walked;
    actual_.ForEach([&](int value) { return walked.push_back(value), true; });
    EXPECT_EQ(walked, expected_);
    for (int value : expected_) EXPECT_EQ(*actual_.Find(Decimal(value)), value);
  }

 private:
  std::vector<int> expected_;
  KeyedCollection<int> actual_;
};

TEST(KeyedCollection, KeepsOrderAndKeysThroughChanges) {
  std::mt19937 random(1);
  Beside beside;
  for (int i = 0; i < 20000; ++i) {
    beside.Step(random() % 10, static_cast<int>(random() % 300));
    if (i % 50 == 0) beside.CheckKeys();
    if (i % 777 == 0) beside.Check();
  }
  for (int i = 0; i < 300; ++i) beside.Step(9, 0);
  beside.Check();
}

}  // namespace
}  // namespace vesko
