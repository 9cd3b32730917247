#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "desktop/linux/toolkit/DisplayProbe.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

/// Every variable that says where windows can be shown; unset unless a test sets it.
class DisplayProbeTest : public testing::Test {
 protected:
  DisplayProbeTest() {
    for (const char* name : {"DISPLAY", "XAUTHORITY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET",
                             "QT_QPA_PLATFORM", "XDG_RUNTIME_DIR"}) {
      unsetenv(name);
    }
    setenv("QT_QPA_PLATFORM_PLUGIN_PATH", VESKO_FAKE_PLATFORMS, 1);
  }

  static bool CanShowOn(const char* platform) {
    setenv("QT_QPA_PLATFORM", platform, 1);
    return CanShowWindows();
  }
};

/// A socket that takes connections for as long as it lives; what it leaves behind takes none.
class Listener {
 public:
  explicit Listener(const std::string& path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    listen(socket_, 8);
  }
  ~Listener() { close(socket_); }

 private:
  const int socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

TEST_F(DisplayProbeTest, PlatformsAreAskedInTheOrderOfTheUser) {
  const std::pair<const char*, bool> rows[] = {{"offscreen", true},
                                               {"nonsense", false},
                                               {"nonsense;offscreen", true},
                                               {"offscreen:size=1x1", true},
                                               {";", false},
                                               {"xcb", false},
                                               {"wayland", false},
                                               {"wayland-fake;xcb", false},
                                               {"xcb;minimal", true}};
  for (const auto& [platform, can] : rows) EXPECT_EQ(CanShowOn(platform), can) << platform;
  unsetenv("QT_QPA_PLATFORM");
  EXPECT_FALSE(CanShowWindows()) << "neither Wayland nor X";
}

TEST_F(DisplayProbeTest, AWaylandServerMustTakeConnections) {
  const TempFolder folder;
  std::optional<Listener> server(std::in_place, folder / "wayland-7");
  EXPECT_FALSE(CanShowOn("wayland-fake")) << "nothing names the server";
  setenv("XDG_RUNTIME_DIR", folder.Path().c_str(), 1);
  setenv("WAYLAND_DISPLAY", "wayland-7", 1);
  EXPECT_TRUE(CanShowOn("wayland-fake"));
  EXPECT_TRUE(CanShowOn("xcb;wayland-fake"));
  setenv("XDG_RUNTIME_DIR", "/nowhere", 1);
  EXPECT_FALSE(CanShowOn("wayland-fake"));
  setenv("WAYLAND_DISPLAY", (folder / "wayland-7").c_str(), 1);
  EXPECT_TRUE(CanShowOn("wayland-fake")) << "a full path";
  server.reset();
  EXPECT_FALSE(CanShowOn("wayland-fake")) << "the server is gone, its socket is not";
  setenv("WAYLAND_DISPLAY", ("/" + std::string(200, 'x')).c_str(), 1);
  EXPECT_FALSE(CanShowOn("wayland-fake")) << "no socket has so long a path";
  setenv("WAYLAND_SOCKET", "9", 1);
  EXPECT_TRUE(CanShowOn("wayland-fake")) << "a connection that was made already";
}

/// An X server of its own; the number of its display is its own choice.
class XServer {
 public:
  XServer() { says_ = std::fscanf(output_, "%d %d", &process_, &number_); }
  ~XServer() {
    if (says_ > 0) kill(process_, SIGKILL);
    pclose(output_);
  }
  bool Runs() const { return says_ == 2; }
  std::string Display() const { return ":" + std::to_string(number_); }

 private:
  FILE* const output_ =
      popen("echo $$; exec Xvfb -displayfd 1 -noreset -nolisten tcp 2>/dev/null", "re");
  int says_ = 0, process_ = 0, number_ = 0;
};

TEST_F(DisplayProbeTest, AnXServerMustTakeConnections) {
  std::optional<XServer> server(std::in_place);
  ASSERT_TRUE(server->Runs()) << "Xvfb does not start";
  setenv("DISPLAY", server->Display().c_str(), 1);
  EXPECT_TRUE(CanShowOn("xcb"));
  EXPECT_TRUE(CanShowOn("wayland-fake;xcb"));
  unsetenv("QT_QPA_PLATFORM");
  EXPECT_TRUE(CanShowWindows());
  server.reset();
  EXPECT_FALSE(CanShowOn("xcb"));
}

}  // namespace
}  // namespace vesko
