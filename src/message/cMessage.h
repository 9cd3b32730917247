#pragma once

#include <cstdint>

#include "base/Text.h"
#include "base/Variant.h"
#include "platform/Locale.h"

namespace vesko {

/// One message of a mailbox, as far as a check downloads it: the header block and the first lines
/// of the body. Everything in it comes from the server and its senders and is to be shown as plain
/// text.
class cMessage : public Object {
 public:
  /// The locale must outlive the message.
  explicit cMessage(const Locale& locale) : locale_(&locale) {}

  /// Takes the text of a TOP reply (RFC 1939: header lines, blank line, body lines; RFC 5322
  /// fields) and sets Size, Headers, MessageBody and the fields. Text without a blank line sets
  /// Size alone. A second call appends to the appended fields and overwrites the others. Raises
  /// run-time error 9 (a date of fewer than three words) or 13 (a two-character year or an
  /// afternoon hour that is no number); the fields before the date are set then.
  void CreateFromText(TextView text);

  /// Text parts of a MIME message decoded by their Content-Transfer-Encoding, each followed by CR
  /// LF. Raises nothing; what cannot be decoded is copied.
  Text DecodeMessage(TextView text) const;

  /// A header value with its first encoded word (RFC 2047, "?B?" or "?Q?") decoded, followed by a
  /// space and the rest. `field` is the lower-case field name. Raises what CreateFromText does, for
  /// the field "date" only.
  Text DecodeHeader(TextView value, TextView field) const;

  Text Headers;
  Text MessageBody;
  Text Encrypted;
  Text Comments;
  Text Keywords;
  Text References;
  Text InReplyTo;
  Text BCC;
  Text CC;
  Text Sender;
  Text ReplyTo;
  Text Subject;
  Text From;
  Text MessageTo;
  Text MessageID;
  Text SendDate;  // in the user's formats
  Text Received;
  Text ReturnPath;
  Text Server;  // set by the check: the account's server name
  bool Read = false;
  bool Spam = false;
  bool Delete = false;

  /// Bytes of the text given to CreateFromText in UTF-16.
  int32_t Size() const { return size_; }

  /// Number of the message on the server as POP3 commands use it. Reading it before it was set
  /// raises run-time error 13.
  int32_t Index() const { return ToInt32(TextView(index_)); }
  void SetIndex(int32_t index) { index_ = Decimal(index); }

 private:
  const Locale* locale_;
  int32_t size_ = 0;
  Text index_;
};

}  // namespace vesko
