#!/usr/bin/env bash
# Runs every program of examples/ that has a reference picture (NAME.ppm)
# headless, answering its closing INPUT with an empty line, and compares the
# picture of window 1 at its last UPDATE with the reference.
# Usage: examples.sh BUILD_FOLDER [--update]   (--update rewrites the references)
set -u
build=$(realpath "$1")
update=${2:-}
examples=$(cd "$(dirname "$0")/../../examples" && pwd)
keep=$build/example-pictures
mkdir -p "$keep"
unset DISPLAY WAYLAND_DISPLAY SDL_VIDEODRIVER
pass=0
fail=0
for bas in "$examples"/*.bas; do
  name=$(basename "$bas" .bas)
  reference=$examples/$name.ppm
  [ -f "$reference" ] || [ "$update" = --update ] || continue
  dump=$(mktemp -d)
  (cd "$examples" && printf '\n' | BASIC_GDI_DUMP=$dump timeout 60 "$build/basic" "$name.bas" \
    >"$dump/out" 2>/dev/null)
  status=$?
  if [ $status != 0 ] || grep -q ERROR "$dump/out" || [ ! -f "$dump/gdi1.ppm" ]; then
    echo "--- FAIL: examples/$name.bas ended with status $status and no picture:"
    cat "$dump/out"
    fail=$((fail + 1))
  elif [ "$update" = --update ]; then
    cp "$dump/gdi1.ppm" "$reference"
    echo "examples/$name.ppm rewritten"
  elif where=$("$build/picture_tool" compare "$reference" "$dump/gdi1.ppm"); then
    pass=$((pass + 1))
  else
    cp "$dump/gdi1.ppm" "$keep/$name.ppm"
    echo "--- FAIL: examples/$name.bas drew another picture: $where"
    echo "    what it drew is in $keep/$name.ppm"
    fail=$((fail + 1))
  fi
  rm -rf "$dump"
done
echo "examples: $pass passed, $fail failed"
[ $fail = 0 ]
