#include "maillist/colMails.h"

#include <algorithm>
#include <utility>

#include "base/Ascii.h"

namespace vesko {
namespace {

/// Keywords, folded once and then searched for in many texts.
class FoldedKeywords {
 public:
  FoldedKeywords(const std::vector<Text>& keywords, const Locale& locale) : locale_(locale) {
    for (const Text& keyword : keywords) {
      if (!keyword.empty()) folded_.push_back(locale.Fold(keyword));
    }
  }

  bool AnyIn(const CompactText& text) {
    if (folded_.empty() || text.empty()) return false;
    text.AssignTo(text_);
    Fold();
    return std::any_of(folded_.begin(), folded_.end(),
                       [&](const Text& keyword) { return Contains(text_, keyword); });
  }

 private:
  /// Most texts are 7-bit and need neither the locale nor memory.
  void Fold() {
    if (std::ranges::all_of(text_, [](char16_t c) { return c < 0x80; })) {
      std::ranges::transform(text_, text_.begin(), AsciiLower<char16_t>);
    } else {
      text_ = locale_.Fold(text_);
    }
  }

  const Locale& locale_;
  std::vector<Text> folded_;
  Text text_;  // the one searched in; kept for its memory
};

/// The spam test for many messages with the same keywords.
class SpamTest {
 public:
  SpamTest(const std::vector<Text>& senders, const std::vector<Text>& subjects,
           const Locale& locale)
      : senders_(senders, locale), subjects_(subjects, locale) {}

  bool Matches(const cMessage& message) {
    return senders_.AnyIn(message.From) || subjects_.AnyIn(message.Subject);
  }

 private:
  FoldedKeywords senders_;
  FoldedKeywords subjects_;
};

}  // namespace

MailState StateOf(const cMessage& message) {
  if (message.Spam) return message.Read ? MailState::kSpamRead : MailState::kSpam;
  return message.Read ? MailState::kMailRead : MailState::kMail;
}

Text StatusText(const MailCounts& counts) {
  return Decimal(static_cast<int64_t>(counts.total)) + u" MAILS (" +
         Decimal(static_cast<int64_t>(counts.total - counts.read)) + u" NEW MAILS, " +
         Decimal(static_cast<int64_t>(counts.spam)) + u" SPAM MAILS)";
}

bool IsSpamMessage(const cMessage& message, const std::vector<Text>& senders,
                   const std::vector<Text>& subjects, const Locale& locale) {
  return SpamTest(senders, subjects, locale).Matches(message);
}

Text colMails::Key(const Text& server, const Text& message_id) {
  Text key;
  key.reserve(server.size() + message_id.size());
  return key.append(server).append(message_id);
}

void colMails::KnowMaildrops(const std::vector<Maildrop>& maildrops) {
  for (Source& source : sources_) {
    source.abandoned = std::ranges::find(maildrops, source.maildrop) == maildrops.end();
  }
}

void colMails::BeginSession(const Maildrop& maildrop) {
  ++session_;
  const auto found = std::ranges::find(sources_, maildrop, &Source::maildrop);
  source_ = static_cast<uint32_t>(found - sources_.begin());
  if (found == sources_.end()) sources_.push_back({maildrop});
  sources_[source_].abandoned = false;
}

bool colMails::Add(Message message) {
  const int32_t number = message->Index();
  const Text key = Key(message->Server, message->MessageID);
  if (Entry* known = entries_.Find(key)) {
    SeeAgain(*known, number);
    return false;
  }
  // The last complete session saw another message under this number.
  if (number <= sources_[source_].count) sources_[source_].numbers_hold = false;
  entries_.Add(Entry{std::move(message), source_, session_, Sight::kNew}, key);
  return true;
}

void colMails::SeeAgain(Entry& entry, int32_t number) {
  if (sources_[entry.source].abandoned) {
    entry.source = source_;
    entry.sight = Sight::kNew;
  }
  if (entry.source != source_ || entry.last_session == session_) return;
  Source& source = sources_[source_];
  const bool as_expected =
      entry.sight == Sight::kNumbered ? entry.message->Index() == number : number > source.count;
  if (!as_expected) source.numbers_hold = false;
  if (entry.sight == Sight::kGone) entry.sight = Sight::kNew;
  entry.last_session = session_;
  entry.message->SetIndex(number);
}

void colMails::CompleteSession(int32_t count) {
  entries_.ForEach([this](Entry& entry) {
    const bool seen = entry.last_session == session_;
    if (entry.source == source_) entry.sight = seen ? Sight::kNumbered : Sight::kGone;
    return true;
  });
  sources_[source_].count = count;
  sources_[source_].numbers_hold = true;
}

const colMails::Source* colMails::FindSource(const Maildrop& maildrop) const {
  const auto found = std::ranges::find(sources_, maildrop, &Source::maildrop);
  return found == sources_.end() ? nullptr : &*found;
}

int32_t colMails::CountIn(const Maildrop& maildrop) const {
  const Source* source = FindSource(maildrop);
  return source ? source->count : 0;
}

void colMails::ForgetNumbers(const Maildrop& maildrop) {
  const auto found = std::ranges::find(sources_, maildrop, &Source::maildrop);
  if (found != sources_.end()) found->numbers_hold = false;
}

colMails::Message colMails::Find(const Text& key) const {
  const Entry* entry = entries_.Find(key);
  return entry ? entry->message : nullptr;
}

std::vector<colMails::Message> colMails::All() const {
  std::vector<Message> all;
  all.reserve(Count());
  entries_.ForEach([&](const Entry& entry) {
    all.push_back(entry.message);
    return true;
  });
  return all;
}

colMails::Marked colMails::MarkedForDeletion(const Maildrop& maildrop) const {
  Marked marked;
  const Source* source = FindSource(maildrop);
  if (!source) return marked;
  const auto position = static_cast<uint32_t>(source - sources_.data());
  entries_.ForEach([&](const Entry& entry) {
    if (entry.source != position || !entry.message->Delete) return true;
    if (entry.sight == Sight::kGone) marked.gone.push_back(entry.message);
    if (entry.sight == Sight::kNumbered && source->numbers_hold) {
      marked.numbered.push_back(entry.message);
    }
    return true;
  });
  return marked;
}

bool colMails::AnyUnread() const {
  bool any = false;
  ForEach([&](cMessage& message) { return !(any = !message.Read); });
  return any;
}

bool colMails::AnySpam() const {
  bool any = false;
  ForEach([&](cMessage& message) { return !(any = message.Spam); });
  return any;
}

void colMails::ApplySpamFilter(const std::vector<Text>& senders, const std::vector<Text>& subjects,
                               const Locale& locale) {
  SpamTest test(senders, subjects, locale);
  ForEach([&](cMessage& message) {
    message.Spam = test.Matches(message);
    return true;
  });
}

void colMails::MarkSpamForDeletion() {
  ForEach([](cMessage& message) {
    if (message.Spam) message.Delete = true;
    return true;
  });
}

void colMails::ClearDeletionMarks() {
  ForEach([](cMessage& message) {
    message.Delete = false;
    return true;
  });
}

MailCounts colMails::Counts() const {
  MailCounts counts;
  ForEach([&](cMessage& message) {
    ++counts.total;
    counts.read += message.Read;
    counts.spam += message.Spam;
    return true;
  });
  return counts;
}

}  // namespace vesko
