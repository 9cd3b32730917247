#include "desktop/linux/shell/MailProfile.h"

#include <QString>
#include <charconv>
#include <map>
#include <optional>
#include <string_view>

#include "desktop/linux/shell/IniFile.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

constexpr size_t kLargestPreferences = 16 << 20;
constexpr size_t kLongestValue = 4096;
constexpr size_t kMostAccounts = 1000;
constexpr std::string_view kTlsSocketType = "3";

using Preferences = std::map<std::string, std::string, std::less<>>;

/// Profile folders, the one in use first: the default of an installation, then the profile marked
/// as default, then the others.
std::vector<std::string> ProfileFolders(const std::string& folder) {
  std::vector<std::string> installed, marked, others;
  const IniFile profiles = IniFile::Read(folder + "/profiles.ini");
  for (const auto& [name, group] : profiles.Groups()) {
    bool installation = name.starts_with("Install");
    std::string path = ValueOf(group, installation ? "Default" : "Path");
    if (path.empty()) continue;
    if (!path.starts_with('/')) path.insert(0, folder + "/");
    bool is_default = ValueOf(group, "Default") == "1";
    (installation ? installed : is_default ? marked : others).push_back(path);
  }
  installed.insert(installed.end(), marked.begin(), marked.end());
  installed.insert(installed.end(), others.begin(), others.end());
  return installed;
}

void SkipSpaces(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
}

bool Take(std::string_view& line, std::string_view token) {
  SkipSpaces(line);
  if (!line.starts_with(token)) return false;
  line.remove_prefix(token.size());
  return true;
}

/// The character with a code of `digits` hexadecimal digits, which are removed from the line.
/// Nothing where these are missing. Half of a surrogate pair becomes a replacement character.
std::optional<std::string> TakeCharacter(std::string_view& line, size_t digits) {
  unsigned code = 0;
  if (line.size() < digits) return std::nullopt;
  auto [end, error] = std::from_chars(line.data(), line.data() + digits, code, 16);
  if (error != std::errc() || end != line.data() + digits) return std::nullopt;
  line.remove_prefix(digits);
  return QString(QChar(static_cast<char16_t>(code))).toStdString();
}

/// Removes a string literal in double quotes from the line and returns its text.
std::optional<std::string> TakeString(std::string_view& line) {
  if (!Take(line, "\"")) return std::nullopt;
  std::string text;
  while (!line.empty()) {
    char c = line.front();
    line.remove_prefix(1);
    if (c == '"') return text;
    if (c == '\\' && !line.empty()) {
      c = line.front();
      line.remove_prefix(1);
      if (c == 'x' || c == 'u') {
        auto character = TakeCharacter(line, c == 'x' ? 2 : 4);
        if (!character) return std::nullopt;
        text += *character;
        continue;
      }
      c = c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c;
    }
    text += c;
  }
  return std::nullopt;
}

/// Removes a string literal, a number or a word from the line and returns it as text.
std::optional<std::string> TakeValue(std::string_view& line) {
  SkipSpaces(line);
  if (line.starts_with('"')) return TakeString(line);
  size_t end = line.find_first_of(" \t)");
  if (end == 0 || end == std::string_view::npos) return std::nullopt;
  std::string value(line.substr(0, end));
  line.remove_prefix(end);
  return value;
}

/// The settings about accounts and servers in a preferences file, which has one setting a line.
Preferences ReadPreferences(const std::string& path) {
  Preferences preferences;
  for (std::string_view line : SplitList(ReadBounded(path, kLargestPreferences), '\n')) {
    if (!Take(line, "user_pref") || !Take(line, "(")) continue;
    auto name = TakeString(line);
    if (!name || !(name->starts_with("mail.account") || name->starts_with("mail.server.")))
      continue;
    if (!Take(line, ",")) continue;
    auto value = TakeValue(line);
    if (!value || value->size() > kLongestValue || !Take(line, ")")) continue;
    preferences[*name] = *value;
  }
  return preferences;
}

std::string Get(const Preferences& preferences, const std::string& name) {
  auto found = preferences.find(name);
  return found == preferences.end() ? std::string() : found->second;
}

/// Text of UTF-8 bytes. Records and protocol lines end at control characters, so none may stay.
Text Clean(const std::string& bytes) {
  Text text =
      QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())).toStdU16String();
  std::erase_if(text, [](char16_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); });
  return Text(Trim(text));
}

int32_t PortOf(const std::string& digits, bool tls) {
  int32_t port = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), port);
  if (port >= 1 && port <= 65535) return port;
  return tls ? kPop3sPort : kPop3Port;
}

/// The account on a server of the profile. Nothing unless it is a POP3 server with a host name.
std::optional<ForeignAccount> AccountOn(const std::string& server, const Preferences& preferences) {
  auto get = [&](const std::string& key) {
    return Get(preferences, "mail.server." + server + "." + key);
  };
  auto latest = [&](const std::string& key) {  // a later change is stored beside the original
    std::string changed = get("real" + key);
    return Clean(changed.empty() ? get(key) : changed);
  };
  if (get("type") != "pop3") return std::nullopt;
  ForeignAccount account;
  account.server = latest("hostname");
  account.user = latest("userName");
  account.port = PortOf(get("port"), get("socketType") == kTlsSocketType);
  account.name = Clean(get("name"));
  if (account.name.empty()) {
    account.name = account.user.empty() ? account.server : account.user + u"@" + account.server;
  }
  if (account.server.empty()) return std::nullopt;
  return account;
}

std::vector<ForeignAccount> AccountsOf(const Preferences& preferences) {
  std::vector<ForeignAccount> accounts;
  for (const std::string& id : SplitList(Get(preferences, "mail.accountmanager.accounts"), ',')) {
    if (accounts.size() == kMostAccounts) break;
    auto account = AccountOn(Get(preferences, "mail.account." + id + ".server"), preferences);
    if (account) accounts.push_back(*account);
  }
  return accounts;
}

}  // namespace

std::vector<ForeignAccount> ReadMailAccounts(const std::vector<std::string>& folders) {
  for (const std::string& folder : folders) {
    for (const std::string& profile : ProfileFolders(folder)) {
      Preferences preferences = ReadPreferences(profile + "/prefs.js");
      if (!preferences.empty()) return AccountsOf(preferences);
    }
  }
  return {};
}

}  // namespace vesko
