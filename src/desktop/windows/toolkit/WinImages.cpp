#include "desktop/windows/toolkit/WinImages.h"

#include <iterator>

#include "maillist/MailState.h"

namespace vesko {

ImageListPtr LoadMailImages(const WinContext& context) {
  const int width = GetSystemMetrics(SM_CXSMICON);
  const int height = GetSystemMetrics(SM_CYSMICON);
  ImageListPtr images(ImageList_Create(width, height, ILC_COLOR32 | ILC_MASK,
                                       static_cast<int>(std::size(kMailStateNames)), 0));
  for (const std::string_view name : kMailStateNames) {
    const std::wstring resource(name.begin(), name.end());  // resource names have no case
    auto icon = static_cast<HICON>(
        LoadImageW(context.instance, resource.c_str(), IMAGE_ICON, width, height, 0));
    const bool missing = icon == nullptr;
    if (missing) icon = LoadIconW(nullptr, IDI_APPLICATION);
    ImageList_ReplaceIcon(images.get(), -1, icon);
    if (!missing) DestroyIcon(icon);
  }
  return images;
}

}  // namespace vesko
