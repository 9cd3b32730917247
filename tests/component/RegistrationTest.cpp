#include <gtest/gtest.h>

#include <tuple>

#include "VeskoEx/VeskoEx.h"
#include "component/Registration.h"
#include "support/MemoryRegistry.h"

namespace vesko {
namespace {

constexpr char kLibrary[] = "/opt/mail/libVeskoEx.so";
constexpr char kClass[] = "SOFTWARE\\Classes\\CLSID\\{63A46929-8458-4AA5-8CB6-4BD1B0873CC2}";
constexpr char kTypeLibrary[] =
    "SOFTWARE\\Classes\\TypeLib\\{247CCFDB-4E5B-4023-9A6D-E871C6D2BA4B}";

TEST(RegistrationTest, WritesTheKeysThatHostsLookFor) {
  MemoryRegistry registry;
  for (int times = 0; times < 2; ++times) {
    ASSERT_EQ(RegisterServer(registry, kCurrentUser, kLibrary), S_OK);
    const std::tuple<std::string, const char*, std::string> rows[] = {
        {"SOFTWARE\\Classes\\VeskoEx.cVeskoEx\\CLSID", "", std::string(kClass).substr(23)},
        {kClass, "", "VeskoEx.cVeskoEx"},
        {std::string(kClass) + "\\ProgID", "", "VeskoEx.cVeskoEx"},
        {std::string(kClass) + "\\InprocServer32", "", kLibrary},
        {std::string(kClass) + "\\InprocServer32", "ThreadingModel", "Apartment"},
        {std::string(kClass) + "\\TypeLib", "", std::string(kTypeLibrary).substr(25)},
        {std::string(kTypeLibrary) + "\\1.0", "", "Vesko ActiveX Dll 1.0"},
    };
    for (const auto& [path, name, text] : rows) {
      EXPECT_EQ(registry.Show(kCurrentUser, path, name), text) << path;
      EXPECT_FALSE(registry.HasKey(kLocalMachine, path));
    }
  }
  EXPECT_EQ(registry.WritesOutsideTransactions(), 0);
}

TEST(RegistrationTest, RemovesEverythingAndNothingElse) {
  MemoryRegistry registry;
  registry.PutText(kLocalMachine, std::string(kClass) + "\\Extra\\Deep", "x", "left by a tool");
  registry.PutText(kLocalMachine, "SOFTWARE\\Classes\\CLSID\\{Other}", "", "another class");
  registry.PutText(kLocalMachine, "SOFTWARE\\Classes\\TypeLib", "", "a value of its own");
  ASSERT_EQ(RegisterServer(registry, kLocalMachine, kLibrary), S_OK);
  for (int times = 0; times < 2; ++times) {
    EXPECT_EQ(UnregisterServer(registry, kLocalMachine, kLibrary), S_OK);
  }
  EXPECT_FALSE(registry.HasKey(kLocalMachine, kClass));
  EXPECT_TRUE(registry.HasKey(kLocalMachine, "SOFTWARE\\Classes\\CLSID\\{Other}"));
  EXPECT_TRUE(registry.HasKey(kLocalMachine, "SOFTWARE\\Classes\\TypeLib"));
}

TEST(RegistrationTest, AnotherCopysRegistrationIsTakenOverButNotRemoved) {
  MemoryRegistry registry;
  ASSERT_EQ(RegisterServer(registry, kCurrentUser, "/old/libVeskoEx.so"), S_OK);
  ASSERT_EQ(RegisterServer(registry, kCurrentUser, kLibrary), S_OK);
  EXPECT_EQ(UnregisterServer(registry, kCurrentUser, "/old/libVeskoEx.so"), S_OK);
  EXPECT_EQ(registry.Show(kCurrentUser, std::string(kClass) + "\\InprocServer32", ""), kLibrary);
  EXPECT_TRUE(registry.HasKey(kCurrentUser, "SOFTWARE\\Classes\\VeskoEx.cVeskoEx"));
}

TEST(RegistrationTest, WhatTwoPlatformsShareStaysForTheOther) {
  const std::string files = std::string(kTypeLibrary) + "\\1.0\\0";
  MemoryRegistry registry;
  ASSERT_EQ(RegisterServer(registry, kLocalMachine, "C:\\64\\VeskoEx.dll", "win64"), S_OK);
  ASSERT_EQ(RegisterServer(registry, kLocalMachine, "C:\\32\\VeskoEx.dll", "win32"), S_OK);
  EXPECT_EQ(registry.Show(kLocalMachine, files + "\\win64", ""), "C:\\64\\VeskoEx.dll");

  EXPECT_EQ(UnregisterServer(registry, kLocalMachine, "C:\\32\\VeskoEx.dll", "win32"), S_OK);
  EXPECT_FALSE(registry.HasKey(kLocalMachine, files + "\\win32"));
  EXPECT_TRUE(registry.HasKey(kLocalMachine, files + "\\win64"));
  EXPECT_TRUE(registry.HasKey(kLocalMachine, "SOFTWARE\\Classes\\VeskoEx.cVeskoEx"));

  EXPECT_EQ(UnregisterServer(registry, kLocalMachine, "C:\\64\\VeskoEx.dll", "win64"), S_OK);
  EXPECT_FALSE(registry.HasKey(kLocalMachine, "SOFTWARE"));
}

TEST(RegistrationTest, AHiveThatFailsIsToldAndLeftClean) {
  for (int n = 1; n <= 17; ++n) {
    for (RegistryCall call : {RegistryCall::kCreateKey, RegistryCall::kSetValue}) {
      MemoryRegistry registry;
      registry.Fail(call, kStatusWriteFault, n);
      EXPECT_EQ(RegisterServer(registry, kCurrentUser, kLibrary, "win64"), SELFREG_E_CLASS);
      EXPECT_FALSE(registry.HasKey(kCurrentUser, "SOFTWARE\\Classes\\CLSID")) << n;
    }
  }
  MemoryRegistry registry;
  ASSERT_EQ(RegisterServer(registry, kCurrentUser, kLibrary), S_OK);
  for (RegistryCall call : {RegistryCall::kOpenKey, RegistryCall::kDeleteKey}) {
    registry.Fail(call, kStatusAccessDenied);
    EXPECT_EQ(UnregisterServer(registry, kCurrentUser, kLibrary), SELFREG_E_CLASS);
    registry.HealAll();
  }
  EXPECT_EQ(UnregisterServer(registry, kCurrentUser, kLibrary), S_OK);
}

}  // namespace
}  // namespace vesko
