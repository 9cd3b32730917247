#!/usr/bin/env bash
# Runs a test program under Wine, which takes language and code page from $VESKO_LANGUAGE. Before
# the first and behind the last, "start" and "end" in a program's place.
# usage: run-test.sh <prefix> <program>|start|end
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$root/scripts/windows/wine.sh"
unset DISPLAY WAYLAND_DISPLAY
use_prefix "$1"
case $2 in
  start)
    leave_prefix
    # One server for all, as programs that start while one ends do not reach it; nor do two that start
    # it at once.
    "$wineserver" --persistent=600 >/dev/null 2>&1 </dev/null
    "$wine" cmd /c ver >/dev/null 2>&1 </dev/null
    ;;
  end) leave_prefix ;;
  *)
    # Wine's services, which the first program starts, keep its output open for as long as they run.
    output=$(mktemp)
    trap 'cat "$output"; rm "$output"' EXIT
    # Not for the shell, for this system need not have the language.
    env LC_ALL="$VESKO_LANGUAGE.UTF-8" "$wine" "$2" --gtest_brief >"$output" 2>&1 </dev/null
    ;;
esac
