#include <VeskoEx/Host.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/PrivateMachine.h"
#include "support/TempFolder.h"

// The component as programs outside this project use it: by the headers, the library's file and the
// ProgID.

namespace {

namespace fs = std::filesystem;
namespace host = vesko::host;

constexpr char kProgId[] = "VeskoEx.cVeskoEx";

struct Outcome {
  int status;
  std::string output;
};

/// Runs a command line in the shell; the output includes the errors.
Outcome RunCommand(const std::string& command) {
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  std::string output;
  char piece[4096];
  for (size_t n; (n = fread(piece, 1, sizeof piece, pipe)) > 0;) output.append(piece, n);
  const int status = pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

/// A user with an empty home.
class StrangerTest : public testing::Test {
 protected:
  StrangerTest() {
    setenv("XDG_CONFIG_HOME", home_.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", home_.c_str(), 1);
  }

  /// All tests of a process share one private machine; each has a user of its own.
  static void SetUpTestSuite() { private_machine_ = vesko::EnterPrivateMachine(); }

  static HRESULT Call(const char* name) {
    void* library = dlopen(VESKO_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<HRESULT (*)()>(dlsym(library, name))();
  }

  /// The library that defines a symbol in this process.
  static const char* LibraryOf(const char* symbol) {
    Dl_info info = {};
    dladdr(dlsym(RTLD_DEFAULT, symbol), &info);
    return info.dli_fname;
  }

  template <typename Step>
  static HRESULT ErrorOf(Step&& step) {
    try {
      step();
      return S_OK;
    } catch (const host::Error& error) {
      return error.Code();
    }
  }

  vesko::TempFolder temporary_;
  const fs::path home_ = temporary_.Path();
  static inline bool private_machine_ = false;
};

TEST_F(StrangerTest, TheLibraryShowsItsEntryPointsAndNothingElse) {
  const Outcome symbols = RunCommand("nm -D --defined-only --format=just-symbols " VESKO_LIBRARY);
  EXPECT_EQ(symbols.output,
            "DllCanUnloadNow\nDllGetClassObject\nDllRegisterServer\nDllUnregisterServer\n");
}

TEST_F(StrangerTest, FindsCreatesAndCallsByNameAlone) {
  EXPECT_EQ(ErrorOf([] { host::Create(kProgId); }), REGDB_E_CLASSNOTREG);
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  EXPECT_EQ(Call("DllCanUnloadNow"), S_OK);
  {
    host::Object mail = host::Create("veskoex.CVESKOEX");
    EXPECT_EQ(Call("DllCanUnloadNow"), S_FALSE);
    EXPECT_TRUE(mail.Call(u"SetFont", u"Sans", 0).IsEmpty());
    EXPECT_FALSE(mail.Get(u"isbusy").ToBool());
    EXPECT_EQ(mail.Call(u"CheckTime").ToInt(), -1) << "a new user checks by hand";
    EXPECT_EQ(ErrorOf([&] { mail.Call(u"SendMail"); }), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ErrorOf([&] { mail.Call(u"SetFont", u"Sans"); }), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(ErrorOf([&] { mail.Call(u"SetFont", u"Sans", u"x"); }), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(ErrorOf([&] { mail.Call(u"CheckTime").ToText(); }), DISP_E_TYPEMISMATCH);
  }
  EXPECT_EQ(Call("DllCanUnloadNow"), S_OK);
  EXPECT_EQ(host::Create(kProgId).Call(u"CheckTime").ToInt(), -1) << "a second life";

  EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
  EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
  EXPECT_FALSE(host::FindClass(kProgId));
}

TEST_F(StrangerTest, WhatARegistrationNamesIsChecked) {
  const fs::path file = host::ClassFile(host::UserClassFolder(), kProgId);
  fs::create_directories(file.parent_path());
  const std::string id = "CLSID={63A46929-8458-4AA5-8CB6-4BD1B0873CC2}\nInprocServer32=";
  std::ofstream(file) << id << home_.string() << "/gone.so\n";
  EXPECT_EQ(ErrorOf([] { host::Create(kProgId); }), CO_E_DLLNOTFOUND);
  std::ofstream(file) << id << LibraryOf("cos") << "\n";
  EXPECT_EQ(ErrorOf([] { host::Create(kProgId); }), CO_E_ERRORINDLL);
  std::ofstream(file) << id << "libm.so.6\n";
  EXPECT_EQ(ErrorOf([] { host::Create(kProgId); }), REGDB_E_CLASSNOTREG);
  std::ofstream(file) << "CLSID={00000000-8458-4AA5-8CB6-4BD1B0873CC2}\nInprocServer32="
                      << VESKO_LIBRARY << "\n";
  EXPECT_EQ(ErrorOf([] { host::Create(kProgId); }), CLASS_E_CLASSNOTAVAILABLE);
  fs::permissions(file, fs::perms::others_write, fs::perm_options::add);
  EXPECT_EQ(RunCommand(VESKO_EXAMPLE).output,
            "VeskoEx.cVeskoEx is not registered; " + file.string() +
                " is ignored, since others can write to " + file.string() + " (0x80040154)\n");
}

TEST_F(StrangerTest, TheExampleRunsAndIsTheDocumentedOne) {
  EXPECT_EQ(
      RunCommand("grep -Fxvf " VESKO_SOURCE "/docs/hosts.md " VESKO_SOURCE "/examples/host.cpp")
          .output,
      "");
  EXPECT_EQ(RunCommand(VESKO_EXAMPLE).output, "VeskoEx.cVeskoEx is not registered (0x80040154)\n");
  ASSERT_EQ(RunCommand(VESKO_REGISTER " " VESKO_LIBRARY).status, 0);
  Outcome run = RunCommand(VESKO_EXAMPLE);
  EXPECT_EQ(run.output, "minutes between checks: -1\n");
  EXPECT_EQ(run.status, 0);

  run = RunCommand("env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM " VESKO_EXAMPLE);
  EXPECT_EQ(run.output, "windows cannot be shown here: no display (0x800705B3)\n");
  EXPECT_EQ(run.status, 1);

  EXPECT_EQ(RunCommand(VESKO_REGISTER " --unregister " VESKO_LIBRARY).status, 0);
  EXPECT_EQ(RunCommand(VESKO_EXAMPLE).status, 1);
}

TEST_F(StrangerTest, TheMachinesRegistrationServesEveryUser) {
  if (!private_machine_) GTEST_SKIP() << "the system grants no /etc of its own";
  ASSERT_EQ(RunCommand("umask 077; " VESKO_REGISTER " --machine " VESKO_LIBRARY).status, 0);
  ASSERT_TRUE(host::FindClass(kProgId));
  EXPECT_EQ(host::FindClass(kProgId)->library, VESKO_LIBRARY);
  EXPECT_FALSE(fs::exists(host::UserClassFolder()));
  const fs::path announced = host::ClassFile(host::MachineClassFolder(), kProgId);
  for (fs::path path = announced; path != "/etc/xdg"; path = path.parent_path()) {
    EXPECT_NE(fs::status(path).permissions() & fs::perms::others_read, fs::perms::none) << path;
  }
  EXPECT_EQ(fs::status("/etc/VeskoEx/registry.db").permissions(),
            fs::perms::owner_read | fs::perms::owner_write);

  EXPECT_EQ(RunCommand(VESKO_REGISTER " --machine --unregister " VESKO_LIBRARY).status, 0);
  EXPECT_FALSE(fs::exists(host::MachineClassFolder()));
}

TEST_F(StrangerTest, AnInstalledCopyServesAnotherProject) {
  EXPECT_EQ(RunCommand(VESKO_INSTALLED " && echo done").output, "done\n");
}

TEST_F(StrangerTest, TheRegisteringProgramRefusesWhatItDoesNotUnderstand) {
  const std::pair<std::string, int> rows[] = {
      {" --all", 2}, {" a.so b.so", 2}, {" ''", 2}, {" /nowhere/libVeskoEx.so", 1}, {" /", 1}};
  for (const auto& [arguments, status] : rows) {
    EXPECT_EQ(RunCommand(VESKO_REGISTER + arguments).status, status) << arguments;
  }
  EXPECT_TRUE(fs::is_empty(home_));
}

}  // namespace
