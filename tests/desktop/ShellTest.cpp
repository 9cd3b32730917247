#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "base/RunTimeError.h"
#include "desktop/ShellFixture.h"

namespace vesko {
namespace {

namespace fs = std::filesystem;

class ShellTest : public testing::Test {
 protected:
  Text Path(std::string_view name) const { return fs::path(folder_ / name).u16string(); }

  TempFolder folder_;
  std::unique_ptr<Shell> shell_ = MakeTestShell(folder_);
};

TEST_F(ShellTest, FileAttributes) {
  folder_.Write("file", "x");
  EXPECT_EQ(shell_->FileAttributes(Path("")).value_or(0) & kAttributeDirectory, 16u);
  EXPECT_EQ(shell_->FileAttributes(Path("file")).value_or(16) & kAttributeDirectory, 0u);
  for (const Text& path : {Text(), Path("missing"), Path("file/x"), Path("file") + u'\0',
                           Text(10'000, u'x'), Text(1, u'\xD800')}) {
    EXPECT_FALSE(shell_->FileAttributes(path));
  }
}

TEST_F(ShellTest, OwnFileIsTheOneThatHoldsTheCode) {
  EXPECT_EQ(shell_->OwnFolder(), OwnProgram().parent_path().u16string());
  EXPECT_EQ(shell_->OwnName(), OwnProgram().stem().u16string());
}

TEST_F(ShellTest, StartsAProgramWithoutArguments) {
  const std::string name = "my; client & co.exe";
  fs::copy_file(OwnProgram().parent_path() / VESKO_WITNESS, folder_ / name);
  shell_->Start(Path(name));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!fs::exists(folder_ / (name + ".seen")) && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_TRUE(fs::exists(folder_ / (name + ".seen")));
}

TEST_F(ShellTest, RefusesWhatCannotBeStarted) {
  folder_.Write("document", "x");
  for (const Text& program : {Path("missing"), Path("document"), Path(""), Text()}) {
    try {
      shell_->Start(program);
      ADD_FAILURE() << testing::PrintToString(program);
    } catch (const RunTimeError& error) {
      EXPECT_EQ(error.Number(), 53);
    }
  }
}

}  // namespace
}  // namespace vesko
