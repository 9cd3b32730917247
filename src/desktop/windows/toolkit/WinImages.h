#pragma once

#include "desktop/windows/toolkit/WinControlPeer.h"

namespace vesko {

struct DestroyImageList {
  void operator()(HIMAGELIST images) const { ImageList_Destroy(images); }
};
using ImageListPtr = std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, DestroyImageList>;

/// The small images of the mail list, from the module's icon resources, in the size of the screen's
/// small icons. A program without them shows the
/// system's icon instead.
ImageListPtr LoadMailImages(const WinContext& context);

/// Position of an image by its key; -1 for an unknown one.
int MailImageIndex(std::string_view key);

}  // namespace vesko
