#include <gtest/gtest.h>

#include "base/cCollect.h"
#include "support/ErrorOf.h"

namespace vesko {
namespace {

void Add(cCollect& list, Variant data) { list.Add(data); }

cCollect ListOf(const std::vector<Text>& values, bool sorted = false) {
  cCollect list;
  list.Sorted(sorted);
  for (const Text& value : values) Add(list, value);
  return list;
}

std::vector<Text> ValuesOf(const cCollect& list) {
  std::vector<Text> values;
  for (int32_t n = 1; n <= list.Count(); ++n) values.push_back(ToText(list.Item(n)));
  return values;
}

using Values = std::vector<Text>;

TEST(cCollect, CleansAddedTextInTheCallersVariableToo) {
  const std::pair<Text, Text> rows[] = {{u"  abc  ", u"abc"},
                                        {Text(u"ab\0cd", 5), u"ab"},
                                        {Text(u"ab \0 ", 5), u"ab "},  // trimmed before it is cut
                                        {u"\tabc\r\n", u"\tabc\r\n"}};
  for (bool sorted : {false, true}) {
    for (const auto& [given, kept] : rows) {
      cCollect list = ListOf({}, sorted);
      Variant data = given;
      list.Add(data);
      EXPECT_EQ(ToText(data), kept);
      EXPECT_EQ(ValuesOf(list), Values{kept});
    }
  }
}

TEST(cCollect, SortedListsKeepOrderAndRefuseDuplicates) {
  EXPECT_EQ(ValuesOf(ListOf({u"m", u"m"}, true)), Values{u"m"});
  EXPECT_EQ(ValuesOf(ListOf({u"d", u"b", u"c", u"B", u"d", u"a", u"c", u"e"}, true)),
            (Values{u"B", u"a", u"b", u"c", u"d", u"e"}));
  EXPECT_EQ(ValuesOf(ListOf({u"b", u"a", u"b"})), (Values{u"b", u"a", u"b"}));
}

TEST(cCollect, FindsPositions) {
  cCollect unsorted = ListOf({u"x", u"b", u"a", u"b"});
  EXPECT_EQ(unsorted.Index(Text(u"b")), 2);
  EXPECT_EQ(unsorted.Index(Text(u" b")), 0);
  const Values all = {u"b", u"d", u"f", u"h", u"j"};
  for (size_t count = 0; count <= all.size(); ++count) {
    cCollect sorted = ListOf(Values(all.begin(), all.begin() + count), true);
    for (char16_t c = u'a'; c <= u'k'; ++c) {
      int32_t at = (c - u'a' + 1) / 2;
      bool present = (c - u'a') % 2 == 1 && at <= sorted.Count();
      EXPECT_EQ(sorted.Index(Text(1, c)), present ? at : 0) << count << char(c);
    }
  }
  cCollect twice = ListOf({u"a", u"b"}, true);
  twice.RepIace(int32_t{1}, Text(u"b"));
  EXPECT_EQ(twice.Index(Text(u"b")), 2);
}

TEST(cCollect, ModeChangesOnlyWhileEmpty) {
  Values shown;
  cCollect list([&](const Text& message) { shown.push_back(message); });
  Add(list, Text(u"b"));
  list.Sorted(false);
  EXPECT_TRUE(shown.empty());
  list.Sorted(true);
  EXPECT_EQ(shown, Values{u"You can not change 'Sorted' property with non-empty data !!!"});
  Add(list, Text(u"a"));
  EXPECT_EQ(ValuesOf(list), (Values{u"b", u"a"}));
}

TEST(cCollect, PositionsOutsideTheList) {
  cCollect list = ListOf({u"a", u"b"});
  for (int32_t n : {0, 3, 1}) {
    EXPECT_EQ(IsEmpty(list.Item(n)), n != 1);
    list.Remove(n);
  }
  EXPECT_EQ(ValuesOf(list), Values{u"b"});
  EXPECT_THROW(list.Item(-1), RunTimeError);
  EXPECT_THROW(list.Remove(-1), RunTimeError);
}

TEST(cCollect, ReplacesInPlace) {
  const Values before = {u"a", u"b", u"c", u"d", u"e"};
  struct Row {
    Variant position;
    Values after;
    int32_t error = 0;
  };
  const Row rows[] = {
      {int32_t{3}, {u"a", u"b", u" x", u"d", u"e"}},
      {int32_t{5}, {u"a", u"b", u"c", u"d", u" x"}},
      {Text(u"1"), {u" x", u"b", u"c", u"d", u"e"}},
      {2.5, {u"a", u" x", u"c", u"d", u"e"}},
      {int32_t{0}, before},
      {int32_t{6}, before},
      {1e300, before},
      {int32_t{-1}, before, kSubscriptOutOfRange},
      {Text(u"one"), before, kTypeMismatch},
  };
  for (const Row& row : rows) {
    cCollect list = ListOf(before);
    EXPECT_EQ(ErrorOf([&] { list.RepIace(row.position, Text(u" x")); }), row.error) << &row - rows;
    EXPECT_EQ(ValuesOf(list), row.after) << &row - rows;
  }
}

TEST(cCollect, SortedAddOverflowsSixteenBitPositions) {
  cCollect list = ListOf({}, true);
  for (int32_t n = 1; n <= 32768; ++n) Add(list, n * 2);  // appended: no search
  EXPECT_EQ(list.Index(int32_t{40000}), 20000);
  EXPECT_THROW(Add(list, int32_t{99999}), RunTimeError);

  cCollect shorter = ListOf({}, true);
  for (int32_t n = 1; n <= 20000; ++n) Add(shorter, n * 2);
  Add(shorter, int32_t{3});                                  // searched in the lower half
  EXPECT_THROW(Add(shorter, int32_t{39999}), RunTimeError);  // positions sum beyond 32767
  EXPECT_EQ(shorter.Count(), 20001);
}

}  // namespace
}  // namespace vesko
