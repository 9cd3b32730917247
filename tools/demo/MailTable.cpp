#include "demo/MailTable.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <string>

namespace vesko::demo {
namespace {

struct Column {
  const char* header;
  int width;
};
constexpr Column kColumns[] = {{"State", 8}, {"From", 32}, {"Subject", 42}, {"Date", 20}};

bool Combines(UChar32 c) {
  const int category = u_charType(c);
  return category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK;
}

// Controls, direction marks and other invisible ones: nothing that a stranger wrote may steer the
// terminal.
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

// The text in exactly `width` columns.
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

void PrintHeader(std::ostream& out) {
  for (const Column& column : kColumns) {
    out << Cell(FromAscii(column.header), column.width) << "  ";
  }
  out << "Server\n";
  for (const Column& column : kColumns) {
    out << std::string(static_cast<size_t>(column.width), '-') << "  ";
  }
  out << "------\n";
}

}  // namespace

void PrintTable(std::ostream& out, const colMails& mails) {
  PrintHeader(out);
  mails.ForEach([&](const cMessage& message) {
    const Text cells[] = {FromAscii(StateName(message)), message.From, message.Subject,
                          message.SendDate};
    for (size_t i = 0; i < std::size(cells); ++i) {
      out << Cell(Trim(cells[i]), kColumns[i].width) << "  ";
    }
    out << Cell(message.Server, 24) << '\n';
    return true;
  });
}

}  // namespace vesko::demo
