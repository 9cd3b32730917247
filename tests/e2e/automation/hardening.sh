#!/bin/sh
# Checks that programs and libraries were built with what makes a buffer overrun hard to exploit.
# usage: hardening.sh optimised|plain <file>...
set -u
build=$1
shift
failed=0

check() { # <file> <what> <text to look in> <pattern>
  printf '%s\n' "$3" | grep -Eq "$4" && return
  echo "$1: $2" >&2
  failed=1
}

for file in "$@"; do
  header=$(LC_ALL=C readelf -W --file-header "$file")
  segments=$(LC_ALL=C readelf -W --program-headers "$file")
  dynamic=$(LC_ALL=C readelf -W --dynamic "$file")
  imports=$(LC_ALL=C readelf -W --dyn-syms "$file" | grep ' UND ')
  check "$file" "is not loaded at a random address" "$header" 'Type: *DYN'
  check "$file" "has an executable stack" "$segments" 'GNU_STACK .* RW +0x'
  check "$file" "its tables stay writable" "$segments" 'GNU_RELRO'
  check "$file" "binds its functions late" "$dynamic" '\((BIND_NOW|FLAGS_1)\).*(BIND_NOW|NOW)|BIND_NOW'
  check "$file" "has no stack protector" "$imports" '__stack_chk_fail'
  if [ "$build" = optimised ]; then
    check "$file" "uses no checked functions" "$imports" ' __(f?printf|v?s?n?printf|mem[a-z]+|str[a-z]+|f?read|recv)_chk'
  fi
done
[ $failed -eq 0 ] && echo "$# files are hardened."
exit $failed
