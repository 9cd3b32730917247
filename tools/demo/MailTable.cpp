#include "demo/MailTable.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <array>
#include <iterator>
#include <string>

namespace vesko::demo {
namespace {

struct Column {
  const char* header;
  int width;
};
constexpr Column kColumns[] = {
    {"State", 8}, {"From", 32}, {"Subject", 42}, {"Date", 20}, {"POP3 Server", 16}};
using RowTexts = std::array<Text, std::size(kColumns)>;

bool Combines(UChar32 c) {
  const int category = u_charType(c);
  return category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK;
}

// Control characters, direction marks and other invisible characters, which could change how the
// terminal shows the rest.
bool Invisible(UChar32 c) {
  const int category = u_charType(c);
  return category == U_CONTROL_CHAR || category == U_FORMAT_CHAR || category == U_SURROGATE ||
         category == U_LINE_SEPARATOR || category == U_PARAGRAPH_SEPARATOR;
}

int Width(UChar32 c) {
  if (Combines(c)) return 0;
  const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

// The text in exactly `width` columns. A text that is cut ends with an ellipsis in the last one.
std::string Cell(TextView text, int width) {
  const icu::UnicodeString source(false, text.data(), static_cast<int32_t>(text.size()));
  icu::UnicodeString cell;
  int used = 0;
  for (int32_t i = 0; i < source.length(); i = source.moveIndex32(i, 1)) {
    const UChar32 original = source.char32At(i);
    const UChar32 c = Invisible(original) ? U' ' : original;
    const bool last = source.moveIndex32(i, 1) == source.length();
    if (used + Width(c) > width - (last ? 0 : 1)) {
      cell += UChar32{U'…'};
      ++used;
      break;
    }
    cell += c;
    used += Width(c);
  }
  std::string utf8;
  cell.toUTF8String(utf8);
  return utf8 + std::string(static_cast<size_t>(width - used), ' ');
}

void PrintRow(std::ostream& out, const RowTexts& texts) {
  std::string line;
  for (size_t i = 0; i < texts.size(); ++i) {
    line += Cell(Trim(texts[i]), kColumns[i].width) + "  ";
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out << line << '\n';
}

void PrintHeader(std::ostream& out) {
  RowTexts headers;
  RowTexts lines;
  for (size_t i = 0; i < headers.size(); ++i) {
    headers[i] = FromAscii(kColumns[i].header);
    lines[i] = Text(static_cast<size_t>(kColumns[i].width), u'-');
  }
  PrintRow(out, headers);
  PrintRow(out, lines);
}

}  // namespace

void PrintTable(std::ostream& out, const colMails& mails) {
  PrintHeader(out);
  mails.ForEach([&](const cMessage& message) {
    PrintRow(out, {FromAscii(NameOf(StateOf(message))), message.From, message.Subject,
                   message.SendDate, message.Server});
    return true;
  });
}

}  // namespace vesko::demo
