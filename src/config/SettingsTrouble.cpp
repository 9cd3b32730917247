#include "config/SettingsTrouble.h"

#include "platform/Registry.h"

namespace vesko {
namespace {

/// Completes "The settings could not be read: ".
Text ReasonOf(int32_t status) {
  switch (status) {
    case kStatusAccessDenied:
      return u"access to them is denied.";
    case kStatusBusy:
      return u"another program is using them.";
    case kStatusDiskFull:
      return u"the disk is full.";
    case kStatusWriteFault:
      return u"the disk reports an error.";
    case kStatusRegistryCorrupt:
    case kStatusRegistryBad:
      return u"they are damaged.";
    default:
      return u"the system reports error " + Decimal(status) + u".";
  }
}

constexpr TextView kNotRead = u"The settings could not be read: ";

}  // namespace

Text TroubleOfLoad(int32_t status) {
  return Text(kNotRead) + ReasonOf(status) +
         u"\r\nDefault settings are used, and changes to them will not be kept.";
}

Text TroubleOfSave(int32_t status, int32_t load_status) {
  if (load_status != kStatusSuccess) {
    return Text(kNotRead) + ReasonOf(load_status) +
           u"\r\nThey stay as they were stored, and your changes will not be kept.";
  }
  return u"The settings could not be saved: " + ReasonOf(status) +
         u"\r\nYour changes are used until the program ends, but may be lost then.";
}

}  // namespace vesko
