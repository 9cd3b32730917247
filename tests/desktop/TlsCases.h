#pragma once

namespace vesko {

enum class Signer {
  kTestAuthority,
  kServer,  // whose own certificate is good, but not one of an authority
  kStranger,
  kItself,
};

constexpr int kTls13 = 0x0304;
constexpr int kTls12 = 0x0303;
constexpr int kTls11 = 0x0302;

/// How a server ends a conversation.
enum class TlsEnding {
  kOfTlsAndTcp,
  kOfTls,  // TCP stays open until the client closes it
  kOfTcp,  // without notice in TLS
  kReset,
};

/// What a TLS server shows to a client that connects to `host`, and what comes of it.
struct TlsCase {
  const char* name;
  const char* common_name = "localhost";
  const char* alternative_names = "DNS:localhost";  // in OpenSSL's syntax
  const char* usage = "";                           // extended key usages, likewise
  int first_day = -100;                             // of its validity; 0 is now
  int last_day = 10;
  Signer signer = Signer::kTestAuthority;
  int highest_version = kTls13;
  const char16_t* host = u"localhost";
  const char16_t* refusal = nullptr;  // part of the message; null: they talk
  TlsEnding ending = TlsEnding::kOfTlsAndTcp;
};

inline constexpr const char16_t* kOtherName = u"server of another name";

inline constexpr TlsCase kTlsCases[] = {
    {.name = "good"},
    {.name = "good for TLS 1.2", .highest_version = kTls12},
    {.name = "old TLS", .highest_version = kTls11, .refusal = u"no common way"},
    {.name = "good for servers", .usage = "serverAuth"},
    {.name = "for clients", .usage = "clientAuth", .refusal = u"not meant for a server"},
    {.name = "expired", .last_day = -1, .refusal = u"It has expired."},
    {.name = "not yet valid", .first_day = 2, .refusal = u"It is not valid yet."},
    {.name = "its own authority",
     .signer = Signer::kItself,
     .highest_version = kTls12,
     .refusal = u"signed by nobody but"},
    {.name = "unknown authority",
     .signer = Signer::kStranger,
     .highest_version = kTls12,
     .refusal = u"authority that is not known"},
    {.name = "signed by a server",
     .signer = Signer::kServer,
     .highest_version = kTls12,
     .refusal = u"cannot be verified"},
    {.name = "another name", .alternative_names = "DNS:pop.example", .refusal = kOtherName},
    {.name = "among several", .common_name = "x", .alternative_names = "DNS:x,DNS:LOCALHOST"},
    {.name = "common name alone", .alternative_names = "", .refusal = kOtherName},
    {.name = "common name with an address",
     .alternative_names = "IP:127.0.0.1",
     .refusal = kOtherName},
    {.name = "part of a label as a wildcard",
     .alternative_names = "DNS:l*,DNS:*host,DNS:*",
     .refusal = kOtherName},
    {.name = "address", .alternative_names = "IP:127.0.0.1", .host = u"127.0.0.1"},
    {.name = "another address",
     .alternative_names = "IP:127.0.0.2,IP:::1",
     .host = u"127.0.0.1",
     .refusal = kOtherName},
    {.name = "name, not address", .host = u"127.0.0.1", .refusal = kOtherName},
    {.name = "address written as a name",
     .common_name = "127.0.0.1",
     .alternative_names = "DNS:127.0.0.1",
     .host = u"127.0.0.1",
     .refusal = kOtherName},
    {.name = "end of TLS alone", .ending = TlsEnding::kOfTls},
    {.name = "end of TLS 1.2 alone", .highest_version = kTls12, .ending = TlsEnding::kOfTls},
    {.name = "end of TCP alone", .ending = TlsEnding::kOfTcp},
    {.name = "reset", .ending = TlsEnding::kReset},
};

}  // namespace vesko
