#pragma once

#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "BareLoop.h"

namespace vesko {

/// Commands and replies of a bare loop, one after the other.
template <typename Connection>
class BareConversation {
 public:
  explicit BareConversation(Connection& connection) : connection_(connection) {}

  std::string_view Ask(std::string command, std::string_view end) {
    connection_.Send(command.append("\r\n"));
    return Receive(end);
  }

  std::string_view Receive(std::string_view end) {
    size_t size = 0;
    for (;;) {
      if (size == buffer_.size()) buffer_.resize(2 * size);
      const long piece = connection_.Receive(buffer_.data() + size, buffer_.size() - size);
      if (piece <= 0) throw std::runtime_error("the server closed the connection");
      size += static_cast<size_t>(piece);
      const std::string_view reply(buffer_.data(), size);
      if (reply.ends_with(end)) return reply;
    }
  }

 private:
  Connection& connection_;
  std::vector<char> buffer_ = std::vector<char>(65536);
};

/// The whole of a bare loop over a connection with `Send(const std::string&)` and
/// `long Receive(char*, size_t)`.
template <typename Connection>
BareLoopResult HoldConversation(Connection& connection, const std::string& user,
                                const std::string& password, int down_lines) {
  constexpr std::string_view kLine = "\r\n";
  constexpr std::string_view kDotLine = "\r\n.\r\n";
  BareConversation conversation(connection);
  conversation.Receive(kLine);
  conversation.Ask("USER " + user, kLine);
  conversation.Ask("PASS " + password, kLine);
  BareLoopResult result;
  result.messages = std::atoi(std::string(conversation.Ask("STAT", kLine)).c_str() + 4);
  const std::string lines = std::to_string(down_lines);
  for (int i = 1; i <= result.messages; ++i) {
    std::string command("TOP ");
    command.append(std::to_string(i)).append(1, ' ').append(lines);
    result.bytes += conversation.Ask(std::move(command), kDotLine).size();
  }
  conversation.Ask("QUIT", kLine);
  return result;
}

}  // namespace vesko
