#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "base/KeyedCollection.h"
#include "base/Text.h"
#include "maillist/MailState.h"
#include "message/cMessage.h"
#include "platform/Locale.h"

namespace vesko {

MailState StateOf(const cMessage& message);

struct MailCounts {
  size_t total = 0;
  size_t read = 0;
  size_t spam = 0;
};

/// "5 MAILS (3 NEW MAILS, 1 SPAM MAILS)"; new is total less read.
Text StatusText(const MailCounts& counts, const Locale& locale);

/// The messages of all checks, in the order in which they were first seen. Key: Server followed by
/// MessageID, nothing between. Lives as long as the component; nothing of it is stored.
class colMails {
 public:
  using Message = std::shared_ptr<cMessage>;

  static Text Key(TextView server, TextView message_id);

  size_t Count() const { return entries_.Count(); }

  /// A session with a server begins: the numbers that it sees replace those of earlier sessions.
  void BeginSession() { ++session_; }

  /// Adds a message that `user`'s account fetched. A key that is already there keeps its entry and
  /// marks; returns false then. The entry takes over the new message's number when the same account
  /// fetched it, for deleting by a stale number would hit another message; of several messages with
  /// one key in a session (those without a MessageID) the first counts.
  bool Add(Message message, const Text& user);

  /// The message under a key, or null.
  Message Find(const Text& key) const;

  bool Remove(const Text& key) { return entries_.Remove(key); }
  void RemoveFirst() { entries_.RemoveFirst(); }

  /// Calls visit(message) in order; false ends the walk.
  template <typename Visit>
  void ForEach(Visit&& visit) const {
    entries_.ForEach([&](const Entry& entry) { return visit(*entry.message); });
  }

  /// All messages in order.
  std::vector<Message> All() const;

  /// The messages marked Delete that this server and account fetched (both compared exactly).
  std::vector<Message> MarkedForDeletion(TextView server, TextView user) const;

  bool AnyUnread() const;
  bool AnySpam() const;

  /// Spam = IsSpamMessage for every message.
  void ApplySpamFilter(const std::vector<Text>& senders, const std::vector<Text>& subjects,
                       const Locale& locale);

  /// Delete = true for every message whose Spam is true.
  void MarkSpamForDeletion();
  void ClearDeletionMarks();

  MailCounts Counts() const;

 private:
  struct Entry {
    Message message;
    Text user;
    size_t session;  // in which the number was seen
  };
  KeyedCollection<Entry> entries_;
  size_t session_ = 0;
};

/// Whether a keyword of `senders` occurs in From, or one of `subjects` in Subject, without regard
/// to case. Empty keywords never match.
bool IsSpamMessage(const cMessage& message, const std::vector<Text>& senders,
                   const std::vector<Text>& subjects, const Locale& locale);

}  // namespace vesko
