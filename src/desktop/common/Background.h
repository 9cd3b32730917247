#pragma once

#include <functional>

namespace vesko {

/// Runs one piece of work that may block beside the thread of the event loop.
class Background {
 public:
  /// Cancels. Must not happen from within `done`.
  virtual ~Background() = default;

  /// Runs `work` on a thread of its own and then `done` by the event loop of the thread that made
  /// this object. Cancelled work runs to its end unattended, even past the end of this object, so
  /// `work` must own everything that it uses. Where no thread can be had, `done` comes without
  /// `work`. Cancels what was started before; may be called from within `done`.
  virtual void Start(std::function<void()> work, std::function<void()> done) = 0;

  /// Returns at once; `done` will not come. May be called from within `done`.
  virtual void Cancel() = 0;
};

}  // namespace vesko
