#!/usr/bin/env bash
# Tests end only the processes they started, by id: a name pattern (pkill, killall,
# pidof, pgrep without -P) can end a session of the same program that a user has open.
# Usage: kill_by_id.sh    Exit status 1 when a script names processes by pattern.
set -u
cd "$(dirname "$0")/../.." || exit 1
hits=$(git ls-files -- tests .ci Makefile bench tools 2>/dev/null |
  grep -v '^tests/checks/kill_by_id.sh$' |
  xargs -r grep -nHE '(^|[^[:alnum:]_-])(pkill|killall|pidof)([^[:alnum:]_-]|$)|(^|[^[:alnum:]_-])pgrep[[:space:]]+([^-]|-[^P])' 2>/dev/null)
if [ -n "$hits" ]; then
  echo "FAIL: processes ended by name pattern instead of by id:"
  echo "$hits"
  exit 1
fi
echo "kill by id: no test ends processes by name"
