#include "message/cMessage.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "base/Ascii.h"
#include "base/RunTimeError.h"
#include "message/DisplayDate.h"
#include "message/cEncode.h"

namespace vesko {
namespace {

constexpr TextView kBlankLine = u"\r\n\r\n";
constexpr TextView kContentType = u"Content-Type:";

// --- Header lines

enum class Handling {
  kRaw,       // stored undecoded; a later line replaces an earlier one
  kTrimmed,   // decoded and trimmed; a later line replaces an earlier one
  kAppended,  // decoded; each line is appended
  kDate,
};

struct KnownField {
  TextView name;
  CompactText cMessage::*member;
  Handling handling;
};

constexpr KnownField kKnownFields[] = {
    {u"return-path", &cMessage::ReturnPath, Handling::kRaw},
    {u"received", &cMessage::Received, Handling::kRaw},
    {u"from", &cMessage::From, Handling::kTrimmed},
    {u"sender", &cMessage::Sender, Handling::kRaw},
    {u"reply-to", &cMessage::ReplyTo, Handling::kAppended},
    {u"to", &cMessage::MessageTo, Handling::kAppended},
    {u"cc", &cMessage::CC, Handling::kAppended},
    {u"bcc", &cMessage::BCC, Handling::kAppended},
    {u"message-id", &cMessage::MessageID, Handling::kRaw},
    {u"in-reply-to", &cMessage::InReplyTo, Handling::kRaw},
    {u"references", &cMessage::References, Handling::kRaw},
    {u"keywords", &cMessage::Keywords, Handling::kRaw},
    {u"subject", &cMessage::Subject, Handling::kAppended},
    {u"comments", &cMessage::Comments, Handling::kRaw},
    {u"encrypted", &cMessage::Encrypted, Handling::kRaw},
    {u"date", &cMessage::SendDate, Handling::kDate},
};
constexpr size_t kFieldCount = std::size(kKnownFields);
constexpr size_t kLongestName = std::size(u"return-path") - 1;

// Compares without regard to ASCII case. `lower` must be 7-bit text in lower case.
bool EqualsLower(TextView text, TextView lower) {
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                    [](char16_t c, char16_t wanted) { return AsciiLower(c) == wanted; });
}

const KnownField* FindField(TextView name) {
  for (const KnownField& field : kKnownFields) {
    if (EqualsLower(name, field.name)) return &field;
  }
  return nullptr;
}

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }

TextView TrimBlanks(TextView text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// The text with its tabs replaced by spaces. It is copied to `copy` only if it has tabs.
TextView WithoutTabs(TextView text, Text& copy) {
  if (Find(text, u'\t') == Text::npos) return text;
  copy = text;
  std::replace(copy.begin(), copy.end(), u'\t', u' ');
  return copy;
}

// The position of the next CR LF, or the end of the text.
size_t FindLineEnd(TextView text, size_t from) {
  for (size_t at; (at = Find(text, u'\r', from)) != Text::npos; from = at + 1) {
    if (at + 1 < text.size() && text[at + 1] == u'\n') return at;
  }
  return text.size();
}

// Reads header lines into a message. Values that a later line may replace remain views until the
// end of the header, so repeated and folded lines cost nothing. Values that are appended are stored
// once they are complete.
class HeaderReader {
 public:
  explicit HeaderReader(cMessage& message) : message_(message) {}

  void Read(TextView header) {
    for (size_t start = 0; start < header.size();) {
      size_t end = FindLineEnd(header, start);
      ReadLine(header.substr(start, end - start));
      start = end + kCrLf.size();
    }
  }

  // Stores the values that Read has collected. To be called after an error in Read, too.
  void Store() {
    for (size_t i = 0; i < kFieldCount; ++i) {
      const KnownField& field = kKnownFields[i];
      if (replaced_[i]) message_.*field.member = Value(field, *replaced_[i]);
      if (!appended_[i].empty()) Add(appended_[i], message_.*field.member);
    }
  }

 private:
  void ReadLine(TextView line) {
    if (!line.empty() && IsBlank(line.front())) return ReadContinuation(line);
    size_t colon = line.substr(0, kLongestName + 1).find(u':');
    field_ = colon == TextView::npos ? nullptr : FindField(line.substr(0, colon));
    if (field_ != nullptr) Take(TrimBlanks(line.substr(colon + 1)));
  }

  // A continuation line with a colon counts as an unknown field of its own.
  void ReadContinuation(TextView line) {
    if (field_ == nullptr) return;
    if (Find(line, u':') != Text::npos) {
      field_ = nullptr;
    } else {
      Take(TrimBlanks(line));
    }
  }

  void Take(TextView value) {
    if (field_->handling == Handling::kDate) {
      message_.SendDate = Decode(*field_, value);
    } else if (field_->handling == Handling::kAppended) {
      Append(Decode(*field_, value));
    } else {
      replaced_[field_ - kKnownFields] = value;
    }
  }

  void Append(Text decoded) {
    Text& text = appended_[field_ - kKnownFields];
    if (text.empty()) {
      text = std::move(decoded);
    } else {
      text += decoded;
    }
  }

  static void Add(const Text& text, CompactText& member) {
    member = member.empty() ? CompactText(text) : CompactText(Text(member) + text);
  }

  Text Decode(const KnownField& field, TextView value) const {
    Text copy;
    return message_.DecodeHeader(WithoutTabs(value, copy), field.name);
  }

  Text Value(const KnownField& field, TextView value) const {
    Text copy;
    if (field.handling == Handling::kRaw) return Text(WithoutTabs(value, copy));
    copy = Decode(field, value);
    return Text(Trim(copy));
  }

  cMessage& message_;
  const KnownField* field_ = nullptr;  // of the previous line; null if it is unknown
  std::array<std::optional<TextView>, kFieldCount> replaced_;
  std::array<Text, kFieldCount> appended_;
};

// --- Encoded words

// A decoded encoded word and the text that follows it.
struct DecodedWord {
  Text decoded;
  TextView rest;
};

// Decodes the word after the three-character marker at `at`. The result is empty if the word is
// empty or unterminated, or if the code page lacks one of its characters.
template <typename Decode>
DecodedWord DecodeWord(TextView value, size_t at, Decode decode) {
  DecodedWord word;
  size_t start = at + 3;
  size_t end = Find(value, u'?', start);
  if (end == Text::npos || end == start) return word;
  if (!IgnoreErrors([&] { word.decoded = decode(value.substr(start, end - start)); })) return word;
  size_t space = Find(value, u' ', end);
  if (space != Text::npos) word.rest = value.substr(space + 1);
  return word;
}

std::optional<DecodedWord> DecodeFirstWord(const cEncode& encode, TextView value) {
  size_t mark = Find(value, u'?');
  if (mark == Text::npos) return std::nullopt;
  if (size_t at = Find(value, u"?B?", mark); at != Text::npos) {
    return DecodeWord(value, at, [&](TextView word) { return encode.DecodeBase64(word); });
  }
  if (size_t at = Find(value, u"?Q?", mark); at != Text::npos) {
    return DecodeWord(value, at, [&](TextView word) { return encode.DecodeQuotedPrintable(word); });
  }
  return std::nullopt;
}

bool IsAddressField(TextView field) {
  return field == u"from" || field == u"to" || field == u"cc" || field == u"bcc" ||
         field == u"reply-to";
}

Text Concatenate(TextView decoded, TextView rest) {
  Text text;
  text.reserve(decoded.size() + 1 + rest.size());
  return text.append(decoded).append(u" ").append(rest);
}

// Allocates only once, because this runs for most messages.
Text WithoutQuotes(const Text& text) {
  auto quotes = std::count(text.begin(), text.end(), u'"');
  Text unquoted(text.size() - quotes, u'\0');
  std::remove_copy(text.begin(), text.end(), unquoted.begin(), u'"');
  return unquoted;
}

// --- MIME parts

struct MimePart {
  TextView header;
  TextView body;
};

// Walks over the parts of a message: a header block begins at a "Content-" line, and its body ends
// at the last blank line before the next such line. The walk is linear: each search starts where
// the previous one of its kind ended, or stops at the blank line that was found just before.
class MimeWalk {
 public:
  explicit MimeWalk(TextView text) : text_(text) {}

  // Returns false when there are no more parts.
  bool Next(MimePart& part) {
    size_t content = FindContent(start_);
    if (content == Text::npos) return false;
    size_t blank = Find(text_, kBlankLine, content);
    if (blank == Text::npos) return false;
    size_t body = blank + kBlankLine.size();
    size_t end = FindLast(text_, kBlankLine, FindContent(blank));
    // The header block includes the first character of the body.
    part.header = text_.substr(content + kCrLf.size(), body + 1 - content - kCrLf.size());
    bool has_body = end > body + 1;
    part.body = has_body ? text_.substr(body, end - body) : TextView();
    start_ = has_body ? end - 1 : body;
    return true;
  }

 private:
  size_t FindContent(size_t from) const { return Find(text_, u"\r\nContent-", from); }

  TextView text_;
  size_t start_ = 0;
};

TextView TransferEncodingOf(TextView header) {
  constexpr TextView kName = u"Content-Transfer-Encoding: ";
  size_t at = Find(header, kName);
  if (at == Text::npos) return {};
  size_t start = at + kName.size();
  size_t end = Find(header, kCrLf, start);
  return end == Text::npos ? TextView() : header.substr(start, end - start);
}

bool IsText(TextView header) {
  return Contains(header, u"text/plain;") || Contains(header, u"text/html;");
}

void AppendLine(TextView line, Text& to) {
  to.reserve(to.size() + line.size() + kCrLf.size());
  to.append(line).append(kCrLf);
}

// Appends the decoded body, or the body itself if it cannot be decoded.
void AppendBody(const cEncode& encode, const MimePart& part, Text& to) {
  TextView encoding = TransferEncodingOf(part.header);
  bool is_decoded = false;
  if (EqualsLower(encoding, u"base64")) {
    is_decoded = IgnoreErrors([&] { AppendLine(encode.DecodeBase64(part.body), to); });
  } else if (EqualsLower(encoding, u"quoted-printable")) {
    is_decoded = IgnoreErrors([&] { AppendLine(encode.DecodeQuotedPrintable(part.body), to); });
  }
  if (!is_decoded) AppendLine(part.body, to);
}

}  // namespace

void cMessage::CreateFromText(TextView text) {
  size_ = static_cast<int32_t>(text.size() * sizeof(char16_t));
  size_t blank = Find(text, kBlankLine);
  if (blank == Text::npos) return;
  if (Contains(text, kContentType)) {
    MessageBody = DecodeMessage(text);
  } else {
    MessageBody = text.substr(blank + kBlankLine.size());
  }
  ReadHeader(text.substr(0, blank));
}

void cMessage::CreateFromCompactText(CompactText text) {
  size_ = static_cast<int32_t>(text.size() * sizeof(char16_t));
  size_t blank = text.Find(kBlankLine);
  if (blank == Text::npos) return;
  const Text header = text.Slice(0, blank);
  if (text.Find(kContentType) != Text::npos) {
    const Text whole = std::exchange(text, {});
    MessageBody = DecodeMessage(whole);
  } else {
    text.RemovePrefix(blank + kBlankLine.size());
    MessageBody = std::move(text);
  }
  ReadHeader(header);
}

void cMessage::ReadHeader(TextView header) {
  Headers = header;
  HeaderReader reader(*this);
  try {
    reader.Read(header);
  } catch (const RunTimeError&) {
    reader.Store();
    throw;
  }
  reader.Store();
}

Text cMessage::DecodeMessage(TextView text) const {
  cEncode encode(*locale_);
  MimeWalk walk(text);
  MimePart part;
  Text decoded;
  while (walk.Next(part)) {
    if (IsText(part.header)) AppendBody(encode, part, decoded);
  }
  return decoded;
}

Text cMessage::DecodeHeader(TextView value, TextView field) const {
  Text unfolded;
  if (Find(value, u'\r') != Text::npos) value = unfolded = ReplaceAll(value, kCrLf, {});
  std::optional<DecodedWord> word = DecodeFirstWord(cEncode(*locale_), value);
  TextView decoded = word ? word->decoded : value;
  TextView rest = word ? word->rest : TextView();
  if (field == u"date") return Concatenate(FormatSendDate(*locale_, decoded), rest);
  Text text = Concatenate(decoded, rest);
  return IsAddressField(field) && Contains(text, u"\"") ? WithoutQuotes(text) : text;
}

}  // namespace vesko
