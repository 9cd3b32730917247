#!/usr/bin/env bash
# Runs a test program under Wine in the prefix $VESKO_PREFIX. Wine takes language and code page from
# $VESKO_LANGUAGE. Before the first and behind the last, "start" and "end" in a program's place.
# usage: run-test.sh <program>|start|end
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$root/scripts/windows/wine.sh"
unset DISPLAY WAYLAND_DISPLAY
# This system need not have the language, and says so.
export LC_ALL="$VESKO_LANGUAGE.UTF-8" 2>/dev/null
use_prefix "$VESKO_PREFIX"
case $1 in
  start)
    leave_prefix
    # Windows are made, moved and asked as ever; only nothing is drawn anywhere.
    run reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null
    leave_prefix
    start_wine
    ;;
  end) leave_prefix ;;
  *) exec "$wine" "$1" --gtest_brief ;;
esac
