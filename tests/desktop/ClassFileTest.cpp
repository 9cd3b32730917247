#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "VeskoEx/Host.h"
#include "VeskoEx/VeskoEx.h"
#include "component/Registration.h"
#include "desktop/linux/registration/LinuxRegistration.h"
#include "support/MemoryRegistry.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

constexpr char kLibrary[] = "/opt/mail/libVeskoEx.so";

class ClassFileTest : public testing::Test {
 protected:
  ClassFileTest() {
    folders_.user_classes = folder_ / "user";
    folders_.machine_classes = folder_ / "etc/machine";
  }

  std::string Library(const std::string& folder, const char* prog_id) {
    const auto entry = host::ReadClassFile(host::ClassFile(folder, prog_id));
    return entry ? entry->library : "(none)";
  }

  TempFolder folder_;
  LinuxFolders folders_;
  MemoryRegistry registry_;
};

TEST_F(ClassFileTest, AnnouncesTheClassBesideTheKeys) {
  constexpr auto kMachine = RegistrationScope::kMachine;
  ASSERT_EQ(RegisterOnLinux(registry_, kMachine, folders_, kLibrary), S_OK);
  EXPECT_EQ(Library(folders_.machine_classes, "veskoEX.CveskoEx"), kLibrary);
  EXPECT_TRUE(registry_.HasKey(kLocalMachine, "SOFTWARE\\Classes\\VeskoEx.cVeskoEx"));
  EXPECT_EQ(Library(folders_.user_classes, kProgId), "(none)");

  EXPECT_EQ(UnregisterOnLinux(registry_, kMachine, folders_, "/old/libVeskoEx.so"), S_OK);
  EXPECT_EQ(Library(folders_.machine_classes, kProgId), kLibrary);
  EXPECT_EQ(UnregisterOnLinux(registry_, kMachine, folders_, kLibrary), S_OK);
  EXPECT_FALSE(std::filesystem::exists(folders_.machine_classes));
  EXPECT_FALSE(registry_.HasKey(kLocalMachine, "SOFTWARE"));
}

TEST_F(ClassFileTest, WhatCannotBeAnnouncedIsNotRegistered) {
  for (const char* library : {"/a\nb.so", "libVeskoEx.so", "", kLibrary}) {
    if (library == kLibrary) folder_.Write("user", "in the folder's place");
    EXPECT_EQ(RegisterOnLinux(registry_, RegistrationScope::kUser, folders_, library),
              SELFREG_E_CLASS);
  }
  EXPECT_FALSE(registry_.HasKey(kCurrentUser, "SOFTWARE"));
}

TEST_F(ClassFileTest, BrokenFilesAndNamesAnnounceNothing) {
  const std::string id = "CLSID={63A46929-8458-4AA5-8CB6-4BD1B0873CC2}";
  const std::pair<std::string, const char*> rows[] = {
      {"# note\nfuture=1\n" + id + "\nInprocServer32=/x=y.so", "/x=y.so"},
      {"CLSID={63a46929-8458-4aa5-8cb6-4bd1b0873cc2}\nInprocServer32=/x.so", "/x.so"},
      {id + "\nInprocServer32=\n", "(none)"},
      {id + "\nInprocServer32=libVeskoEx.so\n", "(none)"},
      {id + "\nInprocServer32=/x.so\n" + std::string(65536, '#'), "(none)"},
      {"InprocServer32=/x.so\n", "(none)"},
      {"CLSID=63A46929-8458-4AA5-8CB6-4BD1B0873CC2\nInprocServer32=/x.so", "(none)"},
      {id.substr(0, 40) + "\nInprocServer32=/x.so", "(none)"},
  };
  for (const auto& [content, library] : rows) {
    folder_.Write("user/veskoex.cveskoex", content);
    EXPECT_EQ(Library(folders_.user_classes, kProgId), library) << content;
  }
  EXPECT_EQ(host::ClassFile("/c", "../evil") + host::ClassFile("/c", ""), "");
  EXPECT_EQ(host::ClassFile("", kProgId), "");
}

TEST_F(ClassFileTest, AFileThatOthersCanChangeIsNotBelieved) {
  constexpr mode_t kSticky = 01777;
  const mode_t before = umask(0);
  ASSERT_EQ(RegisterOnLinux(registry_, RegistrationScope::kMachine, folders_, kLibrary), S_OK);
  umask(before);
  const std::string above = folder_ / "etc", folder = folders_.machine_classes;
  const std::string file = host::ClassFile(folder, kProgId);
  EXPECT_EQ(Library(folder, kProgId), kLibrary) << "what a careless user registers is safe";
  const struct {
    const std::string& path;
    mode_t mode;
    bool believed;
  } rows[] = {
      {file, 0600, true},   {file, 0664, false},    {file, 0646, false},      {folder, 0700, true},
      {folder, 0775, true}, {folder, 0757, false},  {folder, kSticky, false}, {above, 0757, false},
      {above, 0775, true},  {above, kSticky, true},
  };
  for (const auto& row : rows) {
    ASSERT_EQ(chmod(row.path.c_str(), row.mode), 0);
    EXPECT_EQ(Library(folder, kProgId), row.believed ? kLibrary : "(none)")
        << row.path << " " << std::oct << row.mode;
    ASSERT_EQ(chmod(row.path.c_str(), row.path == file ? 0644 : 0755), 0);
  }
}

TEST_F(ClassFileTest, LinksAndOwnersAreFollowedToTheTrueFile) {
  constexpr uid_t kOther = 65534;
  ASSERT_EQ(RegisterOnLinux(registry_, RegistrationScope::kUser, folders_, kLibrary), S_OK);
  const std::string file = host::ClassFile(folders_.user_classes, kProgId);
  const std::string link = folder_ / "link";
  std::filesystem::create_symlink(file, link);
  EXPECT_TRUE(host::ReadClassFile(link));
  std::filesystem::remove(link);
  std::filesystem::create_symlink("/dev/zero", link);
  EXPECT_FALSE(host::ReadClassFile(link));
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(host::ReadClassFile(folder_ / "pipe"));

  if (geteuid() != 0) return;  // only root can change a file's owner
  for (const std::string& path : {file, folders_.user_classes}) {
    ASSERT_EQ(chown(path.c_str(), kOther, 0), 0);
    EXPECT_FALSE(host::ReadClassFile(file)) << path;
    ASSERT_EQ(chown(path.c_str(), 0, 0), 0);
  }
  EXPECT_TRUE(host::ReadClassFile(file));
  ASSERT_EQ(chown(folders_.user_classes.c_str(), 0, kOther), 0);
  ASSERT_EQ(chmod(folders_.user_classes.c_str(), 0775), 0);
  EXPECT_FALSE(host::ReadClassFile(file)) << "another group can write to the folder";
}

}  // namespace
}  // namespace vesko
