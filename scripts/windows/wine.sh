# Helpers for running Windows programs under Wine, to be sourced. Everything happens in a private
# prefix and on a display of its own, so neither the user's Wine nor the user's screen is touched.
# Expects the project's folder in $root.

# Debian keeps the 64-bit loader off the path.
find_wine() {
  local candidate
  for candidate in wine64 /usr/lib/wine/wine64 /usr/lib/wine-stable/wine64 wine; do
    if command -v "$candidate" >/dev/null; then
      echo "$candidate"
      return
    fi
  done
  echo "Wine is missing: scripts/install-packages.sh windows" >&2
  return 1
}

# use_prefix <folder>: makes it a fresh Wine prefix unless it is one, and selects it.
use_prefix() {
  export WINEPREFIX=$1 WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
  wine=$(find_wine)
  wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)
  if [[ -f $WINEPREFIX/system.reg ]]; then return; fi
  mkdir -p "$WINEPREFIX"
  "$wine" wineboot -i >/dev/null 2>&1
  "$wineserver" -w
}

# use_display: starts a display without a screen, and a window manager, without which Wine's windows
# get no captions and no focus. leave_display ends both.
use_display() {
  local number_file
  number_file=$(mktemp)
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$number_file" >/dev/null 2>&1 &
  display_pid=$!
  until [[ -s $number_file ]]; do
    kill -0 "$display_pid" || return 1
    sleep 0.05
  done
  DISPLAY=:$(<"$number_file")
  export DISPLAY
  rm "$number_file"
  openbox >/dev/null 2>&1 &
  manager_pid=$!
}

leave_display() {
  [[ -n ${manager_pid:-} ]] && kill "$manager_pid" 2>/dev/null
  [[ -n ${display_pid:-} ]] && kill "$display_pid" 2>/dev/null
  return 0
}

# leave_prefix: ends what still runs in the prefix.
leave_prefix() {
  "$wineserver" -k || true
  "$wineserver" -w
}

# run <program> <argument>...: a Windows program, its output with this system's line ends.
run() {
  "$wine" "$@" | tr -d '\r'
  return "${PIPESTATUS[0]}"
}

# native_build [<folder>]: a build folder of this system's own that has the sample server.
native_build() {
  local folder
  for folder in ${1:+"$1"} "$root"/build/{release,asan,dev}; do
    if [[ -x $folder/tools/demo/vesko-demo-server ]]; then
      echo "$folder"
      return
    fi
  done
  echo "The sample server is missing: cmake --preset release && cmake --build --preset release" >&2
  return 1
}

# start_sample_server <native build folder>: sets server_port. It ends with the script, too.
start_sample_server() {
  coproc SERVER { exec "$1/tools/demo/vesko-demo-server"; }
  read -r server_port <&"${SERVER[0]}"
}

stop_sample_server() {
  [[ -n ${SERVER_PID:-} ]] && kill "$SERVER_PID" 2>/dev/null
  return 0
}
