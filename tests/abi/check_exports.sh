#!/usr/bin/env bash
# Tarnsysm: compares the demangled names a shared library exports with the checked-in lists.
# Usage: check_exports.sh LIBRARY LIST...   Catches leaked helpers and misspelled overloads.
set -euo pipefail
lib=$1
shift
expected=$(cat "$@" | grep -v -E '^\s*(#|$)' | LC_ALL=C sort)
# The standard library marks its templates visible; instantiations it emits (in unoptimised
# builds, whatever their return type) are not ours: no export of this library names a standard
# type. Clang's function sanitizer (part of -fsanitize=undefined) emits weak type information for
# the function types it checks calls against; those are not ours either.
actual=$(nm -D --defined-only "$lib" | awk '$2 ~ /^[TWiVu]$/ {print $3}' | c++filt |
  grep -v -E '^(std::|__gnu_cxx::|operator |_init$|_fini$|__bss_start$|_edata$|_end$)' |
  grep -v -E '(std|__gnu_cxx)::' |
  grep -v -E '^typeinfo (name )?for [^:]*\(' | LC_ALL=C sort)
if [ "$expected" != "$actual" ]; then
  echo "exported names differ from the lists (< listed, > exported):"
  diff <(echo "$expected") <(echo "$actual") || true
  exit 1
fi
echo "exported names match: $(echo "$actual" | wc -l) names"
