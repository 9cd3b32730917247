#include "desktop/common/ServerIdentity.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/Ascii.h"

namespace vesko {
namespace {

constexpr uint8_t kSequence = 0x30;
constexpr uint8_t kDnsName = 0x82;
constexpr uint8_t kAddress = 0x87;

struct DerValue {
  uint8_t tag;
  std::string_view content;
};

// Takes a length off the front of `der`. Two bytes are enough for the names in a certificate.
std::optional<size_t> TakeLength(std::string_view& der) {
  if (der.empty()) return std::nullopt;
  const auto first = static_cast<uint8_t>(der[0]);
  der.remove_prefix(1);
  if (first < 0x80) return first;
  const size_t count = first & 0x7F;
  if (count == 0 || count > 2 || der.size() < count) return std::nullopt;
  size_t length = 0;
  for (size_t i = 0; i < count; ++i) length = length << 8 | static_cast<uint8_t>(der[i]);
  der.remove_prefix(count);
  return length;
}

std::optional<DerValue> TakeValue(std::string_view& der) {
  if (der.empty()) return std::nullopt;
  const auto tag = static_cast<uint8_t>(der[0]);
  der.remove_prefix(1);
  const std::optional<size_t> length = TakeLength(der);
  if (!length || *length > der.size()) return std::nullopt;
  const DerValue value{tag, der.substr(0, *length)};
  der.remove_prefix(*length);
  return value;
}

bool SameName(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char l, char r) { return AsciiLower(l) == AsciiLower(r); });
}

std::string_view WithoutFinalDot(std::string_view name) {
  if (name.ends_with('.')) name.remove_suffix(1);
  return name;
}

bool MatchesName(std::string_view pattern, std::string_view host) {
  if (host.empty()) return false;
  if (!pattern.starts_with("*.")) return SameName(pattern, host);
  const size_t dot = host.find('.');
  if (dot == 0 || dot == host.npos) return false;
  const std::string_view domain = pattern.substr(1);
  return domain.find('.', 1) != domain.npos && SameName(domain, host.substr(dot));
}

bool Matches(const DerValue& presented, const ServerIdentity& server) {
  if (!server.address.empty()) {
    return presented.tag == kAddress && presented.content == server.address;
  }
  return presented.tag == kDnsName &&
         MatchesName(WithoutFinalDot(presented.content), WithoutFinalDot(server.name));
}

}  // namespace

std::string AnnouncedName(const ServerIdentity& server) {
  return server.address.empty() ? std::string(WithoutFinalDot(server.name)) : std::string();
}

bool NamesServer(std::string_view alternative_names, const ServerIdentity& server) {
  const std::optional<DerValue> names = TakeValue(alternative_names);
  if (!names || names->tag != kSequence) return false;
  std::string_view rest = names->content;
  while (const std::optional<DerValue> name = TakeValue(rest)) {
    if (Matches(*name, server)) return true;
  }
  return false;
}

// Each TLS record begins with its kind and the major version 3.
bool LooksLikeTls(std::string_view bytes) {
  constexpr char kAlert = 0x15;
  constexpr char kHandshake = 0x16;
  if (bytes.empty()) return true;
  const bool kind = bytes[0] == kAlert || bytes[0] == kHandshake;
  return kind && (bytes.size() < 2 || bytes[1] == 3);
}

}  // namespace vesko
