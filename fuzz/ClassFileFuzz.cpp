// Files that announce a class, as a host reads them, and the names that a host asks for.

#include "Fuzz.h"
#include "VeskoEx/Host.h"
#include "support/TempFolder.h"

namespace vesko::fuzz {
namespace {

void Run(Input input) {
  static const TempFolder folder;
  const std::string name = input.Until('\n');
  const std::string path = host::ClassFile(folder.Path(), name);
  if (!path.empty()) {
    const std::string file = path.substr(folder.Path().size() + 1);
    Expect(path.starts_with(folder.Path() + "/") && file.find('/') == std::string::npos,
           "a name does not lead out of its folder");
  }

  const std::string content = input.Rest();
  folder.Write("class", content);
  const auto entry = host::ReadClassFile(folder / "class");
  if (!entry) return;
  Expect(content.find(entry->library) != std::string::npos, "the library is the file's");
  Expect(!entry->library.empty() && entry->library.find('\n') == std::string::npos,
         "a library has a name of one line");
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vesko::fuzz::Run({data, size});
  return 0;
}
