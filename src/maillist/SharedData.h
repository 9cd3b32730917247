#pragma once

#include "base/Text.h"
#include "config/Configuration.h"
#include "maillist/colMails.h"

namespace vesko {

/// What all parts of the component work on: the check fills it, the windows show and change it.
/// Nothing in it is locked, since there is one thread.
struct SharedData {
  Configuration configuration;
  colMails mails;
  Text font_name;  // the face that every window applies when it loads; empty for the desktop's own
};

}  // namespace vesko
