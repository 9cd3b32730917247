#pragma once

#include "desktop/windows/toolkit/WinControlPeer.h"

namespace vesko {

struct DestroyImageList {
  void operator()(HIMAGELIST images) const { ImageList_Destroy(images); }
};
using ImageListPtr = std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, DestroyImageList>;

/// The small images of the mail list, by the numbers of the message states, from the module's icon
/// resources and in the size of the screen's small icons. A program without the resources gets the
/// system's icon instead.
ImageListPtr LoadMailImages(const WinContext& context);

}  // namespace vesko
