#include "demo/SampleMailbox.h"

#include <QDir>
#include <QFile>

namespace vesko::demo {
namespace {

constexpr size_t kLargeHeaderSize = size_t{2} * 1024 * 1024;

std::string WithMailLineEnds(const QByteArray& text) {
  std::string result;
  result.reserve(static_cast<size_t>(text.size() + text.size() / 32));
  for (char c : text) {
    if (c == '\n') result += '\r';
    result += c;
  }
  return result;
}

// Generated, because a file of two megabytes would tell a reader nothing.
std::string LargeHeaderMessage() {
  std::string text =
      "From: \"The Long Way Round\" <relay@example.net>\r\n"
      "To: minji@mail.example\r\n"
      "Subject: Two megabytes of header\r\n"
      "Date: Sun, 18 Oct 2026 08:00:00 +0900\r\n"
      "Message-ID: <large-1018@example.net>\r\n";
  for (int hop = 1; text.size() < kLargeHeaderSize; ++hop) {
    text += "X-Hop: passed relay number " + std::to_string(hop) + " of a very long way round\r\n";
  }
  return text + "\r\nIt took a while, but here it is.\r\n";
}

}  // namespace

std::vector<std::string> SampleMessages(const std::string& user) {
  const QDir folder(":/mailbox/" + QString::fromStdString(user));
  std::vector<std::string> messages;
  for (const QString& name : folder.entryList({"*.eml"}, QDir::Files, QDir::Name)) {
    QFile file(folder.filePath(name));
    if (file.open(QIODevice::ReadOnly)) messages.push_back(WithMailLineEnds(file.readAll()));
  }
  if (user == kSampleUsers[0]) messages.push_back(LargeHeaderMessage());
  return messages;
}

}  // namespace vesko::demo
