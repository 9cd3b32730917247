#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "desktop/common/ServerIdentity.h"

namespace vesko {
namespace {

constexpr char kMail = '\x81';
constexpr char kDns = '\x82';
constexpr char kAddress = '\x87';

std::string Der(char tag, const std::string& content) {
  std::string der(1, tag);
  if (content.size() >= 0x100) {
    der += '\x82';
    der += static_cast<char>(content.size() >> 8);
  } else if (content.size() >= 0x80) {
    der += '\x81';
  }
  der += static_cast<char>(content.size());
  return der + content;
}

std::string Names(const std::string& content) { return Der('\x30', content); }
std::string DnsNames(const std::string& name) { return Names(Der(kDns, name)); }

TEST(ServerIdentityTest, ComparesWholeLabels) {
  const std::string label(60, 'x');
  const std::string long_name = label + "." + label + "." + label;  // its length takes two bytes
  using List = std::vector<std::string>;
  const std::tuple<List, List, bool> kCases[] = {
      {{"pop.example.org", "POP.Example.org", "pop.example.org.", "*.EXAMPLE.org"},
       {"pop.example.org", "pop.eXample.ORG", "pop.example.org."},
       true},
      {{"*.example.org"}, {"xn--pp-1ja.example.org"}, true},
      {{long_name}, {long_name}, true},
      {{"pop.example.org", "*.example.org"},
       {"example.org", ".example.org", "pop.example.orgs", "pop.example.com", "a.pop.example.org"},
       false},
      {{"", "example.org", "p*.example.org", "*p.example.org", "pop.*.org", "*.*.org",
        std::string("pop.example.org\0.evil.example", 29)},
       {"pop.example.org"},
       false},
      {{"", "*", "*.", "*.org"}, {".", "org", "example.org"}, false},
  };
  for (const auto& [names, hosts, matches] : kCases) {
    for (const std::string& name : names) {
      for (const std::string& host : hosts) {
        EXPECT_EQ(NamesServer(DnsNames(name), {host, {}}), matches) << name << " for " << host;
      }
    }
  }
}

TEST(ServerIdentityTest, TellsNamesFromAddresses) {
  const std::string v4("\x7F\0\0\1", 4);
  const std::string v6("\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\1", 16);
  const std::string both = Names(Der(kAddress, v4) + Der(kDns, "pop.example.org"));
  EXPECT_TRUE(NamesServer(both, {"127.0.0.1", v4}));
  EXPECT_TRUE(NamesServer(both, {"pop.example.org", {}}));
  EXPECT_FALSE(NamesServer(both, {"::1", v6}));
  EXPECT_TRUE(NamesServer(Names(Der(kAddress, v6)), {"::1", v6}));
  EXPECT_FALSE(NamesServer(DnsNames("127.0.0.1"), {"127.0.0.1", v4}));
  EXPECT_FALSE(NamesServer(Names(Der(kMail, "pop.example.org")), {"pop.example.org", {}}));
  EXPECT_FALSE(NamesServer(Names(Der(kAddress, "pop4")), {"pop4", {}}));
}

TEST(ServerIdentityTest, FindsANameAmongThousands) {
  std::string many;
  for (int i = 0; i < 2000; ++i) many += Der(kDns, std::to_string(i).append(".example.org"));
  EXPECT_TRUE(NamesServer(Names(many), {"1999.example.org", {}}));
  EXPECT_FALSE(NamesServer(Names(many), {"2000.example.org", {}}));
}

TEST(ServerIdentityTest, DoesNotReadBehindBrokenDer) {
  const std::string good = DnsNames("pop.example.org");
  const ServerIdentity server{"pop.example.org", {}};
  ASSERT_TRUE(NamesServer(good, server));
  for (size_t size = 0; size < good.size(); ++size) {
    const std::string cut(good, 0, size);  // of its own, so that a read behind it is seen
    EXPECT_FALSE(NamesServer(cut, server)) << size;
  }
  for (const std::string& bad :
       {Der('\x31', Der(kDns, server.name)),  // another type
        std::string("\x30\x80\x82\x0fpop.example.org\0\0", 21),
        std::string("\x30\x83\0\0\x11\x82\x0fpop.example.org", 22), Names(std::string(1, kDns)),
        Names("\x82\x85\x01\x01\x01\x01\x01")}) {
    EXPECT_FALSE(NamesServer(bad, server));
  }
}

TEST(ServerIdentityTest, AnnouncesOnlyNames) {
  EXPECT_EQ(AnnouncedName({"pop.example.org.", {}}), "pop.example.org");
  EXPECT_EQ(AnnouncedName({"127.0.0.1", "\x7F\1\1\1"}), "");
}

TEST(ServerIdentityTest, KnowsTlsByItsFirstBytes) {
  for (const char* tls : {"", "\x16", "\x16\x03", "\x15\x03\x03"}) EXPECT_TRUE(LooksLikeTls(tls));
  for (const char* other : {"+", "+OK\r\n", "\x16\x02", "\x17\x03", "\x80"}) {
    EXPECT_FALSE(LooksLikeTls(other));
  }
}

}  // namespace
}  // namespace vesko
