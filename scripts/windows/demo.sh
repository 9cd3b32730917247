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
cmake --build --preset windows --target VeskoEx vesko-seed-accounts vesko-press-buttons

trap leave EXIT
alone=no
if ! has_display; then
  alone=yes
  use_display
fi
use_prefix "$build/wine-demo"
start_wine
start_sample_server build/release
run regsvr32 /s "Z:$build/veskoex/VeskoEx.dll"
run "$build/tools/windows/vesko-seed-accounts.exe" "$server_port"
if [[ $alone == yes ]]; then
  { run "$build/tools/windows/vesko-press-buttons.exe" 60 '&Exit' || leave_prefix; } &
fi
# The user takes the time that it takes. Wine tells a missing sound card at length.
limit=0 run cscript "Z:$root/examples/windows/check.vbs" 2>/dev/null
