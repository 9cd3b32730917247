#include "maillist/colMails.h"

#include <algorithm>
#include <utility>

namespace vesko {
namespace {

/// Keywords folded once, for the many texts that they are looked for in.
class FoldedKeywords {
 public:
  FoldedKeywords(const std::vector<Text>& keywords, const Locale& locale) : locale_(locale) {
    for (const Text& keyword : keywords) {
      if (!keyword.empty()) folded_.push_back(locale.Fold(keyword));
    }
  }

  bool AnyIn(const Text& text) const {
    if (folded_.empty() || text.empty()) return false;
    const Text folded_text = locale_.Fold(text);
    return std::any_of(folded_.begin(), folded_.end(),
                       [&](const Text& keyword) { return Contains(folded_text, keyword); });
  }

 private:
  const Locale& locale_;
  std::vector<Text> folded_;
};

/// The spam test with all its keywords, ready for many messages.
class SpamTest {
 public:
  SpamTest(const std::vector<Text>& senders, const std::vector<Text>& subjects,
           const Locale& locale)
      : senders_(senders, locale), subjects_(subjects, locale) {}

  bool Matches(const cMessage& message) const {
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

Text StatusText(const MailCounts& counts, const Locale& locale) {
  const Text text = Decimal(static_cast<int64_t>(counts.total)) + u" mails (" +
                    Decimal(static_cast<int64_t>(counts.total - counts.read)) + u" new mails, " +
                    Decimal(static_cast<int64_t>(counts.spam)) + u" SPAM mails)";
  return locale.Map(TextMapping::kUpper, text);
}

bool IsSpamMessage(const cMessage& message, const std::vector<Text>& senders,
                   const std::vector<Text>& subjects, const Locale& locale) {
  return SpamTest(senders, subjects, locale).Matches(message);
}

Text colMails::Key(TextView server, TextView message_id) {
  Text key;
  key.reserve(server.size() + message_id.size());
  return key.append(server).append(message_id);
}

bool colMails::Add(Message message, const Text& user) {
  const Text key = Key(message->Server, message->MessageID);
  Entry* known = entries_.Find(key);
  if (!known) {
    entries_.Add(Entry{std::move(message), user, session_}, key);
    return true;
  }
  if (known->user == user && known->session != session_) {
    known->session = session_;
    IgnoreErrors([&] { known->message->SetIndex(message->Index()); });
  }
  return false;
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

std::vector<colMails::Message> colMails::MarkedForDeletion(TextView server, TextView user) const {
  std::vector<Message> marked;
  entries_.ForEach([&](const Entry& entry) {
    const cMessage& message = *entry.message;
    if (message.Delete && message.Server == server && entry.user == user) {
      marked.push_back(entry.message);
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
  const SpamTest test(senders, subjects, locale);
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
