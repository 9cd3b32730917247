#pragma once

#include "base/Text.h"
#include "config/Configuration.h"
#include "maillist/colMails.h"

namespace vesko {

/// The data that all parts of the component share. A check fills it, and the windows show and
/// change it. Nothing in it is locked, because everything runs on one thread.
struct SharedData {
  Configuration configuration;
  colMails mails;
  /// The font face that every window applies when it loads; empty for the desktop's own.
  Text font_name;
};

}  // namespace vesko
