#include "pop3/ReplyBuffer.h"

#include <algorithm>
#include <utility>

namespace vesko {
namespace {

constexpr TextView kDotLine = u"\n.\r\n";
constexpr size_t kClosingDot = 3;       // ".", CR, LF
constexpr size_t kBlockSize = 1 << 16;  // characters

}  // namespace

void ReplyBuffer::Append(Text piece) {
  if (piece.empty()) return;
  if (size_ == 0) first_ = piece.front();
  SearchEnd(piece);
  KeepTail(piece);
  size_ += piece.size();
  if (open_block_.size() + piece.size() > kBlockSize) CloseBlock();
  if (piece.size() > kBlockSize) {
    blocks_.emplace_back(piece);
  } else if (open_block_.empty() && blocks_.empty()) {
    open_block_ = std::move(piece);  // most replies arrive in one piece
  } else {
    open_block_ += piece;
  }
}

void ReplyBuffer::CloseBlock() {
  if (open_block_.empty()) return;
  blocks_.emplace_back(open_block_);
  open_block_.clear();
  open_block_.reserve(kBlockSize);
}

void ReplyBuffer::SearchEnd(TextView piece) {
  if (has_dot_line_) return;
  const Text seam = Text(tail_).append(piece.substr(0, kTail));
  has_dot_line_ = Contains(seam, kDotLine) || Contains(piece, kDotLine);
}

void ReplyBuffer::KeepTail(TextView piece) {
  tail_.append(piece.substr(piece.size() - std::min(piece.size(), kTail)));
  if (tail_.size() > kTail) tail_.erase(0, tail_.size() - kTail);
}

bool ReplyBuffer::EndsWithCrLf() const { return TextView(tail_).ends_with(kCrLf); }

Text ReplyBuffer::Take() {
  if (IsLong()) return TakeCompact();
  Text whole = std::move(open_block_);
  Clear();
  return whole;
}

CompactText ReplyBuffer::TakeCompact() {
  CloseBlock();
  std::vector<CompactText> blocks = std::move(blocks_);
  Clear();
  return CompactText::Join(std::move(blocks));
}

TextView TopContent(TextView reply) {
  const size_t line_end = Find(reply, kCrLf);
  if (line_end != Text::npos) reply.remove_prefix(line_end + kCrLf.size());
  if (reply.size() >= kClosingDot) reply.remove_suffix(kClosingDot);
  return reply;
}

CompactText CompactTopContent(CompactText reply) {
  const size_t line_end = reply.Find(kCrLf);
  if (line_end != Text::npos) reply.RemovePrefix(line_end + kCrLf.size());
  if (reply.size() >= kClosingDot) reply.RemoveSuffix(kClosingDot);
  return reply;
}

}  // namespace vesko
