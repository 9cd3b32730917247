#include "desktop/windows/toolkit/WinImages.h"

#include <string_view>

namespace vesko {

namespace {

struct MailImage {
  std::string_view key;
  const wchar_t* resource;
};
constexpr MailImage kImages[] = {
    {"Mail", L"MAIL"}, {"MailRead", L"MAILREAD"}, {"Spam", L"SPAM"}, {"SpamRead", L"SPAMREAD"}};

}  // namespace

ImageListPtr LoadMailImages(const WinContext& context) {
  const int width = GetSystemMetrics(SM_CXSMICON);
  const int height = GetSystemMetrics(SM_CYSMICON);
  ImageListPtr images(ImageList_Create(width, height, ILC_COLOR32 | ILC_MASK,
                                       static_cast<int>(std::size(kImages)), 0));
  for (const MailImage& image : kImages) {
    auto icon = static_cast<HICON>(
        LoadImageW(context.instance, image.resource, IMAGE_ICON, width, height, 0));
    const bool missing = icon == nullptr;
    if (missing) icon = LoadIconW(nullptr, IDI_APPLICATION);
    ImageList_ReplaceIcon(images.get(), -1, icon);
    if (!missing) DestroyIcon(icon);
  }
  return images;
}

int MailImageIndex(std::string_view key) {
  for (size_t i = 0; i < std::size(kImages); ++i) {
    if (kImages[i].key == key) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace vesko
