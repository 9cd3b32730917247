#!/usr/bin/env bash
# Registers a built VeskoEx.dll under Wine, uses it from a script and from compiled hosts, checks
# mail on the sample server while a program presses the buttons, and unregisters it.
# usage: com-test.sh <build folder> 32|64 [<native build folder, for the sample server>]
# Ends with 77 where Wine runs no 32-bit programs.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$root/scripts/windows/wine.sh"
build=$(realpath "$1")
native=${3:-}
system='C:\windows\system32'
if [[ $2 == 32 ]]; then
  system='C:\windows\syswow64'
  if ! runs_32_bit; then
    echo "There is no 32-bit Wine: scripts/install-packages.sh windows32" >&2
    exit 77
  fi
fi

expect() { # <what> <wanted> <got>
  [[ $3 == "$2" ]] && return
  printf '%s\n--- wanted\n%s\n--- got\n%s\n' "$1" "$2" "$3" >&2
  exit 1
}

# Everybody's classes in a hive, for programs of both kinds.
classes() { # <hive>
  rm -f "$WINEPREFIX/classes.reg"
  run reg export "$1\\Software\\Classes" "Z:$WINEPREFIX/classes.reg" >/dev/null 2>&1 || return 0
  iconv -f utf-16 -t utf-8 "$WINEPREFIX/classes.reg"
}

new_classes() { # <hive>: how they differ from those before the library was registered
  classes "$1" | diff "$WINEPREFIX/$1" - || true
}

reg() {
  run "$system\\reg.exe" "$@"
}

settings() { # <hive>: as the library's own kind of program sees them, the passwords left out
  reg query "$1\\Software\\Quarnel" /s | sed -E 's/^HKEY_[A-Z_]+//
    /^    POP3 Password/ { /sample/! s/(REG_SZ    ).+/\1(scrambled)/; }'
}

wanted_settings() { # <account>...
  local account number=0
  cat <<EOF

\\Software\\Quarnel\\Config

\\Software\\Quarnel\\Config\\Email Accounts
    Account Number    REG_DWORD    0x$#
    Check Time    REG_DWORD    0x1e
    Down Lines    REG_DWORD    0x14
    Manual Checking    REG_DWORD    0x1
    Sound File    REG_SZ    $folder\\Email1.wav
    Spam Sender    REG_SZ    offers@spam.example
@spam.example
    Spam Subject    REG_SZ    ILOVEYOU
MELISSA
    Wait Time    REG_DWORD    0x14
EOF
  for account in "$@"; do
    number=$((number + 1))
    printf '\n\\Software\\Quarnel\\Config\\Email Accounts\\%08d\n' $number
    printf '    %s    REG_%s    %s\n' 'Account Name' SZ "$account" 'POP3 Password' SZ '(scrambled)' \
      'POP3 Port' DWORD "$(printf '0x%x' "$server_port")" 'POP3 Server' SZ 127.0.0.1 \
      'POP3 User Name' SZ "$account" 'Save Password' DWORD 0x1
  done
}

expect_settings() { # <when> <account>...
  local hive when=$1
  shift
  for hive in HKCU HKLM; do
    expect "settings in $hive $when" "$(wanted_settings "$@")" "$(settings "$hive")"
  done
}

check() { # <host> <argument>...: what it says, and what the user sees
  run "$build/tools/windows/vesko-press-buttons.exe" 60 '&Exit' >"$WINEPREFIX/pressed" &
  local presser=$!
  run "$@" 2>/dev/null
  wait "$presser"
  cat "$WINEPREFIX/pressed"
}

trap leave EXIT
use_display
use_prefix "$build/wine-test" fresh
start_wine
start_sample_server "$(native_build $native)"
cd "$build/veskoex"
folder="Z:${PWD//\//\\}"
script=("$system\\cscript.exe" "Z:$root/examples/windows/check.vbs")
host=("$build/examples/windows/vesko-example-host.exe")
regsvr32=("$system\\regsvr32.exe" /s)
status=$'Minutes between checks: -1\nBusy: False'
seen=$'window: 34 MAILS (33 NEW MAILS, 2 SPAM MAILS)\nrows: 34'

# The script host registers itself when it is first used.
expect "a host of what is not registered" "" "$(run "${script[@]}" /status 2>/dev/null)"
for hive in HKCU HKLM; do classes "$hive" >"$WINEPREFIX/$hive"; done
run "${regsvr32[@]}" VeskoEx.dll
expect "the machine's registration for the user" "" "$(new_classes HKCU)"
expect "a script host" "$status" "$(run "${script[@]}" /status)"
expect "a compiled host" "$status" "$(run "${host[@]}" /status)"
expect "early binding" "" "$(run "$build/tests/windows/com-client.exe")"
expect_settings "after the first start"

run "$build/tools/windows/vesko-seed-accounts.exe" "$server_port"
expect "a check by a compiled host" "$status"$'\n'"$seen" "$(check "${host[@]}")"
# The user's settings are read; the machine's are written anew.
reg delete 'HKLM\Software\Quarnel' /f >/dev/null
expect "a check by a script" "$status"$'\nThe check is over.\n'"$seen" "$(check "${script[@]}")"
expect_settings "after a check" minji office

# A path in other letters is the same file.
run "${regsvr32[@]}" /u VESKOEX.DLL
expect "what unregistering leaves" "" "$(new_classes HKLM)"

# Wine 8 finds no class that is registered for one user, so no host is tried.
run "${regsvr32[@]}" /n /i:user VeskoEx.dll
expect "the user's registration for the machine" "" "$(new_classes HKLM)"
expect "a user's class" "$folder\\VeskoEx.dll" "$(reg query \
  'HKCU\Software\Classes\CLSID\{63A46929-8458-4AA5-8CB6-4BD1B0873CC2}\InprocServer32' /ve |
  sed -n 's/^.*REG_SZ    //p')"
run "${regsvr32[@]}" /u /n /i:user VeskoEx.dll
expect "what unregistering leaves for the user" "" "$(new_classes HKCU)"
echo "VeskoEx.dll registers, serves its hosts, checks mail and goes."
