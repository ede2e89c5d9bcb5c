#!/bin/sh
# Tarnsysm tool test: a DXF output on a full file system fails with exit status 2, leaves the
# earlier file as it was and no temporary file behind. Needs a 64 KiB tmpfs (root); exits 77,
# which ctest counts as skipped, where none can be mounted.
# Usage: full_disk.sh TARNSYSM
tool=$1
disk=$(mktemp -d) && work=$(mktemp -d) || exit 1
if ! mount -t tmpfs -o size=64k tmpfs "$disk" 2>/dev/null; then
  rmdir "$disk" "$work"
  echo "cannot mount a tmpfs here: skipped"
  exit 77
fi
trap 'umount "$disk"; rmdir "$disk"; rm -rf "$work"' EXIT
# 400 squares: an offset drawing of well over 64 KiB.
i=0
while [ $i -lt 400 ]; do
  printf 'closed 4\n%d 0 0\n%d 0 0\n%d 5 0\n%d 5 0\n' $((i * 9)) $((i * 9 + 5)) $((i * 9 + 5)) $((i * 9))
  i=$((i + 1))
done >"$work/squares.txt"
echo earlier >"$disk/out.dxf"
"$tool" offset "$work/squares.txt" --distance 1 --side right --output "$disk/out.dxf" 2>"$work/err"
status=$?
cat "$work/err"
[ $status -eq 2 ] || { echo "FAIL: exit status $status, expected 2"; exit 1; }
grep -q "No space left" "$work/err" || { echo "FAIL: the error does not say the disk is full"; exit 1; }
[ "$(cat "$disk/out.dxf")" = earlier ] || { echo "FAIL: the earlier file changed"; exit 1; }
[ "$(ls -A "$disk")" = out.dxf ] || { echo "FAIL: left behind: $(ls -A "$disk")"; exit 1; }
echo "a full disk leaves the earlier file as it was"
