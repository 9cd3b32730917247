# Helpers for running Windows programs under Wine, to be sourced. Everything happens in a private
# prefix and on a display of its own, so neither the user's Wine nor the user's screen is touched.
# Expects the project's folder in $root. A script that starts something here says "trap leave EXIT",
# which then holds for failures and interruptions as well.

# Debian keeps the 64-bit loader off the path.
find_wine() {
  local candidate
  for candidate in wine64 /usr/lib/wine/wine64 /usr/lib/wine-stable/wine64 wine; do
    if command -v "$candidate"; then return; fi
  done
  echo "Wine is missing: scripts/install-packages.sh windows" >&2
  return 1
}

# runs_32_bit: whether there is a 32-bit loader beside the other, and the machine can start it.
runs_32_bit() {
  local loader
  loader=$(find_wine) && [[ $loader == *64 ]] && limited "${loader%64}" --version >/dev/null 2>&1
}

# limited <command>...: ends it after $limit seconds; 0 is no limit.
limited() {
  timeout --foreground --kill-after=5 "${limit:-100}" "$@"
}

# use_prefix <folder> [fresh]: selects the Wine prefix, which it makes unless it is one; with "fresh"
# in any case.
use_prefix() {
  export WINEPREFIX=$1 WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
  export TMPDIR=$1 # the server's socket is then removed with the prefix
  wine=$(find_wine)
  wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)
  if [[ ${2:-} != fresh && -f $WINEPREFIX/complete ]]; then return; fi
  if [[ -d $WINEPREFIX ]]; then leave_prefix; fi
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  if ! limited "$wine" wineboot -i >/dev/null 2>&1 || ! limited "$wineserver" -w; then
    echo "$WINEPREFIX does not become a Wine prefix." >&2
    return 1
  fi
  touch "$WINEPREFIX/complete"
}

# start_wine: starts a server that stays, as programs that start while one ends do not reach it, and
# Wine's services, which keep the output of the program that starts them open.
start_wine() {
  "$wineserver" --persistent=600 >/dev/null 2>&1 </dev/null || true
  limited "$wine" cmd /c ver >/dev/null 2>&1 </dev/null
}

# leave_prefix: ends what still runs in the prefix.
leave_prefix() {
  limited "$wineserver" -k || true
  limited "$wineserver" -w || true
}

# has_display: whether $DISPLAY is one that answers.
has_display() {
  [[ -n ${DISPLAY:-} ]] && limit=10 limited xdotool getdisplaygeometry >/dev/null 2>&1
}

# use_display: starts a display without a screen, and a window manager, without which Wine's windows
# get no captions and no focus.
use_display() {
  local number
  exec {number}< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp 2>/dev/null)
  display_pid=$!
  read -r -t 20 DISPLAY <&"$number" || return
  exec {number}<&-
  export DISPLAY=:$DISPLAY
  openbox >/dev/null 2>&1 &
  manager_pid=$!
}

leave_display() {
  kill ${manager_pid:-} ${display_pid:-} 2>/dev/null || true
}

# leave: ends all that was started here.
leave() {
  if [[ -n ${wineserver:-} ]]; then leave_prefix; fi
  leave_display
  stop_sample_server
}

# run <program> <argument>...: a Windows program, its output with this system's line ends.
run() {
  limited "$wine" "$@" | tr -d '\r'
  return "${PIPESTATUS[0]}"
}

# native_build [<folder>]: a build folder of this system's own that has the sample server.
native_build() {
  local folder
  for folder in ${1:+"$1"} "$root"/build/{asan,release,dev}; do
    if [[ -x $folder/tools/demo/vesko-demo-server ]]; then
      echo "$folder"
      return
    fi
  done
  echo "The sample server is missing: cmake --preset release && cmake --build --preset release" >&2
  return 1
}

# start_sample_server <native build folder> [<milliseconds before each answer>]: sets server_port.
# It ends with the script, too.
start_sample_server() {
  coproc SERVER { exec "$1/tools/demo/vesko-demo-server" ${2:+"$2"}; }
  read -r -t 20 server_port <&"${SERVER[0]}"
}

stop_sample_server() {
  kill ${SERVER_PID:-} 2>/dev/null || true
}
