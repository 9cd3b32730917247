#!/usr/bin/env bash
# Installs the Debian packages that are missing for the purposes named: build, demo, test, package,
# windows.
# Does nothing, and needs no rights, where all of them are there.
set -euo pipefail

build=(cmake g++ libbenchmark-dev libgl-dev libicu-dev libsqlite3-dev ninja-build pkg-config
  qt6-base-dev qt6-multimedia-dev)
# A bare machine has no font for the sample messages' Korean and Japanese names.
demo=(fonts-dejavu-core fonts-noto-cjk)
# The tests run against a real POP3 server and play a sound to a sound server of their own.
test=(dovecot-pop3d fonts-dejavu-core fonts-noto-cjk libgmock-dev libgtest-dev libssl-dev openbox openssl
  pulseaudio pulseaudio-utils x11-utils xauth xdotool xvfb)
package=(appstream desktop-file-utils dpkg-dev file man-db)
# The library for Windows is cross-built, and run under Wine.
windows=(cmake fonts-dejavu-core fonts-noto-cjk g++-mingw-w64-i686 g++-mingw-w64-x86-64 googletest
  mingw-w64-tools ninja-build openbox wine wine64 xdotool xvfb)

die() {
  echo "$*" >&2
  exit 1
}

installed() {
  [[ $(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

wanted() {
  local purpose
  for purpose in "$@"; do
    case $purpose in
      build) printf '%s\n' "${build[@]}" ;;
      demo) printf '%s\n' "${demo[@]}" ;;
      test) printf '%s\n' "${test[@]}" ;;
      package) printf '%s\n' "${package[@]}" ;;
      windows) printf '%s\n' "${windows[@]}" ;;
      *) die "install-packages.sh: '$purpose' is none of build, demo, test, package, windows" ;;
    esac
  done
}

as_root() {
  if [[ $EUID -eq 0 ]]; then "$@"; else sudo "$@"; fi
}

# A mail server's package starts its service when it is installed, and again at every start of the
# machine. The tests run private instances of their own and want neither; an administrator's own
# policy, where there is one, is left alone.
policy=/usr/sbin/policy-rc.d
made_policy=no
forbid_services() {
  [[ -e $policy ]] && return
  made_policy=yes
  printf '#!/bin/sh\ncase "$*" in *dovecot*) exit 101 ;; esac\nexit 0\n' | as_root tee "$policy" >/dev/null
  as_root chmod 755 "$policy"
}
allow_services() {
  if [[ $made_policy == yes ]]; then as_root rm -f "$policy"; fi
}
disable_at_boot() {
  if command -v systemctl >/dev/null; then
    as_root systemctl disable --quiet dovecot.service dovecot.socket 2>/dev/null || true
  fi
}

[[ $# -gt 0 ]] || die "usage: install-packages.sh build|demo|test|package|windows..."
command -v dpkg-query >/dev/null || die "This needs Debian 12 or a system like it: there is no dpkg."

names=$(wanted "$@" | sort -u)
missing=()
for name in $names; do
  installed "$name" || missing+=("$name")
done
[[ ${#missing[@]} -gt 0 ]] || exit 0

echo "Installing: ${missing[*]}"
if [[ $EUID -ne 0 ]] && ! command -v sudo >/dev/null; then
  die "These packages are missing and there is neither root nor sudo to install them.
As root: apt-get install ${missing[*]}"
fi

apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300)
as_root "${apt[@]}" update
if [[ " ${missing[*]} " == *" dovecot-"* ]]; then
  trap allow_services EXIT
  forbid_services
fi
as_root "${apt[@]}" install --no-install-recommends "${missing[@]}"
if [[ " ${missing[*]} " == *" dovecot-"* ]]; then disable_at_boot; fi
