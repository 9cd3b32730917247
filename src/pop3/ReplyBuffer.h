#pragma once

#include <cstddef>
#include <vector>

#include "base/Text.h"

namespace vesko {

/// Collects one reply from the pieces in which it arrives, in time linear in its size whatever the
/// pieces are: text is kept as blocks and joined once, and the end is searched only where a new
/// piece can complete it. There is no limit to its size.
class ReplyBuffer {
 public:
  void Append(Text piece);

  size_t Size() const { return size_; }

  /// Whether the first character is `c`; false when there is none.
  bool StartsWith(char16_t c) const { return size_ != 0 && blocks_.front().front() == c; }

  /// A single-line reply is complete: the text ends with CR LF.
  bool EndsWithCrLf() const;

  /// A multi-line reply is complete: the text holds a line of a single dot (LF "." CR LF).
  bool HasDotLine() const { return has_dot_line_; }

  /// The whole text; the buffer is empty afterwards.
  Text Take();

  void Clear();

 private:
  static constexpr size_t kTail = 3;  // one less than the shortest end of a reply to search for

  void SearchEnd(TextView piece);
  void KeepTail(TextView piece);

  std::vector<Text> blocks_;  // none of them empty
  size_t size_ = 0;
  Text tail_;  // the last kTail characters, for an end that two pieces share
  bool has_dot_line_ = false;
};

/// What a complete TOP reply carries: the text behind the status line and before the closing dot
/// line. It views `reply`.
TextView TopContent(TextView reply);

}  // namespace vesko
