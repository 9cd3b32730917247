#include "pop3/ReplyBuffer.h"

#include <algorithm>
#include <utility>

namespace vesko {
namespace {

constexpr TextView kDotLine = u"\n.\r\n";
constexpr size_t kClosingDot = 3;       // ".", CR, LF
constexpr size_t kBlockSize = 1 << 16;  // small pieces are gathered into blocks of this size

}  // namespace

void ReplyBuffer::Append(Text piece) {
  if (piece.empty()) return;
  SearchEnd(piece);
  KeepTail(piece);
  size_ += piece.size();
  if (!blocks_.empty() && blocks_.back().size() + piece.size() <= kBlockSize) {
    blocks_.back() += piece;
    return;
  }
  // Only a second block tells that the reply is large; most replies are one piece and stay it.
  if (!blocks_.empty() && piece.size() < kBlockSize) piece.reserve(kBlockSize);
  blocks_.push_back(std::move(piece));
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
  Text whole;
  if (blocks_.size() == 1) {
    whole = std::move(blocks_.front());
  } else {
    whole.reserve(size_);
    for (Text& block : blocks_) {
      whole += block;
      block = Text();  // so that the two copies do not stand side by side
    }
  }
  Clear();
  return whole;
}

void ReplyBuffer::Clear() {
  blocks_.clear();
  size_ = 0;
  tail_.clear();
  has_dot_line_ = false;
}

TextView TopContent(TextView reply) {
  const size_t line_end = Find(reply, kCrLf);
  if (line_end != Text::npos) reply.remove_prefix(line_end + kCrLf.size());
  if (reply.size() >= kClosingDot) reply.remove_suffix(kClosingDot);
  return reply;
}

}  // namespace vesko
