#pragma once

#include <windows.h>

#include <string>

#include "base/Text.h"

namespace vesko {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline std::wstring ToWide(TextView text) {
  return {reinterpret_cast<const wchar_t*>(text.data()), text.size()};
}

/// Text of a native window.
Text WindowText(HWND window);
/// True where it was another one.
bool SetTextIfOther(HWND window, const std::wstring& text);

/// Size of a text in a font, in device pixels; a width of 0 does not wrap. "&" marks a mnemonic
/// unless `literal`.
SIZE Measure(HFONT font, const std::wstring& text, int width, bool literal);

}  // namespace vesko
