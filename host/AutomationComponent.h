#pragma once

#include <memory>

#include "MailComponent.h"

namespace vesko_host {

/// Creates the registered component by its ProgID and calls it by name. Throws vesko::host::Error,
/// with words for a person, where it is not registered or cannot be created. A call that fails is
/// logged and has no effect; IsBusy then answers false, and CheckTime -1.
std::unique_ptr<MailComponent> LoadComponent();

}  // namespace vesko_host
