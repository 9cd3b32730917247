#pragma once

#include <windows.h>

#include <string>

#include "base/Text.h"

namespace vesko {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

/// The same code units for the system's calls.
inline std::wstring ToWide(TextView text) {
  return {reinterpret_cast<const wchar_t*>(text.data()), text.size()};
}

/// The text of a native window, which may be another program's doing.
Text WindowText(HWND window);
/// Spares the window a repaint where it has the text already. True where it had another.
bool SetTextIfOther(HWND window, const std::wstring& text);

/// Size of a text in a font, in device pixels; a width of 0 does not wrap. "&" marks a mnemonic
/// unless `literal`.
SIZE Measure(HFONT font, const std::wstring& text, int width, bool literal);

}  // namespace vesko
