#include "desktop/linux/toolkit/QtPump.h"

#include <QAbstractEventDispatcher>
#include <QBasicTimer>
#include <QObject>
#include <QTimerEvent>
#include <algorithm>

namespace vesko {
namespace {

using std::chrono::milliseconds;
using Clock = Mirror::Clock;

// Wakes the event loop at a given moment. Callers ask tens of thousands of times a second, nearly
// always for a later moment than before, so a running timer is left alone.
class Alarm : public QObject {
 public:
  void RingBy(Clock::time_point moment) {
    if (timer_.isActive() && armed_for_ <= moment + kTolerance) return;
    const auto wait = std::chrono::ceil<milliseconds>(moment - Clock::now());
    const auto count = std::clamp<milliseconds::rep>(wait.count(), 0, kLongest.count());
    armed_for_ = moment;
    timer_.start(static_cast<int>(count), Qt::PreciseTimer, this);
  }

 protected:
  void timerEvent(QTimerEvent* event) override {
    if (event->timerId() == timer_.timerId()) timer_.stop();
  }

 private:
  // Waits are whole milliseconds, so the same moment may come out a little earlier at times.
  static constexpr milliseconds kTolerance{1};
  static constexpr milliseconds kLongest{std::chrono::hours(1)};

  QBasicTimer timer_;
  Clock::time_point armed_for_{};
};

class QtPump : public Pump {
 public:
  explicit QtPump(Mirror& mirror) : mirror_(mirror) {
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     &alarm_, [this] { ShowBeforeSleep(); });
  }

  void RunPending(milliseconds longest_wait) override {
    mirror_.SynchroniseIfDue();
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    if (longest_wait <= milliseconds::zero()) {
      dispatcher->processEvents(QEventLoop::AllEvents);
      return;
    }
    // A posted event wakes the loop too, so this never goes on sleeping after a delivery.
    alarm_.RingBy(Clock::now() + std::min(longest_wait, milliseconds(std::chrono::hours(1))));
    dispatcher->processEvents(QEventLoop::WaitForMoreEvents);
  }

 private:
  // A sleep as short as a server's answer shows nothing yet; a longer one does.
  void ShowBeforeSleep() {
    mirror_.SynchroniseIfDue();
    if (mirror_.HasChanges()) alarm_.RingBy(mirror_.Due());
  }

  Mirror& mirror_;
  Alarm alarm_;
};

}  // namespace

std::unique_ptr<Pump> MakeQtPump(Mirror& mirror) { return std::make_unique<QtPump>(mirror); }

}  // namespace vesko
