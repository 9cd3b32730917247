#pragma once

#include <windows.h>

#include <vector>

namespace vesko {

/// What a thread waits for beside its messages. Asking a source, or waiting for its event alone,
/// costs far less than sending a message through the queue. For one thread.
class EventSources {
 public:
  class Source {
   public:
    virtual ~Source() = default;

    /// Delivers one thing, if there is any. Returns whether there was.
    virtual bool Deliver() = 0;
  };

  /// The auto-reset event is to be set when there is something to deliver. It may be set once for
  /// several things, and for something that has been delivered already. Both must live until
  /// Remove.
  void Add(Source& source, HANDLE event);
  void Remove(const Source& source);

  /// Asks every source, whether its event is set or not. Returns whether any delivered something.
  bool Deliver();

  /// Waits for the first event and lets its source deliver. Returns false when no event came in
  /// time or its source had nothing.
  bool DeliverWithin(DWORD milliseconds);

  /// The same, but a message ends the waiting too. To be called when Deliver has returned false.
  bool DeliverUnlessMessage(DWORD milliseconds);

 private:
  bool DeliverSignalled(DWORD outcome);

  std::vector<Source*> sources_;
  std::vector<HANDLE> events_;  // of the sources, in the same order
};

}  // namespace vesko
