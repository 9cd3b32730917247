#pragma once

#include <cstdint>

#include "base/CompactText.h"
#include "base/Text.h"
#include "base/Variant.h"
#include "platform/Locale.h"

namespace vesko {

/// One message of a mailbox, as far as a check downloads it: the header block and the first lines
/// of the body. Everything in it comes from the server and the sender. It is not to be trusted, and
/// to be shown as plain text. Many messages are kept at once, so their texts are compact.
class cMessage : public Object {
 public:
  /// The locale must outlive the message.
  explicit cMessage(const Locale& locale) : locale_(&locale) {}

  /// Takes the text of a TOP reply (RFC 1939: header lines, a blank line, body lines; the fields
  /// are those of RFC 5322) and sets Size, Headers, MessageBody and the fields. Text without a
  /// blank line sets only Size. A second call appends to ReplyTo, MessageTo, CC, BCC and Subject
  /// and overwrites the others. Raises run-time error 9 (a date of fewer than three words) or 13 (a
  /// two-character year or an afternoon hour that is not a number); the fields before the date are
  /// set then.
  void CreateFromText(TextView text);

  /// The same for a long text. Its memory becomes the body's where the body needs no decoding, so
  /// the text is held only once.
  void CreateFromCompactText(CompactText text);

  /// The text parts of a MIME message, decoded by their Content-Transfer-Encoding, each followed by
  /// CR LF. Raises nothing; a part that cannot be decoded is copied.
  Text DecodeMessage(TextView text) const;

  /// A header value with its first encoded word (RFC 2047, "?B?" or "?Q?") decoded, followed by a
  /// space and the rest. `field` is the field name in lower case; "date" gives the date in the
  /// user's formats, and raises what CreateFromText does. No other field raises anything.
  Text DecodeHeader(TextView value, TextView field) const;

  /// The fields of the header, named after them. Fields that are missing are empty.
  CompactText Headers;  // the whole header block, without its last line end
  CompactText MessageBody;
  CompactText Encrypted;
  CompactText Comments;
  CompactText Keywords;
  CompactText References;
  CompactText InReplyTo;
  CompactText BCC;
  CompactText CC;
  CompactText Sender;
  CompactText ReplyTo;
  CompactText Subject;
  CompactText From;
  CompactText MessageTo;
  CompactText MessageID;
  CompactText SendDate;  // in the user's formats
  CompactText Received;
  CompactText ReturnPath;
  CompactText Server;  // set by the check: the account's server name

  /// The marks of the mail list. Parsing does not touch them.
  bool Read = false;
  bool Spam = false;
  bool Delete = false;

  /// Size of the text given to CreateFromText, in bytes as UTF-16.
  int32_t Size() const { return size_; }

  /// The message's number on the server, as POP3 commands use it. Reading it before it has been set
  /// raises run-time error 13.
  int32_t Index() const { return ToInt32(TextView(index_)); }
  void SetIndex(int32_t index) { index_ = Decimal(index); }

 private:
  void ReadHeader(TextView header);

  const Locale* locale_;
  int32_t size_ = 0;
  Text index_;
};

}  // namespace vesko
