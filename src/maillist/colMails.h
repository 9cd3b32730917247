#pragma once

#include <cstddef>
#include <cstdint>
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

/// "5 MAILS (3 NEW MAILS, 1 SPAM MAILS)"; new is total less read. The same in every language.
Text StatusText(const MailCounts& counts);

/// The maildrop (RFC 1939) that an account reads: message numbers mean something only there. All
/// parts are compared exactly.
struct Maildrop {
  Text server;
  int32_t port = 0;
  Text user;

  bool operator==(const Maildrop&) const = default;
};

/// The messages of all checks, in the order in which they were first seen. Key: Server followed by
/// MessageID, nothing between. Lives as long as the component; nothing of it is stored.
///
/// An entry belongs to the maildrop that it was first fetched from. Its message number may be used
/// for a deletion only while nothing speaks against it: the maildrop's last complete session saw
/// the message under that number, and the numbers have not moved since. POP3 numbers messages
/// afresh in every session, so a stale number would delete another message.
class colMails {
 public:
  using Message = std::shared_ptr<cMessage>;

  /// The marked messages of a maildrop.
  struct Marked {
    std::vector<Message> numbered;  // can be deleted by their Index
    std::vector<Message> gone;      // the last complete session did not see them any more
  };

  static Text Key(TextView server, TextView message_id);

  size_t Count() const { return entries_.Count(); }

  /// A session that lists `maildrop` begins; what Add adds is fetched from there.
  void BeginSession(const Maildrop& maildrop);

  /// Adds a message that the session has seen under its Index. A key that is already there keeps
  /// its entry and marks; returns false then. The entry takes over the new Index when it belongs to
  /// the same maildrop; of several messages with one key in a session (those without a MessageID)
  /// the first counts. Precondition: BeginSession.
  bool Add(Message message);

  /// The session that began last has seen the whole maildrop, which holds `count` messages: the
  /// numbers of what it saw are good, and what it did not see is gone from the server.
  void CompleteSession(int32_t count);

  /// How many messages the last complete session saw in the maildrop; 0 when there was none.
  int32_t CountIn(const Maildrop& maildrop) const;

  /// Messages were deleted from the maildrop, or it has changed: no entry of it has a number until
  /// its next complete session.
  void ForgetNumbers(const Maildrop& maildrop);

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

  /// The messages of the maildrop that are marked Delete and either have a number or are gone.
  /// Those whose number is not known at present are in neither list.
  Marked MarkedForDeletion(const Maildrop& maildrop) const;

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
  enum class Sight : uint8_t {
    kNew,       // no complete session has seen it yet
    kNumbered,  // the last complete session saw it under its Index
    kGone,      // the last complete session did not see it any more
  };

  struct Entry {
    Message message;
    uint32_t source = 0;        // position in sources_
    uint32_t last_session = 0;  // that saw it
    Sight sight = Sight::kNew;
  };

  /// What is known of a maildrop.
  struct Source {
    Maildrop maildrop;
    int32_t count = 0;  // in the last complete session
    bool numbers_hold = false;
  };

  const Source* FindSource(const Maildrop& maildrop) const;
  void SeeAgain(Entry& entry, int32_t number);

  KeyedCollection<Entry> entries_;
  std::vector<Source> sources_;
  uint32_t source_ = 0;  // of the session that began last
  uint32_t session_ = 0;
};

/// Whether a keyword of `senders` occurs in From, or one of `subjects` in Subject, without regard
/// to case. Empty keywords never match.
bool IsSpamMessage(const cMessage& message, const std::vector<Text>& senders,
                   const std::vector<Text>& subjects, const Locale& locale);

}  // namespace vesko
