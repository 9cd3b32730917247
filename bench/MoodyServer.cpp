#include "MoodyServer.h"

#include <algorithm>
#include <utility>

namespace vesko {
namespace {

// So few that the client has seen all of them after a while, and its memory stays as it is.
constexpr size_t kDifferentMessages = 40;
constexpr size_t kFullMailbox = 30;

std::string IdentifierOf(const std::string& message) {
  const size_t start = message.find("Message-ID: ") + 12;
  return message.substr(start, message.find("\r\n", start) - start);
}

bool IsSpam(const std::string& identifier) { return identifier.find("spam") != std::string::npos; }

}  // namespace

MoodyServer::MoodyServer(uint32_t seed, const std::vector<std::string>& users,
                         const std::string& password)
    : random_(seed) {
  for (const std::string& user : users) maildrops_[user].password = password;
}

std::string MoodyServer::NewMessage(const std::string& user) {
  const size_t number = Below(kDifferentMessages);
  const bool spam = number % 4 == 0;
  const std::string id = (spam ? "<spam" : "<mail") + std::to_string(number) + "@" + user + ">";
  std::string message = "From: someone <a@b.example>\r\nSubject: ";
  message.append(spam ? kSpamSubject : "Minutes").append("\r\nMessage-ID: ").append(id);
  message += "\r\nDate: Mon, 5 Oct 2026 09:12:44 +0900\r\n\r\n";
  return message + std::string(number * 20, 'x') + "\r\n";
}

std::vector<std::string> MoodyServer::Identifiers(const demo::Maildrop& maildrop) {
  std::vector<std::string> identifiers;
  for (const auto& message : maildrop.messages) identifiers.push_back(IdentifierOf(message.text));
  return identifiers;
}

std::vector<std::string> MoodyServer::FullyFetched(const std::string& user) const {
  if (!fully_fetched_.contains(user)) return {};
  return Identifiers(maildrops_.at(user));
}

void MoodyServer::LiveOn() {
  dialogue_.reset();
  fully_fetched_.clear();
  for (auto& [user, maildrop] : maildrops_) {
    auto& messages = maildrop.messages;
    if (Sometimes(10)) messages.clear();  // another program fetches all mail
    if (Sometimes(6) && !messages.empty())
      messages.erase(messages.begin() + Below(messages.size()));
    for (size_t i = Below(5); i > 0 && messages.size() < kFullMailbox; --i) {
      const std::string message = NewMessage(user);
      const auto is_it = [&](const auto& other) { return other.text == message; };
      if (std::none_of(messages.begin(), messages.end(), is_it)) messages.push_back({message, {}});
    }
  }
}

ServerTurn MoodyServer::OnLine(const std::string& line) {
  if (line.empty()) return Greet();
  if (line.starts_with("USER ")) user_ = line.substr(5);
  const bool quits = line == "QUIT" && maildrops_.contains(user_);
  const std::vector<std::string> before = quits ? Identifiers(Mailbox()) : decltype(before){};
  if (mood_ != Mood::kGood && commands_until_mood_-- == 0) return Disturb(dialogue_->Answer(line));
  ServerTurn turn{dialogue_->Answer(line)};
  if (line.starts_with("TOP ")) ++fetched, ++fetched_of_session_;
  if (quits) {
    NoteDeletions(before);
    if (fetched_of_session_ == before.size()) fully_fetched_.insert(user_);
  }
  return turn;
}

ServerTurn MoodyServer::Greet() {
  constexpr size_t kMoods = static_cast<size_t>(Mood::kResets) + 1;
  ++connections;
  dialogue_ = std::make_unique<demo::Pop3Dialogue>(maildrops_);
  user_.clear();
  fetched_of_session_ = 0;
  mood_ = Sometimes(3) ? static_cast<Mood>(Below(kMoods)) : Mood::kGood;
  commands_until_mood_ = Below(12);
  disturbed += mood_ != Mood::kGood;
  switch (mood_) {
    case Mood::kRefuses:
      return {.error = kSocketConnectionRefused};
    case Mood::kUnknownHost:
      return {.error = kSocketHostNotFound};
    case Mood::kNeverAnswers:
      return {.stays_away = true};
    case Mood::kTalksNonsense:
      return {.bytes = "\xFF\xFE nonsense\r\n.\r\n\r\n"};
    default:
      return {.bytes = demo::Pop3Dialogue::Greeting()};
  }
}

// The command was carried out, and the client does not hear it in the way that it should.
ServerTurn MoodyServer::Disturb(std::string answer) {
  const std::string half = answer.substr(0, Below(answer.size() + 1));
  switch (std::exchange(mood_, Mood::kGood)) {
    case Mood::kRefusesCommand:
      return {.bytes = "-ERR not now\r\n"};
    case Mood::kFallsSilent:
      return {.bytes = half, .after = 3600};
    case Mood::kBreaksOff:
      return {.bytes = half, .closes = true};
    case Mood::kResets:
      return {.bytes = half, .error = kSocketConnectionReset};
    default:
      return {.bytes = answer};
  }
}

void MoodyServer::NoteDeletions(const std::vector<std::string>& before) {
  std::vector<std::string> gone = before;
  for (const std::string& identifier : Identifiers(Mailbox())) {
    gone.erase(std::find(gone.begin(), gone.end(), identifier));
  }
  deleted += gone.size();
  lost += static_cast<size_t>(
      std::count_if(gone.begin(), gone.end(), [](const auto& id) { return !IsSpam(id); }));
}

size_t MoodyServer::Piece(std::string_view left) {
  if (!Sometimes(8)) return left.size();
  size_t size = 1 + Below(left.size());
  // A reader of single lines takes what ends with a line end for all of it.
  while (size < left.size() && left[size - 1] == '\n') ++size;
  return size;
}

}  // namespace vesko
