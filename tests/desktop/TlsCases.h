#pragma once

namespace vesko {

enum class Signer { kTestAuthority, kStranger, kItself };

constexpr int kTls13 = 0x0304;
constexpr int kTls12 = 0x0303;
constexpr int kTls11 = 0x0302;

/// What a server of TLS shows to a client that connects to `host`, and what comes of it.
struct TlsCase {
  const char* name;
  const char* holder;  // of the certificate
  int valid_days;      // negative: it expired yesterday or before
  Signer signer;
  int highest_version;
  const char16_t* host;
  const char16_t* words;  // of the refusal; null: they talk
};

inline constexpr TlsCase kTlsCases[] = {
    {"good", "localhost", 10, Signer::kTestAuthority, kTls13, u"localhost", nullptr},
    {"expired", "localhost", -1, Signer::kTestAuthority, kTls13, u"localhost", u"It has expired."},
    {"another name", "pop.example", 10, Signer::kTestAuthority, kTls13, u"localhost",
     u"server of another name"},
    {"name, not address", "localhost", 10, Signer::kTestAuthority, kTls13, u"127.0.0.1",
     u"server of another name"},
    {"its own authority", "localhost", 10, Signer::kItself, kTls12, u"localhost",
     u"signed by nobody but"},
    {"unknown authority", "localhost", 10, Signer::kStranger, kTls12, u"localhost",
     u"authority that is not known"},
    {"old TLS", "localhost", 10, Signer::kTestAuthority, kTls11, u"localhost", u"no common way"},
};

}  // namespace vesko
