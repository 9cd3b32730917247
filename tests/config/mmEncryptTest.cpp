#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "config/mmEncrypt.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

constexpr TextView kKey = u"4820937-118265";

/// "A" is escaped to "=41", which base64 turns into "PTQx"; the key's second character comes first.
TEST(mmEncrypt, KnownPair) {
  auto locale = MakeTestLocale(949);
  const Text scrambled = {u'P' ^ u'8', u'T' ^ u'2', u'Q' ^ u'0', u'x' ^ u'9'};
  EXPECT_EQ(Encrypt(u"A", *locale), scrambled);
  EXPECT_EQ(Decrypt(scrambled, *locale), u"A");
}

TEST(mmEncrypt, SevenBitPasswordsComeBackInEveryCodePage) {
  Text every;
  for (char16_t c = 1; c < 128; ++c) every += c;
  const Text passwords[] = {u"", u" ", u"a_b =?", u"  blanks  ", every, Text(8000, u'x')};
  for (int code_page : {949, 1252, kCodePageUtf8}) {
    auto locale = MakeTestLocale(code_page);
    const Text korean = code_page == 1252 ? Text() : u"한글 pw";
    EXPECT_EQ(Decrypt(Encrypt(korean, *locale), *locale), korean);
    for (const Text& password : passwords) {
      Text scrambled = Encrypt(password, *locale);
      EXPECT_EQ(Decrypt(scrambled, *locale), password) << code_page;
      EXPECT_FALSE(Contains(scrambled, Text(1, u'\0')));
      EXPECT_TRUE(password.empty() || !Contains(scrambled, password));
    }
  }
}

TEST(mmEncrypt, XorMakesNoNul) {
  EXPECT_EQ(XorWithKey(u"820937-1182654", kKey), u"820937-1182654");  // equal to its key
  EXPECT_EQ(XorWithKey(u"aaa", u"0"), u"QQQ");
  EXPECT_EQ(XorWithKey(u"\u0138한", kKey), u"\u0138한");  // bytes alone are changed
}

TEST(mmEncrypt, ForeignOrOverlongTextIsARunTimeErrorAtWorst) {
  auto locale = MakeTestLocale(949);
  EXPECT_THROW(Encrypt(Text(8192, u'a'), *locale), RunTimeError);
  EXPECT_THROW(Decrypt(Text(32768, u'a'), *locale), RunTimeError);
  for (const Text& text : {Text(u"x"), Text(u"한글"), Text(50, u'='), XorWithKey(u"PUZG", kKey)}) {
    IgnoreErrors([&] { Decrypt(text, *locale); });
  }
}

}  // namespace
}  // namespace vesko
