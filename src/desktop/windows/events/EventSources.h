#pragma once

#include <windows.h>

#include <vector>

namespace vesko {

/// What a thread waits for beside its messages. To ask a source, or to wait for its event alone,
/// costs far less than a message does on its way into the queue and out of it. One thread.
class EventSources {
 public:
  class Source {
   public:
    virtual ~Source() = default;

    /// Delivers one thing that is there. False when there is nothing.
    virtual bool Deliver() = 0;
  };

  /// The event, which resets itself, is to be set when something comes to be delivered. It may be
  /// set once for several things, and for what has been delivered already.
  void Add(Source& source, HANDLE event);
  void Remove(const Source& source);

  /// Asks every source, its event set or not. False when none had anything.
  bool Deliver();

  /// Waits for the first event and lets its source deliver. False when there was no event in time
  /// or nothing behind it.
  bool DeliverWithin(DWORD milliseconds);

  /// The same, but a message ends the waiting as well. To be called when Deliver had nothing.
  bool DeliverUnlessMessage(DWORD milliseconds);

 private:
  bool DeliverSignalled(DWORD outcome);

  std::vector<Source*> sources_;
  std::vector<HANDLE> events_;  // theirs
};

}  // namespace vesko
