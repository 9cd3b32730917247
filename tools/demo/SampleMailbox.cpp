#include "demo/SampleMailbox.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace vesko::demo {
namespace {

namespace fs = std::filesystem;

constexpr size_t kLargeHeaderSize = 2 * 1024 * 1024;

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::system_error(errno, std::generic_category(), path.string());
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string WithMailLineEnds(const std::string& text) {
  std::string result;
  result.reserve(text.size() + text.size() / 32);
  for (char c : text) {
    if (c == '\n') result += '\r';
    result += c;
  }
  return result;
}

// Made here and not kept as a file: two megabytes say nothing to a reader.
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
  std::vector<fs::path> paths;
  for (const auto& entry : fs::directory_iterator(fs::path(VESKO_DEMO_MAILBOX) / user)) {
    if (entry.path().extension() == ".eml") paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  std::vector<std::string> messages;
  for (const fs::path& path : paths) messages.push_back(WithMailLineEnds(ReadFile(path)));
  if (user == kSampleUsers[0]) messages.push_back(LargeHeaderMessage());
  return messages;
}

}  // namespace vesko::demo
