#include "demo/Pop3Dialogue.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace vesko::demo {
namespace {

constexpr std::string_view kEndOfLine = "\r\n";
constexpr std::string_view kNoSuchMessage = "-ERR no such message\r\n";

std::optional<size_t> ToNumber(std::string_view digits) {
  size_t number = 0;
  auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

// The text before the first space, and what follows it.
std::pair<std::string_view, std::string_view> SplitAtSpace(std::string_view text) {
  size_t space = text.find(' ');
  if (space == std::string_view::npos) return {text, {}};
  return {text.substr(0, space), text.substr(space + 1)};
}

std::string Upper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

// The header block and the first `body_lines` lines of the body as a multi-line answer: lines that
// begin with a dot get a second one, and a dot alone ends it.
std::string MultiLine(std::string_view message, size_t body_lines) {
  std::string answer = "+OK\r\n";
  answer.reserve(message.size() + 64);
  bool in_body = false;
  while (!message.empty() && !(in_body && body_lines == 0)) {
    size_t end = std::min(message.find(kEndOfLine), message.size());
    std::string_view line = message.substr(0, end);
    message.remove_prefix(std::min(end + kEndOfLine.size(), message.size()));
    if (line.starts_with('.')) answer += '.';
    answer.append(line).append(kEndOfLine);
    if (in_body) --body_lines;
    in_body = in_body || line.empty();
  }
  return answer += ".\r\n";
}

}  // namespace

struct Pop3Dialogue::Command {
  enum When { kBeforeLogin, kAfterLogin, kAlways };

  const char* name;
  When when;
  std::string (Pop3Dialogue::*answer)(std::string_view argument);
};

std::string Pop3Dialogue::Answer(std::string_view line) {
  static constexpr Command kCommands[] = {
      {"USER", Command::kBeforeLogin, &Pop3Dialogue::User},
      {"PASS", Command::kBeforeLogin, &Pop3Dialogue::Pass},
      {"STAT", Command::kAfterLogin, &Pop3Dialogue::Stat},
      {"LIST", Command::kAfterLogin, &Pop3Dialogue::List},
      {"UIDL", Command::kAfterLogin, &Pop3Dialogue::Uidl},
      {"TOP", Command::kAfterLogin, &Pop3Dialogue::Top},
      {"RETR", Command::kAfterLogin, &Pop3Dialogue::Retr},
      {"DELE", Command::kAfterLogin, &Pop3Dialogue::Dele},
      {"NOOP", Command::kAfterLogin, &Pop3Dialogue::Noop},
      {"RSET", Command::kAfterLogin, &Pop3Dialogue::Rset},
      {"QUIT", Command::kAlways, &Pop3Dialogue::Quit},
  };
  auto [name, argument] = SplitAtSpace(line);
  const std::string wanted = Upper(name);
  for (const Command& command : kCommands) {
    if (wanted != command.name) continue;
    const bool logged_in = maildrop_ != nullptr;
    if (command.when == Command::kBeforeLogin && logged_in) return "-ERR already logged in\r\n";
    if (command.when == Command::kAfterLogin && !logged_in) return "-ERR log in first\r\n";
    return (this->*command.answer)(argument);
  }
  return "-ERR unknown command\r\n";
}

std::string Pop3Dialogue::User(std::string_view argument) {
  user_ = argument;
  return "+OK name the password\r\n";  // does not tell whether the name exists
}

std::string Pop3Dialogue::Pass(std::string_view argument) {
  auto found = maildrops_.find(user_);
  if (found == maildrops_.end() || found->second.password != argument) {
    return "-ERR wrong user name or password\r\n";
  }
  if (found->second.locked) return "-ERR [IN-USE] the mailbox is in use\r\n";
  maildrop_ = &found->second;
  maildrop_->locked = true;
  deleted_.assign(maildrop_->messages.size(), false);
  return "+OK logged in\r\n";
}

std::string Pop3Dialogue::Stat(std::string_view) {
  size_t count = 0;
  size_t octets = 0;
  for (size_t i = 0; i < deleted_.size(); ++i) {
    if (deleted_[i]) continue;
    ++count;
    octets += maildrop_->messages[i].text.size();
  }
  return "+OK " + std::to_string(count) + " " + std::to_string(octets) + "\r\n";
}

template <typename Describe>
std::string Pop3Dialogue::Listing(std::string_view argument, Describe describe) const {
  auto line = [&](size_t index) {
    return std::to_string(index + 1) + " " + describe(maildrop_->messages[index]) + "\r\n";
  };
  if (!argument.empty()) {
    auto index = MessageAt(argument);
    return index ? "+OK " + line(*index) : std::string(kNoSuchMessage);
  }
  std::string answer = "+OK\r\n";
  for (size_t i = 0; i < deleted_.size(); ++i) {
    if (!deleted_[i]) answer += line(i);
  }
  return answer += ".\r\n";
}

std::string Pop3Dialogue::List(std::string_view argument) {
  return Listing(argument, [](const auto& message) { return std::to_string(message.text.size()); });
}

std::string Pop3Dialogue::Uidl(std::string_view argument) {
  return Listing(argument, [](const auto& message) { return message.unique_id; });
}

std::string Pop3Dialogue::Top(std::string_view argument) {
  auto [number, lines] = SplitAtSpace(argument);
  auto index = MessageAt(number);
  if (!index) return std::string(kNoSuchMessage);
  auto line_count = ToNumber(lines);
  if (!line_count) return "-ERR how many lines?\r\n";
  return MultiLine(maildrop_->messages[*index].text, *line_count);
}

std::string Pop3Dialogue::Retr(std::string_view argument) {
  auto index = MessageAt(argument);
  if (!index) return std::string(kNoSuchMessage);
  return MultiLine(maildrop_->messages[*index].text, SIZE_MAX);
}

std::string Pop3Dialogue::Dele(std::string_view argument) {
  auto index = MessageAt(argument);
  if (!index) return std::string(kNoSuchMessage);
  deleted_[*index] = true;
  return "+OK marked\r\n";
}

std::string Pop3Dialogue::Noop(std::string_view) { return "+OK\r\n"; }

std::string Pop3Dialogue::Rset(std::string_view) {
  deleted_.assign(deleted_.size(), false);
  return "+OK nothing is marked\r\n";
}

std::string Pop3Dialogue::Quit(std::string_view) {
  if (maildrop_) {
    // Messages delivered during the session come after those with marks, and stay.
    for (size_t i = deleted_.size(); i-- > 0;) {
      if (deleted_[i]) maildrop_->messages.erase(maildrop_->messages.begin() + i);
    }
    Unlock();
  }
  ended_ = true;
  return "+OK good bye\r\n";
}

// A position in the maildrop from the number that the client knows; nothing for a number out of
// range or of a deleted message.
std::optional<size_t> Pop3Dialogue::MessageAt(std::string_view number) const {
  auto position = ToNumber(number);
  if (!position || *position < 1 || *position > deleted_.size()) return std::nullopt;
  if (deleted_[*position - 1]) return std::nullopt;
  return *position - 1;
}

void Pop3Dialogue::Unlock() {
  if (maildrop_) maildrop_->locked = false;
  maildrop_ = nullptr;
}

}  // namespace vesko::demo
