#pragma once

#include <cstdint>
#include <memory>

#include "base/Text.h"
#include "component/Desktop.h"
#include "config/mRegistry.h"
#include "maillist/SharedData.h"

namespace vesko {

class fCheckMail;
class fConfig;
class fListMail;

/// What all objects of the component share: settings, fetched messages, busy flag, font, windows.
/// It lives from the first object's creation to the last one's end. Everything is used on the
/// user-interface thread.
class ComponentState {
 public:
  /// The desktop must outlive the state.
  explicit ComponentState(Desktop& desktop);
  ~ComponentState();

  /// What the machine offers; both live as long as the desktop.
  const Services& GetServices() const { return desktop_.GetServices(); }
  Toolkit& GetToolkit() { return desktop_.GetToolkit(); }

  SharedData data;
  bool busy = false;        // an operation that shows windows is under way
  int32_t font_handle = 0;  // kept for the host; nothing reads it

  /// Loads and saves data.configuration.
  mRegistry& Store() { return store_; }

  /// Whether the user knows already that the stored settings could not be read.
  bool trouble_told = false;

  /// The windows. Each is created on first use and is kept: what it remembers outlives its
  /// showings.
  fCheckMail& CheckWindow();
  fListMail& ListWindow();
  fConfig& ConfigWindow();

  /// Unloads every window that is still loaded. A window that fails to unload is passed over.
  void UnloadWindows();

 private:
  Desktop& desktop_;
  mRegistry store_;
  std::unique_ptr<fCheckMail> check_window_;
  std::unique_ptr<fListMail> list_window_;
  std::unique_ptr<fConfig> config_window_;
};

}  // namespace vesko
