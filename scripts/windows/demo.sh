#!/usr/bin/env bash
# Installs what is missing, builds VeskoEx.dll and lets a script check the sample mail with it under
# Wine. On a display the windows are the user's to close; without one a program presses the buttons.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$root/scripts/windows/wine.sh"
build=$root/build/windows

"$root/scripts/install-packages.sh" build demo windows
cd "$root"
cmake --log-level=WARNING --preset release
cmake --build --preset release --target vesko-demo-server
cmake --log-level=WARNING --preset windows
cmake --build --preset windows

use_prefix "$build/wine-demo"
start_sample_server build/release
trap 'leave_prefix; leave_display; stop_sample_server' EXIT
# Before the first program: all that run in a prefix share the desktop that the first one starts.
alone=no
if [[ -z ${DISPLAY:-} ]]; then
  alone=yes
  use_display
fi
run regsvr32 /s "Z:$build/veskoex/VeskoEx.dll"
run "$build/tools/windows/vesko-seed-accounts.exe" "$server_port"
if [[ $alone == yes ]]; then
  { run "$build/tools/windows/vesko-press-buttons.exe" 60 '&Exit' || leave_prefix; } &
fi
# Wine tells a missing sound card at length.
run cscript "Z:$root/samples/windows/check.vbs" 2>/dev/null
