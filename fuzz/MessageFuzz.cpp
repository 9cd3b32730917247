// The text of a reply to TOP, as a message.

#include "Fuzz.h"
#include "desktop/common/ShownText.h"
#include "message/cMessage.h"
#include "support/ErrorOf.h"

namespace vesko::fuzz {
namespace {

constexpr CompactText cMessage::*kFields[] = {
    &cMessage::Headers,  &cMessage::MessageBody, &cMessage::Encrypted, &cMessage::Comments,
    &cMessage::Keywords, &cMessage::References,  &cMessage::InReplyTo, &cMessage::BCC,
    &cMessage::CC,       &cMessage::Sender,      &cMessage::ReplyTo,   &cMessage::Subject,
    &cMessage::From,     &cMessage::MessageTo,   &cMessage::MessageID, &cMessage::SendDate,
    &cMessage::Received, &cMessage::ReturnPath,
};

size_t Kept(const cMessage& message) {
  size_t kept = 0;
  for (CompactText cMessage::*field : kFields) kept += (message.*field).size();
  return kept;
}

void Run(Input input) {
  const Locale& locale = LocaleAt(input.Choose(kLocales));
  const bool inflate = input.Choose(64) == 63;
  const Text text = locale.ToText(inflate ? Inflate(input.Rest()) : input.Rest());

  cMessage message(locale);
  Expect(ErrorOf([&] { message.CreateFromText(text); }), {kSubscriptOutOfRange, kTypeMismatch},
         "a message raises errors of its date only");
  Expect(Kept(message) <= 4 * text.size() + 64, "a message is not much larger than its text");
  Expect(message.Size() == static_cast<int32_t>(2 * text.size()), "Size is that of the text");
  Expect(text.starts_with(Text(message.Headers)), "the headers are the beginning");
  Expect(message.DecodeMessage(text).size() <= 2 * text.size(), "decoding adds line ends at most");

  for (CompactText cMessage::*field : kFields) {
    const Text text_of_field = message.*field;
    Expect(IsShowable(OneLine(text_of_field), false), "a line shows no control character");
    const Text lines = Lines(text_of_field, Text::npos, u"\r\n");
    Expect(IsShowable(lines, true), "lines show no control character");
    Expect(lines.size() <= 2 * text_of_field.size(), "line ends double at most");
  }

  cMessage compact(locale);
  ErrorOf([&] { compact.CreateFromCompactText(text); });
  for (CompactText cMessage::*field : kFields) {
    Expect(compact.*field == message.*field, "a compact text gives the same message");
  }

  // What stands behind the end of the body changes nothing before it.
  cMessage again(locale);
  ErrorOf([&] { again.CreateFromText(text + u"\r\nmore"); });
  if (Contains(text, u"\r\n\r\n")) {
    Expect(again.Headers == message.Headers && again.Subject == message.Subject,
           "the headers do not depend on the body");
  }
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vesko::fuzz::Run({data, size});
  return 0;
}
