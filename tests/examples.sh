#!/usr/bin/env bash
# Runs every program of examples/ that has an expected output (expected/NAME.out),
# with expected/NAME.in as its typed input when there is one, and compares the
# output and exit status byte for byte. Usage: examples.sh path/to/basic [--update]
# EXAMPLES=folder runs the programs of another copy (an installed package's).
set -u
basic=$(realpath "$1")
update=${2:-}
sources=$(cd "$(dirname "$0")/../examples" && pwd)
examples=$(cd "${EXAMPLES:-$sources}" && pwd)
pass=0
fail=0
out=$(mktemp)
trap 'rm -f "$out"' EXIT
for expected in "$sources"/expected/*.out; do
  [ -e "$expected" ] || continue
  name=$(basename "$expected" .out)
  input=/dev/null
  [ -f "$sources/expected/$name.in" ] && input=$sources/expected/$name.in
  (cd "$examples" && timeout 20 "$basic" "$name.bas" <"$input" >"$out" 2>&1)
  echo "exit $?" >>"$out"
  if [ "$update" = --update ]; then
    cp "$out" "$expected"
  elif cmp -s "$expected" "$out"; then
    pass=$((pass + 1))
  else
    fail=$((fail + 1))
    echo "--- FAIL: examples/$name.bas"
    diff -u --label expected --label actual "$expected" "$out" | head -n 40
  fi
done
echo "examples: $pass passed, $fail failed"
[ "$fail" -eq 0 ]
