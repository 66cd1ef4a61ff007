#!/usr/bin/env bash
# End-to-end suites: BASIC programs run from the command line (those named
# classic_* with --classic) and shell sessions piped into the interpreter, each
# compared byte for byte with its expected output. Usage: run_e2e.sh path/to/basic [name-filter]
set -u
basic=$(realpath "$1")
filter=${2:-}
here=$(cd "$(dirname "$0")" && pwd)
pass=0
fail=0
failed=()

check() {  # name expected actual
  if cmp -s "$2" "$3"; then
    pass=$((pass + 1))
  else
    fail=$((fail + 1))
    failed+=("$1")
    echo "--- FAIL: $1"
    diff -u --label expected --label actual "$2" "$3" | head -n 40 | cat -A | sed 's/\$$//'
  fi
}

# Graphics windows open through the window thread on SDL's invisible driver.
export SDL_VIDEODRIVER=dummy
# CATALOG shows dates in local time, and the libraries of CATALOG $ and * are
# folders of the session fixtures.
export TZ=UTC BASIC_LIB=library BASIC_GROUP=group

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for bas in "$here"/programs/*.bas; do
  [ -e "$bas" ] || continue
  name=$(basename "$bas" .bas)
  [[ -n "$filter" && "$name" != *$filter* ]] && continue
  stdin=/dev/null
  [ -f "${bas%.bas}.stdin" ] && stdin="${bas%.bas}.stdin"
  # Programs run in a fresh copy of their folder: relative file names work, and
  # the data files they write stay out of the source tree. The copy keeps the
  # files' times, so one the last program left untouched is reused as it is.
  if [ ! -d "$work/prog" ] || [ -n "$(find "$work/prog" -newer "$work/mark" -print -quit)" ]; then
    rm -rf "$work/prog" && cp -a "$here/programs" "$work/prog"
  fi
  touch -d '-2 seconds' "$work/mark"
  # Programs named classic_* are old listings, run with the classic switch on.
  options=()
  [[ "$name" == classic_* ]] && options=(--classic)
  (cd "$work/prog" && timeout 20 "$basic" "${options[@]}" "$name.bas" <"$stdin" >"$work/out" 2>/dev/null)
  echo "exit $?" >>"$work/out"
  check "programs/$name" "${bas%.bas}.out" "$work/out"
done

for input in "$here"/sessions/*.in; do
  [ -e "$input" ] || continue
  name=$(basename "$input" .in)
  [[ -n "$filter" && "$name" != *$filter* ]] && continue
  # Sessions run in a scratch folder: SAVE and GET stay inside it, and the
  # fixture files of tests/sessions/files are there to load.
  rm -rf "$work/run" && mkdir -p "$work/run"
  [ -d "$here/sessions/files" ] && cp -r "$here/sessions/files/." "$work/run/"
  # Fixed dates, for the listings that show them.
  find "$work/run" -exec touch -h -d @981173106 {} +
  # The three banner lines are left out of the expectation.
  (cd "$work/run" && timeout 20 "$basic" <"$input" 2>/dev/null | tail -n +4 >"$work/out")
  check "sessions/$name" "${input%.in}.out" "$work/out"
done

echo "e2e: $pass passed, $fail failed"
[ "$fail" -eq 0 ]
