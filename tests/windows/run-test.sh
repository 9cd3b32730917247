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
    start_wine
    ;;
  end) leave_prefix ;;
  *)
    # Not for the shell, for this system need not have the language.
    exec env LC_ALL="$VESKO_LANGUAGE.UTF-8" "$wine" "$2" --gtest_brief
    ;;
esac
