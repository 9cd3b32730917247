#!/usr/bin/env bash
# What the library for Windows costs beside this system's own: its size, how long it takes to load,
# and a check of 10,000 messages, from the call until the list opens, on the same server in memory.
# Beside the checks stands a bare loop of blocking reads and writes, the least that either system
# takes for the conversation: under Wine each of them asks another process twice.
# usage: bench.sh [<rounds, of which the best counts>]
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$root/scripts/windows/wine.sh"
rounds=${1:-5}
messages=10000
native=$root/build/release
build=$root/build/windows-bench

"$root/scripts/install-packages.sh" build windows
cd "$root"
cmake --log-level=WARNING --preset release
cmake --build --preset release --target VeskoEx vesko_bench_host vesko_bench_memory_server
cmake --log-level=WARNING --preset windows -B "$build" -DVESKO_BENCH=ON -DVESKO_TESTS=OFF
cmake --build "$build" --target VeskoEx vesko_bench_host

start_server() { # <core>
  coproc SERVER { exec taskset -c "$1" "$native/bench/vesko_bench_memory_server"; }
  read -r -t 20 server_port <&"${SERVER[0]}"
}

linux() { "$native/bench/vesko_bench_host" "$server_port" $messages "$@" 2>/dev/null; }
windows() { # Wine tells a missing sound card at length.
  limited "$wine" "$build/bench/vesko_bench_host.exe" "$server_port" $messages "$@" \
    2>/dev/null | tr -d '\r'
}

measure() { # fills $figures: <kind> [<load milliseconds>] <wall seconds> <processor seconds>
  local round
  for ((round = 0; round < rounds; ++round)); do
    echo "linux-bare $(linux)"
    echo "windows-bare $(windows)"
    echo "linux $(linux "$native/veskoex/libVeskoEx.so")"
    echo "windows $(windows "Z:$build/veskoex/VeskoEx.dll")"
  done >"$figures"
}

# The best of each kind, and the checks' and the loops' ratios. The median of the loading times.
report() {
  awk '
    NF < 3 { failed = 1; next }
    { wall = $(NF - 1); processor = $NF }
    !($1 in best) || wall < best[$1] { best[$1] = wall }
    !($1 in least) || processor < least[$1] { least[$1] = processor }
    function line(what, kind) {
      printf "  %-10s  Linux %6.3f s (processor %5.3f)  Windows %6.3f s (%5.3f)  ratio %4.2f (%4.2f)\n",
        what, best["linux" kind], least["linux" kind], best["windows" kind], least["windows" kind],
        best["windows" kind] / best["linux" kind], least["windows" kind] / least["linux" kind]
    }
    END {
      if (failed || !("windows" in best)) { print "A check came to nothing."; exit 1 }
      line("check", ""); line("bare loop", "-bare")
      printf "  the check with the bare loop of Linux in place of that of Windows: ratio %4.2f\n",
        (best["windows"] - best["windows-bare"] + best["linux-bare"]) / best["linux"]
    }' "$figures"
}

trap leave EXIT
use_display
# Client and Wine's server are on one core; left to chance, places and figures change by the second.
taskset -pc 0 $$ >/dev/null
use_prefix "$build/wine-bench"
# Looking for sound cards would be measured along.
export WINEDLLOVERRIDES="$WINEDLLOVERRIDES;winealsa.drv,winepulse.drv,wineoss.drv="
start_wine
figures=$(mktemp)

printf 'VeskoEx.dll: %.2f MB\n' "$(stat -c %s "$build/veskoex/VeskoEx.dll")e-6"
for server_core in $(seq 0 $(($(nproc --all) > 1 ? 1 : 0))); do
  start_server "$server_core"
  measure
  if ((server_core == 0)); then
    awk '$1 == "windows" { print $2 }' "$figures" | sort -n |
      awk '{ time[NR] = $1 } END { print "Loading it: " time[int((NR + 1) / 2)] " ms" }'
    echo "A check of $messages messages, server on the same core:"
  else
    echo "Server on a core of its own:"
  fi
  report
  kill "$SERVER_PID"
  wait "$SERVER_PID" 2>/dev/null || true
done
rm "$figures"
