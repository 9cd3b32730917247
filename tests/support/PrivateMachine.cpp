#include "support/PrivateMachine.h"

#include <sched.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace vesko {
namespace {

namespace fs = std::filesystem;

/// Whoever is not root becomes root of a name space that holds nobody else.
bool Detach() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0) return false;
  if (user != 0) {
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
  }
  return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

}  // namespace

bool EnterPrivateMachine() {
  if (!Detach()) return false;
  char name[] = "/tmp/vesko-etc-XXXXXX";
  const fs::path scratch = mkdtemp(name);
  const bool covered = mount("tmpfs", scratch.c_str(), "tmpfs", 0, nullptr) == 0 &&
                       fs::create_directory(scratch / "upper") &&
                       fs::create_directory(scratch / "work");
  const std::string layers = "lowerdir=/etc,upperdir=" + (scratch / "upper").string() +
                             ",workdir=" + (scratch / "work").string();
  const bool own = covered && mount("overlay", "/etc", "overlay", 0, layers.c_str()) == 0;
  umount2(scratch.c_str(), MNT_DETACH);  // the overlay keeps what it needs
  std::error_code ignored;
  fs::remove(scratch, ignored);
  if (!own) return false;
  for (const char* folder : {"/etc/VeskoEx", "/etc/xdg/VeskoEx"}) {
    fs::remove_all(folder, ignored);
    if (ignored) mount("tmpfs", folder, "tmpfs", 0, nullptr);
  }
  return access("/etc/xdg", W_OK) == 0;
}

}  // namespace vesko
