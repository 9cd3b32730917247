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

/// The messages of all checks, in the order in which they were first seen. Their key is Server
/// immediately followed by MessageID. The collection lives as long as the component and is stored
/// nowhere.
///
/// An entry belongs to the maildrop that it was first fetched from. POP3 numbers messages afresh in
/// every session, so a stale number would delete another message. Therefore the number of an entry
/// (its Index) is used for a deletion only when the maildrop's last complete session saw the
/// message under it, and nothing that happened since suggests that the numbers have moved: an
/// unfinished session that found something else there, a deletion, or a mailbox that has shrunk.
class colMails {
 public:
  using Message = std::shared_ptr<cMessage>;

  /// The marked messages of a maildrop.
  struct Marked {
    std::vector<Message> numbered;  // can be deleted by their Index
    std::vector<Message> gone;      // the last complete session did not see them any more
  };

  /// The key of a message: both parts, nothing between them.
  static Text Key(const Text& server, const Text& message_id);

  size_t Count() const { return entries_.Count(); }

  /// The accounts are about to be checked, and read these maildrops. Entries of any other one
  /// become those of the next session that sees them: an account whose port or user was changed
  /// since then goes on where it was.
  void KnowMaildrops(const std::vector<Maildrop>& maildrops);

  /// A session that fetches from `maildrop` begins. Add and CompleteSession refer to it.
  void BeginSession(const Maildrop& maildrop);

  /// Adds a message that the session has seen under its Index. When the key is already present, the
  /// entry and its marks stay and the result is false. The entry then takes over the new Index if
  /// it belongs to the same maildrop. If several messages of a session have one key (those without
  /// a MessageID do), the first one counts. Preconditions: BeginSession, and an Index is set.
  bool Add(Message message);

  /// The session that began last has seen all `count` messages of its maildrop: the numbers of
  /// those are good, and all other entries of the maildrop are gone from the server.
  void CompleteSession(int32_t count);

  /// How many messages the last complete session saw in the maildrop; 0 when there was none.
  int32_t CountIn(const Maildrop& maildrop) const;

  /// The numbers of the maildrop have moved or may have: none of its entries has a number until its
  /// next complete session. Does not allocate.
  void ForgetNumbers(const Maildrop& maildrop);

  /// The message under a key (see Key), or null.
  Message Find(const Text& key) const;

  /// Both do nothing when there is no such message; Remove returns false then.
  bool Remove(const Text& key) { return entries_.Remove(key); }
  void RemoveFirst() { entries_.RemoveFirst(); }

  /// Calls visit(message) in order until it returns false. The collection must not change
  /// meanwhile.
  template <typename Visit>
  void ForEach(Visit&& visit) const {
    entries_.ForEach([&](const Entry& entry) { return visit(*entry.message); });
  }

  /// All messages in order.
  std::vector<Message> All() const;

  /// The messages of the maildrop that are marked Delete and either have a number or are gone.
  /// Those whose number is not known at present are in neither list.
  Marked MarkedForDeletion(const Maildrop& maildrop) const;

  /// Whether at least one message is not marked Read, or is marked Spam.
  bool AnyUnread() const;
  bool AnySpam() const;

  /// Sets the Spam mark of every message to the result of IsSpamMessage, manual marks included.
  void ApplySpamFilter(const std::vector<Text>& senders, const std::vector<Text>& subjects,
                       const Locale& locale);

  /// Marks every message for deletion that is marked as spam; or none any more.
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
    bool abandoned = false;  // no account reads it any more
  };

  const Source* FindSource(const Maildrop& maildrop) const;
  void SeeAgain(Entry& entry, int32_t number);

  KeyedCollection<Entry> entries_;
  std::vector<Source> sources_;
  uint32_t source_ = 0;  // of the session that began last
  uint32_t session_ = 0;
};

/// Whether a keyword of `senders` occurs anywhere in From, or one of `subjects` in Subject, without
/// regard to case. Empty keywords never match.
bool IsSpamMessage(const cMessage& message, const std::vector<Text>& senders,
                   const std::vector<Text>& subjects, const Locale& locale);

}  // namespace vesko
