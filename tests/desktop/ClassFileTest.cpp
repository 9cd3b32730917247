#include <gtest/gtest.h>

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
  EXPECT_EQ(RegisterOnLinux(registry_, RegistrationScope::kUser, folders_, "/a\nb.so"),
            SELFREG_E_CLASS);
  folder_.Write("user", "in the folder's place");
  EXPECT_EQ(RegisterOnLinux(registry_, RegistrationScope::kUser, folders_, kLibrary),
            SELFREG_E_CLASS);
  EXPECT_FALSE(registry_.HasKey(kCurrentUser, "SOFTWARE"));
}

TEST_F(ClassFileTest, BrokenFilesAndNamesAnnounceNothing) {
  const std::string id = "CLSID={63A46929-8458-4AA5-8CB6-4BD1B0873CC2}";
  const std::pair<std::string, const char*> rows[] = {
      {"# note\nfuture=1\n" + id + "\nInprocServer32=/x=y.so", "/x=y.so"},
      {"CLSID={63a46929-8458-4aa5-8cb6-4bd1b0873cc2}\nInprocServer32=/x.so", "/x.so"},
      {id + "\nInprocServer32=\n", "(none)"},
      {"InprocServer32=/x.so\n", "(none)"},
      {"CLSID=63A46929-8458-4AA5-8CB6-4BD1B0873CC2\nInprocServer32=/x.so", "(none)"},
      {id.substr(0, 40) + "\nInprocServer32=/x.so", "(none)"},
  };
  for (const auto& [content, library] : rows) {
    folder_.Write("user/veskoex.cveskoex", content);
    EXPECT_EQ(Library(folders_.user_classes, kProgId), library) << content;
  }
  EXPECT_EQ(host::ClassFile("/c", "../evil"), "");
  EXPECT_EQ(host::ClassFile("/c", ""), "");
  EXPECT_EQ(host::ClassFile("", kProgId), "");
}

}  // namespace
}  // namespace vesko
