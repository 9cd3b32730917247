#!/usr/bin/env bash
# Lets a Windows program under Wine go through the cases of TLS with a server of this system.
# usage: tls-test.sh <program>
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

server=$(ls -t "$here"/../../build/*/tests/desktop/vesko-tls-server 2>/dev/null | head -1)
if [[ -z $server ]]; then
  echo "The server is missing: cmake --preset asan && cmake --build --preset asan" >&2
  exit 1
fi
coproc SERVER { exec timeout 100 "$server"; }
server_pid=$SERVER_PID
read -r VESKO_TLS_PORT VESKO_TLS_AUTHORITIES <&"${SERVER[0]}"
export VESKO_TLS_PORT VESKO_TLS_AUTHORITIES
"$here/run-test.sh" "$@"
wait "$server_pid"
