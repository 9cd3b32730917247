#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

namespace vesko {

/// A new, empty folder of one test, its owner's alone, removed with all that is in it.
class TempFolder {
 public:
  TempFolder() {
    std::random_device random;
    do {
      path_ =
          (std::filesystem::temp_directory_path() / "vesko-").string() + std::to_string(random());
    } while (!std::filesystem::create_directory(path_));
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& Path() const { return path_; }
  std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }

  /// Writes a file, with the folders above it.
  void Write(std::string_view name, std::string_view content) const {
    std::filesystem::path path = *this / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
  }

  std::string Read(std::string_view name) const {
    std::ifstream file(*this / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string path_;
};

}  // namespace vesko
