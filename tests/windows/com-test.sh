#!/usr/bin/env bash
# Registers a built VeskoEx.dll under Wine, uses it from a script and from a compiled host, checks
# mail on the sample server while a program presses the buttons, and unregisters it.
# usage: com-test.sh <build folder> [<native build folder, for the sample server>]
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$root/scripts/windows/wine.sh"
build=$(realpath "$1")
native=${2:-}

expect() { # <what> <wanted> <got>
  [[ $3 == "$2" ]] && return
  printf '%s\n--- wanted\n%s\n--- got\n%s\n' "$1" "$2" "$3" >&2
  exit 1
}

# How many lines anywhere below a key tell of a registration.
traces() {
  run reg query "$1" /s | { grep -ciE \
    'vesko|63A46929-8458-4AA5-8CB6-4BD1B0873CC2|3EA79F0F-0DE9-4632-B078-BF59F031D50B|247CCFDB-4E5B-4023-9A6D-E871C6D2BA4B' || true; }
}

value() { # <key> <name>: its data, as reg tells it
  run reg query "$1" /v "$2" | sed -n "s/^    $2    REG_[A-Z]*    //p"
}

rm -rf "$build/wine-test"
use_prefix "$build/wine-test"
start_sample_server "$(native_build $native)"
use_display
trap 'leave_prefix; leave_display; stop_sample_server' EXIT
cd "$build/veskoex"
settings='Software\Quarnel\Config\Email Accounts'

run regsvr32 /s VeskoEx.dll
[[ $(traces 'HKLM\Software\Classes') -gt 0 ]]
expect "keys of the machine's registration for the user" 0 "$(traces 'HKCU\Software\Classes')"
expect "a script host" $'Minutes between checks: -1\nBusy: False' \
  "$(run cscript "Z:$root/samples/windows/check.vbs" /status)"
expect "a compiled host" $'Minutes between checks: -1\nBusy: False' \
  "$(run "$build/samples/windows/vesko-sample-host.exe" /status)"
expect "early binding" "" "$(run "$build/tests/windows/com-client.exe")"
expect "what the end of an object saves" "0x1e 0x1e" \
  "$(value "HKCU\\$settings" "Check Time") $(value "HKLM\\$settings" "Check Time")"

run "$build/tools/windows/vesko-seed-accounts.exe" "$server_port"
run "$build/tools/windows/vesko-press-buttons.exe" 60 '&Exit' >"$WINEPREFIX/pressed" &
presser=$!
expect "a check" $'Minutes between checks: -1\nBusy: False\nThe check is over.' \
  "$(run cscript "Z:$root/samples/windows/check.vbs" 2>/dev/null)"
wait "$presser"
expect "the list" $'window: 34 MAILS (33 NEW MAILS, 2 SPAM MAILS)\nrows: 34' "$(<"$WINEPREFIX/pressed")"
for hive in HKCU HKLM; do
  expect "accounts in $hive" "0x2 office" \
    "$(value "$hive\\$settings" "Account Number") $(value "$hive\\$settings\\00000002" "POP3 User Name")"
done

# A path in other letters is the same file.
run regsvr32 /s /u VESKOEX.DLL
expect "keys after unregistering" 0 "$(traces 'HKLM\Software\Classes')"

# Wine 8 finds no class that is registered for one user, so no host is tried.
run regsvr32 /s /n /i:user VeskoEx.dll
expect "keys of the user's registration for the machine" 0 "$(traces 'HKLM\Software\Classes')"
expect "a user's class" "Z:${build//\//\\}\\veskoex\\VeskoEx.dll" "$(run reg query \
  'HKCU\Software\Classes\CLSID\{63A46929-8458-4AA5-8CB6-4BD1B0873CC2}\InprocServer32' /ve |
  sed -n 's/^.*REG_SZ    //p')"
run regsvr32 /s /u /n /i:user VeskoEx.dll
expect "keys after unregistering for the user" 0 "$(traces 'HKCU\Software\Classes')"
echo "VeskoEx.dll registers, serves its hosts, checks mail and goes."
