#!/usr/bin/env bash
# Lists every conversion from a floating type to an integer type in src/, explicit
# or implicit, outside the one family in src/base/convert.h that decides NaN and
# range. Prints nothing and exits 0 when there is none. Needs clang-query.
# Usage: tools/float_to_int.sh [build-folder-for-compile_commands]
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
db=${1:-$root/build-query}
if [ ! -f "$db/compile_commands.json" ]; then
  cmake -S "$root" -B "$db" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCMAKE_CXX_COMPILER=clang++ \
    -DBASIC_TESTS=OFF >/dev/null || exit 2
fi
cd "$root" || exit 2
found=$(clang-query -p "$db" $(git ls-files 'src/*.cpp') -c 'set output diag' \
  -c 'match castExpr(hasCastKind("CK_FloatingToIntegral"), unless(isExpansionInSystemHeader()))' \
  2>/dev/null | grep 'binds here' | sed 's/: note: "root" binds here//' | sort -u |
  grep -v '/src/base/convert\.h:')
[ -z "$found" ] && exit 0
echo "$found"
exit 1
