#pragma once

#include <ostream>

#include "maillist/colMails.h"

namespace vesko::demo {

/// Writes the messages as a table in UTF-8: wide characters take two columns, long texts are cut,
/// and nothing in a message can reach the terminal as a control sequence.
void PrintTable(std::ostream& out, const colMails& mails);

}  // namespace vesko::demo
