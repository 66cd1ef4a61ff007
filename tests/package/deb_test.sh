#!/usr/bin/env bash
# The Debian package as a user gets it: unpacked into a scratch root, its binary
# runs its own examples with their expected output, it holds no test files,
# names SDL2 as a dependency, and lintian finds no error in it.
# Usage: deb_test.sh path/to/velo-basic_VERSION_ARCH.deb
set -u
deb=$(realpath "${1:?usage: deb_test.sh package.deb}")
here=$(cd "$(dirname "$0")" && pwd)
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

dpkg-deb -x "$deb" "$root" || { echo "FAIL: dpkg-deb cannot unpack $deb"; exit 1; }
doc=$root/usr/share/doc/velo-basic
for f in usr/bin/basic usr/share/man/man1/basic.1.gz usr/share/doc/velo-basic/README.md \
  usr/share/doc/velo-basic/copyright usr/share/doc/velo-basic/changelog.gz; do
  [ -f "$root/$f" ] || fail "the package lacks /$f"
done
[ "$("$root/usr/bin/basic" --version)" = "Velo Basic V0.94.0.154" ] || fail "the packaged binary does not run"
EXAMPLES=$doc/examples "$here/../examples.sh" "$root/usr/bin/basic" >/dev/null ||
  fail "the packaged examples do not give their expected output"
extra=$(cd "$root" && find . -type f | grep -vE '^\./usr/(bin/basic|share/man/man1/basic\.1\.gz|share/doc/velo-basic/(README\.md|copyright|changelog\.gz|examples/[a-z]+\.bas))$')
[ -z "$extra" ] || fail "files the package should not hold: $extra"
dpkg-deb -f "$deb" Depends | grep -q 'libsdl2-2.0-0' || fail "SDL2 is not a dependency"
case "$(basename "$deb")" in velo-basic_0.94.0.154_*.deb) ;; *) fail "the file name lacks the version" ;; esac

if command -v lintian >/dev/null; then
  lintian --allow-root --fail-on error "$deb" >"$root/lintian" 2>&1 || {
    fail "lintian reports errors"
    cat "$root/lintian"
  }
else
  fail "lintian is not installed"
fi

if [ "$failures" -eq 0 ]; then
  echo "package: all checks passed"
  exit 0
fi
echo "package: $failures check(s) failed"
exit 1
