#!/bin/sh
# Installs a Debian package twice, uses it as root and as another user, removes and purges it. All
# of it in a mount name space, so the machine stays as it was. Needs root.
# usage: package.sh <file.deb>
set -eu
if [ "${2:-}" != detached ]; then
  exec unshare --mount "$0" "$(realpath "$1")" detached
fi

scratch=/mnt
mount -t tmpfs tmpfs "$scratch"
for folder in usr etc var; do
  mkdir "$scratch/$folder" "$scratch/$folder.work"
  mount -t overlay overlay -o "lowerdir=/$folder,upperdir=$scratch/$folder,workdir=$scratch/$folder.work" /$folder
done

expect() { # <command> <output>
  output=$(eval "$1")
  [ "$output" = "$2" ] || { echo "$1: got '$output', not '$2'"; exit 1; }
}

unset XDG_CONFIG_HOME
export HOME="$scratch/home" QT_QPA_PLATFORM=offscreen
dpkg -i "$1"
dpkg -i "$1"
chmod 755 "$scratch"
c++ -std=c++17 /usr/share/doc/VeskoEx/examples/host.cpp $(pkg-config --cflags --libs veskoex) -o "$scratch/host"
expect "'$scratch/host'" "minutes between checks: -1"
expect "su nobody -s /bin/sh -c 'HOME=/tmp/\$\$ \"$scratch/host\"; rm -rf /tmp/\$\$'" "minutes between checks: -1"

dpkg -r veskoex
expect "'$scratch/host' 2>&1 || true" "VeskoEx.cVeskoEx is not registered (0x80040154)"
dpkg -P veskoex
expect "find /etc /usr -iname '*vesko*'" ""
echo "The package installs, runs and goes."
