#include "message/mmFile.h"

namespace vesko {

Text FileNameOf(TextView path) {
  size_t separator = path.rfind(u'\\');
  if (separator == TextView::npos) separator = path.rfind(u'/');
  return Text(separator == TextView::npos ? path : path.substr(separator + 1));
}

bool FileExists(Shell& shell, const Text& path) {
  std::optional<uint32_t> attributes = shell.FileAttributes(path);
  return attributes && (*attributes & kAttributeDirectory) == 0;
}

}  // namespace vesko
