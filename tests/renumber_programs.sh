#!/usr/bin/env bash
# RENUMBER keeps behaviour: every program of tests/programs is loaded into the
# shell, renumbered with RENUMBER 1000,5 and saved over its copy; run again, it
# must print its expected output, with the statement numbers of error reports
# and of TRACE ("[10]") mapped to the new ones (an unnumbered line, reported by
# its file line before, now has a number). A file that does not load whole is no program to keep.
# Usage: renumber_programs.sh path/to/basic [name-filter]
set -u
basic=$(realpath "$1")
filter=${2:-}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
pass=0
fail=0
export SDL_VIDEODRIVER=dummy

for bas in "$here"/programs/*.bas; do
  name=$(basename "$bas" .bas)
  [[ -n "$filter" && "$name" != *$filter* ]] && continue
  stdin=/dev/null
  [ -f "${bas%.bas}.stdin" ] && stdin="${bas%.bas}.stdin"
  # Programs named classic_* run with the classic switch, as run_e2e.sh runs them.
  flags=()
  [[ "$name" == classic_* ]] && flags=(--classic)
  rm -rf "$work/prog" && cp -r "$here/programs" "$work/prog"
  # The numbers the lines have once loaded, in order: the old side of the map.
  (cd "$work/prog" && printf 'GET %s.bas\nLIST\n' "$name" | "$basic" "${flags[@]}" >"$work/listing" 2>/dev/null)
  grep -q '^Unable to load program' "$work/listing" && continue
  sed -n 's/^ *\([0-9][0-9]*\) .*/\1/p' "$work/listing" >"$work/numbers"
  # A "#!" first line is no statement: file line n is then listed line n-1.
  skip=0
  head -c 2 "$bas" | grep -q '^#!' && skip=1
  (cd "$work/prog" && printf 'GET %s.bas\nRENUMBER 1000,5\nSAVE %s.bas\n' "$name" "$name" |
    "$basic" "${flags[@]}" >"$work/shell" 2>&1)
  if grep -q '^Not renumbered' "$work/shell"; then
    echo "--- FAIL: $name: $(grep '^Not renumbered' "$work/shell")"
    fail=$((fail + 1))
    continue
  fi
  (cd "$work/prog" && timeout 20 "$basic" "${flags[@]}" "$name.bas" <"$stdin" >"$work/out" 2>/dev/null)
  echo "exit $?" >>"$work/out"
  # Old numbers in error reports become the new ones: the n-th line is 1000+5(n-1).
  # Trace numbers are mapped only in programs that trace.
  trace=0
  grep -qiE 'TRACE|TRON' "$bas" && trace=1
  awk -v skip=$skip -v trace=$trace 'NR == FNR { map[$1] = 1000 + 5 * (FNR - 1); at[FNR + skip] = map[$1]; next }
       /^ERROR .* in file line [0-9]+/ {
         match($0, /in file line [0-9]+/); n = substr($0, RSTART + 13, RLENGTH - 13)
         if (n in at) $0 = substr($0, 1, RSTART - 1) "in statement number " at[n] substr($0, RSTART + RLENGTH)
       }
       { line = $0; out = ""
         pattern = trace ? "(statement number|in line) [0-9]+|\\[[0-9]+\\]" : "(statement number|in line) [0-9]+"
         while (match(line, pattern)) {
           head = substr(line, RSTART, RLENGTH); n = head; gsub(/[^0-9]/, "", n)
           if (n in map) sub(/[0-9]+/, map[n], head)
           out = out substr(line, 1, RSTART - 1) head; line = substr(line, RSTART + RLENGTH)
         }
         print out line }' "$work/numbers" "${bas%.bas}.out" >"$work/expected"
  if cmp -s "$work/expected" "$work/out"; then
    pass=$((pass + 1))
  else
    fail=$((fail + 1))
    echo "--- FAIL: $name"
    diff -u --label expected --label actual "$work/expected" "$work/out" | head -n 20
  fi
done

echo "renumbered programs: $pass passed, $fail failed"
[ "$fail" -eq 0 ]
