#include <gtest/gtest.h>

#include <tuple>

#include "base/RunTimeError.h"
#include "config/HiveValues.h"
#include "config/cRegistry.h"
#include "support/FakeShell.h"
#include "support/MemoryRegistry.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

using namespace std::string_literals;

constexpr char kPath[] = "Soft\\Key";

class cRegistryTest : public testing::Test {
 protected:
  cRegistryTest() {
    registry_.ClassKey = kCurrentUser;
    registry_.SectionKey = u"Soft\\Key";
    registry_.ValueKey = u"v";
    registry_.Default = Text(u"default");
  }

  void Write(int32_t type, const Variant& value) {
    registry_.ValueType = type;
    registry_.Value(value);
  }
  std::string Data() const {
    auto value = memory_.Get(kCurrentUser, kPath, "v");
    return value ? std::to_string(value->first) + ":" + value->second : "(none)";
  }

  MemoryRegistry memory_;
  FakeShell shell_;
  std::unique_ptr<Locale> locale_ = MakeTestLocale();
  cRegistry registry_{memory_, *locale_, shell_};
};

TEST_F(cRegistryTest, ReadsByStoredType) {
  memory_.environment = {{"HOME", "/home/u"}};
  const std::tuple<uint32_t, std::string, Variant> rows[] = {
      {kRegSz, "abc\0"s, Text(u"abc")},
      {kRegSz, "a\0b\0\0"s, Text(u"a\0b\0", 4)},
      {kRegSz, "abc", Text(u"ab")},  // the last byte is taken for the NUL
      {kRegMultiSz, "a\0b\0\0"s, Text(u"a\0b\0", 4)},
      {kRegExpandSz, "%HOME%/x\0\0\0"s, Text(u"/home/u/x")},
      {kRegExpandSz, "", Text()},
      {kRegDword, "\x01\x02\x00\x80"s, static_cast<int32_t>(0x80000201)},
      {kRegDwordBigEndian, "\x01\x02\x00\x80"s, int32_t{0x01020080}},
      {kRegDword, "\x05", int32_t{5}},
      {kRegDword, "12345678", int32_t{0}},
      {kRegBinary, "\xFF", ByteArray{0xFF}},
      {11, "", ByteArray{}},
  };
  for (const auto& [type, data, expected] : rows) {
    memory_.Put(kCurrentUser, kPath, "v", type, data);
    EXPECT_EQ(registry_.Value(), expected) << type << " " << data;
    EXPECT_EQ(registry_.ValueType, static_cast<int32_t>(type));
  }
}

TEST_F(cRegistryTest, MissingValuesYieldTheDefaultAndLeaveTheType) {
  registry_.ValueType = 4;
  EXPECT_EQ(registry_.Value(), Variant(Text(u"default")));
  memory_.PutText(kCurrentUser, kPath, "other", "x");
  EXPECT_EQ(registry_.Value(), Variant(Text(u"default")));
  memory_.PutText(kCurrentUser, kPath, "v", "x");
  memory_.Fail(RegistryCall::kQueryValue, kStatusRegistryCorrupt);
  EXPECT_EQ(registry_.Value(), Variant(Text(u"default")));
  EXPECT_EQ(registry_.ValueType, 4);
}

TEST_F(cRegistryTest, WritesByValueType) {
  const std::string nothing = "7:before";
  const std::tuple<int32_t, Variant, std::string> rows[] = {
      {1, Text(u"ab"), "1:ab\0\0\0"s},
      {2, Text(), "1:\0"s},
      {1, Text(u"한글"), "1:\xED\x95\x9C\xEA\xB8\x80\0"s},
      {1, Text(u"C:\\%T%\\x"), "2:C:\\%T%\\x\0\0\0\0\0\0\0\0\0"s},
      {2, Text(u"50%"), "1:50%\0\0\0\0"s},
      {2, Text(u"%%%"), "2:%%%\0\0\0\0"s},
      {1, int32_t{12}, "1:12\0\0\0"s},
      {3, ByteArray{0, 255}, "3:\0\xFF"s},
      {3, Text(u"text"), nothing},
      {4, int32_t{-2}, "4:\xFE\xFF\xFF\xFF"s},
      {5, int16_t{258}, "4:\x02\x01\0\0"s},
      {4, Text(u"20"), nothing},
      {7, Text(u"x"), nothing},
  };
  for (const auto& [type, value, stored] : rows) {
    memory_.Put(kCurrentUser, kPath, "v", kRegMultiSz, "before");
    Write(type, value);
    EXPECT_EQ(Data(), stored);
  }
  EXPECT_THROW(Write(1, ByteArray{65}), RunTimeError);
}

TEST_F(cRegistryTest, FailuresAreNumberedAndDescribed) {
  const auto error_of = [](const auto& call) -> Text {
    try {
      return call(), u"none";
    } catch (const RunTimeError& error) {
      return Decimal(error.Number()) + u" " + error.Source() + u" " + error.Description();
    }
  };
  memory_.Fail(RegistryCall::kSetValue, kStatusAccessDenied);
  Write(1, Text(u"first"));  // everything but -1 counts as written
  memory_.Fail(RegistryCall::kSetValue, -1);
  EXPECT_EQ(error_of([&] { Write(1, Text(u"second")); }),
            Decimal(static_cast<int32_t>(0x800469A9)) +
                u" VeskoEx.cRegistry Failed to set registry value Key: '-2147483647',"
                u"Section: 'Soft\\Key',Key: 'v' to value: 'first'");
  memory_.Fail(RegistryCall::kCreateKey, kStatusAccessDenied);
  EXPECT_EQ(error_of([&] { registry_.CreateKey(); }),
            u"26001 VeskoEx.cRegistry Failed to create registry Key: 'Soft\\Key");
  memory_.Fail(RegistryCall::kDeleteKey, kStatusAccessDenied);
  EXPECT_EQ(error_of([&] { registry_.DeleteKey(); }),
            u"26001 VeskoEx.cRegistry Failed to delete registry Key: '-2147483647',"
            u"Section: 'Soft\\Key");
}

TEST_F(cRegistryTest, KeysAndNames) {
  std::vector<Text> names = {u"earlier"};
  int32_t count = 7;
  EXPECT_FALSE(registry_.KeyExists());
  EXPECT_TRUE(registry_.CreateKey() && registry_.KeyExists());
  EXPECT_TRUE(registry_.EnumerateSections(names, count));
  EXPECT_EQ(names.size() + static_cast<size_t>(count), 1u);
  for (auto* path : {"Soft\\Key\\b", "Soft\\Key\\a", kPath}) {
    memory_.PutText(kCurrentUser, path, "v", "1");
  }
  EXPECT_TRUE(registry_.EnumerateSections(names, count));
  EXPECT_EQ(names, (std::vector<Text>{u"a", u"b"}));
  EXPECT_TRUE(registry_.EnumerateValues(names, count));
  EXPECT_EQ(names, std::vector<Text>{u"v"});
  EXPECT_TRUE(registry_.DeleteValue());
  EXPECT_EQ(Data(), "(none)");
}

TEST_F(cRegistryTest, TextReadAsTextIsTrimmedAndCut) {
  const std::pair<std::string, Text> rows[] = {{"  a b  \0"s, u"a b"},
                                               {"a \0\0\0"s, u"a "},  // trimmed before it is cut
                                               {"\0 rest\0"s, u""}};
  for (const auto& [data, expected] : rows) {
    memory_.Put(kCurrentUser, kPath, "v", kRegSz, data);
    HiveValues values(memory_, *locale_, shell_, kCurrentUser);
    EXPECT_EQ(values.Read(u"Soft\\Key", u"v", kRegSz, Text()), Variant(expected));
  }
}

}  // namespace
}  // namespace vesko
