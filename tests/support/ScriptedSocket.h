#pragma once

#include <cstddef>
#include <deque>
#include <limits>
#include <string>
#include <vector>

#include "platform/Socket.h"
#include "support/FakeClock.h"

namespace vesko {

/// One thing that happens on a connection, in the order of a written conversation.
struct Step {
  enum class Kind { kServer, kClient, kPeerCloses, kFails, kAfter };

  Kind kind;
  Text text{};
  int32_t number = 0;
  double seconds = 0;
};

/// A conversation, joined from pieces with +.
struct Script {
  std::vector<Step> steps;
};

Script operator+(Script first, const Script& then);

/// The server sends this text, with no line end but its own.
Script Server(Text text);
/// The client is to send this line and no other.
Script Client(Text line);
Script PeerCloses();
/// The connection fails; as the first step: it does not come about.
Script Fails(int32_t number, Text description);
/// What follows comes this much later.
Script After(double seconds);

/// What a server says that has an account "ann" with the password "secret".
Script Login();
Script Stat(const Text& reply);  // behind "+OK "
Script Top(int number, const Text& content, int lines = 5);
Script Dele(int number);
Script Quit();
/// The whole check of a mailbox that holds these contents, numbered from 1.
Script Mailbox(const std::vector<Text>& contents);

/// A socket whose servers speak by the book. Events come from DeliverNext only, one at a time.
class ScriptedSocket : public Socket {
 public:
  explicit ScriptedSocket(FakeClock& clock) : clock_(clock) {}

  SocketState State() const override { return state_; }
  void SetLocalPort(int32_t) override {}
  /// Takes the next conversation. Throws what no one catches when there is none.
  void Connect(const Text& host, int32_t port) override;
  void SendData(TextView text) override;
  Text GetData() override;
  uint64_t BytesReceived() const override { return delivered_ * bytes_per_character; }
  void Close() override;

  /// Lets the next thing happen; false when nothing is to happen now.
  bool DeliverNext();

  /// When the next thing is to happen, if that is only a matter of time.
  double NextDue() const { return due_; }

  /// Steps that no one came to.
  size_t Unused() const;

  std::deque<Script> conversations;     // one for each Connect
  size_t piece_size = Text::npos;       // the longest arrival
  size_t cut_at = Text::npos;           // an arrival ends after so much text of a connection
  bool closes_with_last_piece = false;  // the closing is seen before the last text is read
  uint64_t bytes_per_character = 1;     // on the wire
  int failing_connects = 0;             // so many calls of Connect raise an error
  size_t failing_send = Text::npos;     // this call of SendData raises an error
  std::vector<std::string> connected;   // "host:port"
  std::vector<std::string> sent;        // lines, without their ends
  std::vector<std::string> faults;      // what was not by the book

 private:
  static constexpr double kNever = std::numeric_limits<double>::infinity();

  const Step* Next() const { return steps_.empty() ? nullptr : &steps_.front(); }
  bool DeliverWait(const Step& step);
  void SendPiece(const Step& step);
  void PeerClosesNow();
  void FailNow();

  FakeClock& clock_;
  SocketState state_ = SocketState::kClosed;
  std::deque<Step> steps_;
  Text arrived_;
  size_t delivered_ = 0;  // text of this connection
  size_t delivered_of_step_ = 0;
  size_t sends_ = 0;
  size_t unused_ = 0;
  double due_ = kNever;
};

/// 7-bit text as bytes, to compare and to print; "?" for every other character.
std::string Narrow(TextView text);

}  // namespace vesko
