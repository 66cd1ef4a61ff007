#!/usr/bin/env bash
# make run installs and builds only what the interpreter needs: a first run on a
# fresh machine must not wait for the test packages or the unit tests.
# Usage: make_run.sh    Exit status 1 when make run would do more.
set -u
cd "$(dirname "$0")/../.." || exit 1
plan=$(make -n run BUILD=/nonexistent-build 2>/dev/null)
failures=0
for pkg in libgtest-dev tmux xvfb xdotool clang lintian; do
  if grep -qw -- "$pkg" <<<"$plan"; then
    echo "FAIL: make run would install the test package $pkg"
    failures=$((failures + 1))
  fi
done
grep -q -- '--target basic' <<<"$plan" || { echo "FAIL: make run builds more than the interpreter"; failures=$((failures + 1)); }
[ "$failures" -eq 0 ] && echo "make run: only the interpreter's packages and build"
[ "$failures" -eq 0 ]
