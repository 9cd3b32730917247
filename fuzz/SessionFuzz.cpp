// A whole check, and a deletion pass before it, against a server that says anything in any pieces.
//
// The content is the server's part of the conversations, an answer up to each "|", with "\n" for
// CR LF. An answer that ends with "<" closes the connection, one with "!" resets it, one with "~"
// comes too late.

#include <algorithm>
#include <cstdio>
#include <utility>

#include "Fuzz.h"
#include "config/mmEncrypt.h"
#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "pop3/CheckRun.h"
#include "support/FakeProgressView.h"
#include "support/FakeShell.h"
#include "support/FakeSound.h"
#include "support/MemoryRegistry.h"
#include "support/ServedSocket.h"

namespace vesko::fuzz {
namespace {

constexpr TextView kPassword = u"pa55word";

ServerTurn Answer(std::string answer) {
  ServerTurn turn;
  const char last = answer.empty() ? '\0' : answer.back();
  turn.closes = last == '<';
  turn.error = last == '!' ? kSocketConnectionReset : 0;
  turn.after = last == '~' ? 100 : 0;
  if (turn.closes || turn.error != 0 || turn.after > 0) answer.pop_back();
  for (char c : answer) turn.bytes += c == '\n' ? "\r\n" : std::string(1, c);
  return turn;
}

/// Cuts answers where that may not matter: behind a line end inside of an answer of one line, or
/// behind the end of one of many, the client may take what came for the whole.
class Cutter {
 public:
  explicit Cutter(size_t seed) : state_(static_cast<uint32_t>(seed)) {}

  size_t operator()(std::string_view left, bool many_lines) {
    state_ = state_ * 1664525 + 1013904223;
    size_t size = std::min<size_t>(1 + (state_ >> 16) % 40, left.size());
    if (many_lines) {
      const size_t end = (last_ + std::string(left)).find("\n.\r\n");
      if (end != std::string::npos && last_.size() + size >= end + 4) size = left.size();
      last_ += left.substr(0, size);
      last_.erase(0, last_.size() - std::min<size_t>(last_.size(), 3));
      return size;
    }
    while (size < left.size() && MayEndLine(left.substr(0, size))) ++size;
    return size;
  }
  void NewAnswer() { last_.clear(); }

 private:
  // Of a character of several bytes the first ones are not text yet.
  static bool MayEndLine(std::string_view bytes) {
    while (!bytes.empty() && (bytes.back() & 0x80) != 0) bytes.remove_suffix(1);
    return bytes.ends_with('\n');
  }

  uint32_t state_;
  std::string last_;  // of the answer, up to three characters
};

/// What a run comes to.
struct Outcome {
  std::vector<std::string> sent;
  std::vector<std::string> dialogs;
  std::vector<Text> mails;

  void Print(const char* title) const {
    std::fprintf(stderr, "%s:\n", title);
    for (const std::string& line : sent) std::fprintf(stderr, "  sent %s", line.c_str());
    for (const std::string& line : dialogs) std::fprintf(stderr, "  %s\n", line.c_str());
    for (const Text& mail : mails) std::fprintf(stderr, "  mail %s\n", Narrow(mail).c_str());
  }

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

bool HoldsPassword(const std::string& line) { return line.find("pa55word") != std::string::npos; }

class Check {
 public:
  Check(const Locale& locale, Input input, bool deletes) : locale_(locale), input_(input) {
    socket_.on_line = [this](const std::string& line) { return Serve(line); };
    // A server that never answers is tried again and again, until the user has enough.
    socket_.on_turn = [this] {
      if (std::exchange(has_enough_, false)) run_.Cancel();
    };
    view_.on_unload = [this] { run_.WindowUnloaded(); };
    data_.configuration.AddAccount(
        {u"Home", u"pop.example", u"ann", Encrypt(kPassword, locale), u"110", u"1"});
    if (deletes) AddSpam();
  }

  Outcome Run(size_t cuts) {
    cutter_ = Cutter(cuts);
    if (cuts != 0) {
      socket_.piece = [this](std::string_view left) { return cutter_(left, many_lines_); };
    }
    run_.Prepare();
    run_.Activate();
    return {socket_.sent, Dialogs(), Mails()};
  }

 private:
  ServerTurn Serve(const std::string& line) {
    many_lines_ = line.starts_with("TOP");
    cutter_.NewAnswer();
    if (!input_.AtEnd()) return Answer(input_.Until('|'));
    has_enough_ = line.empty();
    return {.stays_away = true};
  }

  void AddSpam() {
    data_.mails.BeginSession({u"pop.example", 110, u"ann"});
    for (int32_t number : {2, 3}) {
      const auto message = std::make_shared<cMessage>(locale_);
      message->Server = u"pop.example";
      message->MessageID = Decimal(number);
      message->Spam = message->Delete = true;
      message->SetIndex(number);
      data_.mails.Add(message);
    }
    data_.mails.CompleteSession(3);
  }

  std::vector<std::string> Dialogs() const {
    std::vector<std::string> dialogs;
    for (const std::string& line : view_.log) {
      Expect(!HoldsPassword(line), "no password is shown");
      Expect(!line.starts_with("after the end"), "nothing is shown after the end");
      if (line.starts_with("error") || line.starts_with("ask")) dialogs.push_back(line);
    }
    return dialogs;
  }

  std::vector<Text> Mails() const {
    std::vector<Text> mails;
    data_.mails.ForEach([&](const cMessage& message) {
      mails.push_back(
          Join({message.MessageID, Decimal(message.Index()), message.Subject, message.MessageBody},
               u"|"));
      return true;
    });
    return mails;
  }

  const Locale& locale_;
  Input input_;
  bool many_lines_ = false;
  bool has_enough_ = false;
  Cutter cutter_{0};
  FakeClock clock_;
  ServedSocket socket_{clock_, locale_};
  MemoryRegistry registry_;
  FakeShell shell_;
  NotingSound sound_;
  FakeProgressView view_;
  SharedData data_;
  Services services_{locale_, registry_, shell_, sound_, clock_, socket_, socket_};
  CheckRun run_{services_, data_, view_};
};

void ExpectCommands(const std::vector<std::string>& sent) {
  for (const std::string& line : sent) {
    Expect(line.ends_with("\r\n") && line.find('\n') == line.size() - 1, "a command is one line");
    const bool known = line == "USER ann\r\n" || line == "PASS pa55word\r\n" ||
                       line == "STAT\r\n" || line == "QUIT\r\n" || line.starts_with("TOP ") ||
                       line == "DELE 2\r\n" || line == "DELE 3\r\n";
    Expect(known, "a server cannot make the client say anything else");
  }
}

void Run(Input input) {
  const Locale& locale = LocaleAt(input.Choose(kLocales));
  const bool deletes = input.Choose(2) == 1;
  const size_t cuts = 1 + input.Choose(200);
  const Outcome whole = Check(locale, input, deletes).Run(0);
  ExpectCommands(whole.sent);
  const Outcome pieces = Check(locale, input, deletes).Run(cuts);
  if (!(pieces == whole)) {
    whole.Print("in one piece");
    pieces.Print("in pieces");
    Expect(false, "pieces do not matter");
  }
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vesko::fuzz::Run({data, size});
  return 0;
}
