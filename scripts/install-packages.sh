#!/usr/bin/env bash
# Installs the Debian packages that are missing for the purposes named: build, demo, test, package,
# lint, fuzz, windows, windows32. Does nothing, and needs no rights, where all of them are there.
# windows32 is for running 32-bit programs under Wine: it adds an architecture to the machine, and
# does without where that cannot be had.
set -euo pipefail

build=(cmake g++ libgl-dev libglib2.0-dev libicu-dev libsndfile1-dev libsqlite3-dev libssl-dev
  ninja-build pkg-config qt6-base-dev qt6-multimedia-dev)
# A bare machine has no font for the sample messages' Korean and Japanese names.
demo=(fonts-dejavu-core fonts-noto-cjk)
# The tests run against a real POP3 server and play a sound to a sound server of their own.
test=(dovecot-pop3d fonts-dejavu-core fonts-noto-cjk libgmock-dev libgtest-dev openbox openssl
  pulseaudio pulseaudio-utils x11-utils xauth xdotool xvfb)
package=(appstream desktop-file-utils dpkg-dev file man-db)
lint=(clang-format clang-tidy)
# With the fuzzer's library, and what gives names to the addresses of a stack.
fuzz=(clang libclang-rt-14-dev llvm)
# The library for Windows is cross-built, and run under Wine.
windows=(cmake fonts-dejavu-core fonts-noto-cjk g++-mingw-w64-i686 g++-mingw-w64-x86-64 googletest
  imagemagick mingw-w64-tools ninja-build openbox wine wine64 xdotool xvfb)

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
      lint) printf '%s\n' "${lint[@]}" ;;
      fuzz) printf '%s\n' "${fuzz[@]}" ;;
      windows) printf '%s\n' "${windows[@]}" ;;
      *) die "install-packages.sh: '$purpose' is no purpose that it knows." ;;
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

may_install() {
  [[ $EUID -eq 0 ]] || command -v sudo >/dev/null
}

apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300)

install_missing() { # <purpose>...
  local names missing=() name
  names=$(wanted "$@" | sort -u)
  for name in $names; do
    installed "$name" || missing+=("$name")
  done
  [[ ${#missing[@]} -gt 0 ]] || return 0

  echo "Installing: ${missing[*]}"
  may_install || die "These packages are missing and there is neither root nor sudo to install them.
As root: apt-get install ${missing[*]}"
  as_root "${apt[@]}" update
  if [[ " ${missing[*]} " == *" dovecot-"* ]]; then
    trap allow_services EXIT
    forbid_services
  fi
  as_root "${apt[@]}" install --no-install-recommends "${missing[@]}"
  if [[ " ${missing[*]} " == *" dovecot-"* ]]; then disable_at_boot; fi
}

# Nothing may go for it: 64-bit Wine least of all.
wine32=(--no-install-recommends --no-remove wine32:i386)

# Tried with package lists of its own, so the machine stays as it is where the answer is no.
can_have_i386() {
  local lists try
  lists=$(mktemp -d)
  try=(apt-get -q -o "Dir::State::Lists=$lists" -o "Dir::Cache=$lists"
    -o APT::Architectures::=amd64 -o APT::Architectures::=i386)
  (
    trap 'rm -rf "$lists"' EXIT
    "${try[@]}" update && "${try[@]}" -s install "${wine32[@]}"
  )
}

add_wine32() {
  local had_i386=no
  [[ $(dpkg --print-architecture) == amd64 ]] && may_install && can_have_i386 >/dev/null 2>&1 ||
    return 1
  if dpkg --print-foreign-architectures | grep -qx i386; then had_i386=yes; fi
  echo "Adding the architecture i386 for 32-bit Wine"
  if [[ $had_i386 == no ]]; then as_root dpkg --add-architecture i386; fi
  as_root "${apt[@]}" update && as_root "${apt[@]}" install "${wine32[@]}" && return
  if [[ $had_i386 == no ]]; then
    as_root dpkg --remove-architecture i386 && as_root "${apt[@]}" update || true
  fi
  return 1
}

[[ $# -gt 0 ]] || die "usage: install-packages.sh build|demo|test|package|lint|fuzz|windows|windows32..."
command -v dpkg-query >/dev/null || die "This needs Debian 12 or a system like it: there is no dpkg."

purposes=()
for purpose in "$@"; do
  if [[ $purpose != windows32 ]]; then purposes+=("$purpose"); fi
done
install_missing "${purposes[@]}"
if [[ " $* " == *" windows32 "* ]] && ! installed wine32:i386; then
  add_wine32 || echo "There is no 32-bit Wine here: the 32-bit Windows library is only looked at."
fi
