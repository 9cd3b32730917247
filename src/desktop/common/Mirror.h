#pragma once

#include <chrono>
#include <vector>

namespace vesko {

class Mirror;

/// A native thing that shows the state of one of ours.
class Mirrored {
 public:
  explicit Mirrored(Mirror& mirror) : mirror_(mirror) {}
  virtual ~Mirrored();
  Mirrored(const Mirrored&) = delete;
  Mirrored& operator=(const Mirrored&) = delete;

  /// Remembers that there is something to show. A check does this several times for each message,
  /// so it is no more than two flags.
  void MarkChanged();

  /// Shows the state now.
  void Synchronise();
  void SynchroniseIfChanged();

 protected:
  virtual void ShowState() = 0;
  Mirror& GetMirror() const { return mirror_; }

 private:
  friend class Mirror;

  Mirror& mirror_;
  bool changed_ = false;
  bool listed_ = false;
};

/// Collects what has changed and shows it together, a few dozen times a second.
class Mirror {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kInterval{25};

  bool HasChanges() const { return !listed_.empty(); }
  /// When the collected changes are to be shown.
  Clock::time_point Due() const { return last_ + kInterval; }

  void SynchroniseIfDue();
  void SynchroniseAll();

 private:
  friend class Mirrored;

  void List(Mirrored& item) { listed_.push_back(&item); }
  void Forget(Mirrored& item);

  std::vector<Mirrored*> listed_;
  std::vector<Mirrored*> showing_;
  Clock::time_point last_{};
};

inline void Mirrored::MarkChanged() {
  changed_ = true;
  if (listed_) return;
  listed_ = true;
  mirror_.List(*this);
}

}  // namespace vesko
