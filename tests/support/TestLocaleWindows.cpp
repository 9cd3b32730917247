#include <algorithm>

#include "desktop/windows/WindowsDesktop.h"
#include "support/TestLocale.h"

namespace vesko {

std::unique_ptr<Locale> MakeTestLocale(int code_page, const std::string& name) {
  std::wstring own_name(name.begin(), name.end());
  std::replace(own_name.begin(), own_name.end(), L'_', L'-');
  return MakeWinLocale(code_page, own_name);
}

}  // namespace vesko
