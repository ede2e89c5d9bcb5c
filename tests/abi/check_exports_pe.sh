#!/usr/bin/env bash
# Tarnsysm: compares the demangled names a Windows DLL exports with the checked-in lists, as
# check_exports.sh does for ELF. Usage: check_exports_pe.sh OBJDUMP DLL LIST...
set -euo pipefail
objdump=$1
dll=$2
shift 2
expected=$(cat "$@" | grep -v -E '^\s*(#|$)' | LC_ALL=C sort)
# The lists spell std::size_t as the 64-bit targets do; a 32-bit DLL's size_t is unsigned int.
if "$objdump" -f "$dll" | grep -q 'pei-i386'; then
  expected=$(echo "$expected" | sed 's/unsigned long)/unsigned int)/' | LC_ALL=C sort)
fi
# The export name table lists "[ordinal] name" rows between its heading and the next blank line.
actual=$("$objdump" -p "$dll" |
  awk '/\[Ordinal\/Name Pointer\] Table/ {on = 1; next} on && NF == 0 {on = 0} on {print $NF}' |
  c++filt | LC_ALL=C sort)
if [ "$expected" != "$actual" ]; then
  echo "exported names differ from the lists (< listed, > exported):"
  diff <(echo "$expected") <(echo "$actual") || true
  exit 1
fi
echo "exported names match: $(echo "$actual" | wc -l) names"
