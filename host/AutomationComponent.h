#pragma once

#include <memory>

#include "MailComponent.h"

namespace vesko_host {

/// Creates the registered component by its ProgID and calls it by name. Raises std::runtime_error
/// with words for a person where it is not registered or cannot be created. A failed call of an
/// operation does nothing; IsBusy and CheckTime then answer false and -1.
std::unique_ptr<MailComponent> LoadComponent();

}  // namespace vesko_host
