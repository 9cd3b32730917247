#pragma once

#include <cstdint>

#include "base/Text.h"
#include "component/ComponentState.h"

namespace vesko {

/// The public automation object. Every operation returns when its window has closed and reports its
/// failures to the user, never to the host. The host must not start an operation while IsBusy.
class cVeskoEx {
 public:
  /// Loads the configuration; the first time for a user that seeds the registry. Where it cannot be
  /// read, the object works with the defaults, and the next operation that shows windows says so
  /// first, once. The state must outlive the object.
  explicit cVeskoEx(ComponentState& state);

  /// Empties the fetched messages, saves the configuration and unloads all windows. A save that
  /// fails is not reported.
  ~cVeskoEx();
  cVeskoEx(const cVeskoEx&) = delete;
  cVeskoEx& operator=(const cVeskoEx&) = delete;

  /// True while Configure, CheckMail or ViewMail runs.
  bool IsBusy() const { return state_.busy; }

  /// Face name for windows loaded from now on, and the font's handle, which is only kept.
  void SetFont(const Text& sFontName, int32_t hFont);

  /// Shows the settings, their first page in front.
  void Configure();

  /// Minutes between automatic checks; -1: do not check automatically.
  int32_t CheckTime() const;

  /// Checks every account while the progress window is shown, and then shows the list where there
  /// is unread mail. Without an account it offers the settings first.
  void CheckMail();

  /// Shows the fetched messages, or offers a check where there are none.
  void ViewMail();

 private:
  void TellTrouble();
  void OfferConfiguration();
  void ReportResult();
  void UnloadWindows();

  ComponentState& state_;
  bool unloading_windows_ = false;  // a window's unloading may come back here
};

}  // namespace vesko
