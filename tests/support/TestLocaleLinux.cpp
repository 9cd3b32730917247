#include "desktop/linux/LinuxDesktop.h"
#include "support/TestLocale.h"

namespace vesko {

std::unique_ptr<Locale> MakeTestLocale(int code_page, const std::string& name) {
  return MakeIcuLocale(code_page, name);
}

}  // namespace vesko
