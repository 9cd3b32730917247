#pragma once

#include <cstddef>
#include <vector>

#include "base/CompactText.h"
#include "base/Text.h"

namespace vesko {

/// Collects one reply from the pieces in which it arrives, in time linear in its size whatever the
/// pieces are: the end is searched only where a new piece can complete it. A long reply is kept as
/// compact blocks. Nothing here limits its size; see Pop3Session.
class ReplyBuffer {
 public:
  /// Adds what has arrived; an empty piece changes nothing.
  void Append(Text piece);

  /// Characters appended since the buffer was empty.
  size_t Size() const { return size_; }

  /// Whether the first character is `c`; false when there is none.
  bool StartsWith(char16_t c) const { return first_ == c && size_ != 0; }

  /// A single-line reply is complete: the text ends with CR LF.
  bool EndsWithCrLf() const;

  /// A multi-line reply is complete: the text holds a line of a single dot (LF "." CR LF).
  bool HasDotLine() const { return has_dot_line_; }

  /// There is more than one block of text: TakeCompact needs half the memory of Take, or less.
  bool IsLong() const { return !blocks_.empty(); }

  /// The whole text, in one of two forms. The buffer is empty afterwards and has given its memory
  /// back.
  Text Take();
  CompactText TakeCompact();

  /// Empties the buffer and gives its memory back.
  void Clear() { *this = {}; }

 private:
  static constexpr size_t kTail = 3;  // one less than the shortest end of a reply to search for

  void SearchEnd(TextView piece);
  void KeepTail(TextView piece);
  void CloseBlock();

  std::vector<CompactText> blocks_;
  Text open_block_;  // small pieces are gathered here
  size_t size_ = 0;
  char16_t first_ = 0;
  Text tail_;  // the last kTail characters, for an end that two pieces share
  bool has_dot_line_ = false;
};

/// What a complete TOP reply carries: the text after the status line and before the closing dot
/// line. A reply that lacks one of them is cut as far as it goes. The view is into `reply`.
TextView TopContent(TextView reply);
CompactText CompactTopContent(CompactText reply);

}  // namespace vesko
