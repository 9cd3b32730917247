#pragma once

#include <chrono>
#include <vector>

namespace vesko {

class Mirror;

/// A native thing that shows the state of one of ours: a window, a control. It leaves its mirror
/// when it goes.
class Mirrored {
 public:
  explicit Mirrored(Mirror& mirror) : mirror_(mirror) {}
  virtual ~Mirrored();
  Mirrored(const Mirrored&) = delete;
  Mirrored& operator=(const Mirrored&) = delete;

  /// Remembers that there is something to show. A check does this several times for each message,
  /// so it is no more than two flags.
  void MarkChanged();

  /// Shows the state now, changed or not.
  void Synchronise();
  void SynchroniseIfChanged();

 protected:
  /// Brings the native side up to date. It may mark this or other things as changed, and may even
  /// destroy some; those are shown the next time.
  virtual void ShowState() = 0;
  Mirror& GetMirror() const { return mirror_; }

 private:
  friend class Mirror;

  Mirror& mirror_;
  bool changed_ = false;
  bool listed_ = false;
};

/// Collects what has changed and shows it together, a few dozen times a second: a check changes its
/// labels thousands of times a second, and showing each change would cost more than the check. One
/// thread; the mirror outlives what it shows.
class Mirror {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kInterval{25};

  /// Whether anything was marked since it was last shown.
  bool HasChanges() const { return !listed_.empty(); }
  /// When the collected changes are to be shown.
  Clock::time_point Due() const { return last_ + kInterval; }

  /// For the pump: shows the changes when their time has come.
  void SynchroniseIfDue();
  /// Shows the changes now: before a box opens or the focus moves, the windows have to be true.
  void SynchroniseAll();

 private:
  friend class Mirrored;

  /// Both are called by Mirrored: when it has changed for the first time, and when it goes.
  void List(Mirrored& item) { listed_.push_back(&item); }
  void Forget(Mirrored& item);

  std::vector<Mirrored*> listed_;
  std::vector<Mirrored*> showing_;  // what SynchroniseAll is at; entries become null as they go
  Clock::time_point last_{};
};

inline void Mirrored::MarkChanged() {
  changed_ = true;
  if (listed_) return;
  listed_ = true;
  mirror_.List(*this);
}

}  // namespace vesko
