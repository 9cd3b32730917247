#!/usr/bin/env bash
# Looks at a built VeskoEx.dll: what it gives, what it needs, how large it is.
# usage: dll-test.sh <build folder>
set -euo pipefail
dll=$1/veskoex/VeskoEx.dll
headers=$(x86_64-w64-mingw32-objdump -p "$dll")

fail() {
  echo "$dll: $*" >&2
  exit 1
}

# Hosts ask for the bare names, from a 32-bit library too.
exports=$(sed -n 's/^\t\[ *[0-9]*\] //p' <<<"$headers" | grep '^Dll' | sort | tr '\n' ' ')
[[ $exports == "DllCanUnloadNow DllGetClassObject DllInstall DllRegisterServer DllUnregisterServer " ]] ||
  fail "it exports $exports"

system=" advapi32 comctl32 comdlg32 crypt32 gdi32 kernel32 msvcrt ole32 oleaut32 secur32 shell32 user32 "
system+="uxtheme winmm ws2_32 "
for needed in $(sed -n 's/^\tDLL Name: \(.*\)\.dll$/\L\1/Ip' <<<"$headers"); do
  [[ $system == *" $needed "* ]] || fail "it needs $needed.dll"
done

# What makes a buffer overrun hard to exploit.
guards=(DYNAMIC_BASE NX_COMPAT)
if [[ $headers == *pei-x86-64* ]]; then guards+=(HIGH_ENTROPY_VA); fi
for guard in "${guards[@]}"; do
  [[ $headers == *"$guard"* ]] || fail "it lacks $guard"
done
grep -qF 'stack smashing detected' "$dll" || fail "it has no stack protector"

size=$(stat -c %s "$dll")
((size < 3 * 1024 * 1024)) || fail "it has $size bytes"
# Wide characters in the resources.
for text in OLESelfRegister Microsoft.Windows.Common-Controls; do
  grep -qaF "$text" <(tr -d "\0" <"$dll") || fail "it lacks $text"
done
echo "$dll: $size bytes"
