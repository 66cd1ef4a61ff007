#!/usr/bin/env bash
# Drives the line editor on a real terminal (tmux) through the line_echo test program.
# Usage: editor_tmux.sh path/to/line_echo    Exit status 0 when every check passed.
set -u
bin=${1:?usage: editor_tmux.sh path/to/line_echo}
if ! command -v tmux >/dev/null 2>&1; then
  echo "SKIP: tmux is not installed"
  exit 0
fi
[ -x "$bin" ] || { echo "FAIL: $bin is not an executable"; exit 1; }
bin=$(cd "$(dirname "$bin")" && pwd)/$(basename "$bin")

tmp=$(mktemp -d)
sock="line-echo-$$"
tm() { tmux -L "$sock" -f /dev/null "$@"; }
cleanup() { tm kill-server >/dev/null 2>&1; rm -rf "$tmp"; }
trap cleanup EXIT

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
screen() { tm capture-pane -p -t t 2>/dev/null; }
# Waits until the pane shows pattern (grep -E) count times.
wait_for() {
  local pattern=$1 count=${2:-1}
  for _ in $(seq 100); do
    [ "$(screen | grep -cE -- "$pattern")" -ge "$count" ] && return 0
    sleep 0.05
  done
  fail "timed out waiting for '$pattern' x$count"
  screen | sed 's/^/  | /'
  return 1
}

tm new-session -d -s t -x 80 -y 30 \
  "env TERM=xterm sh -c 'trap : INT; \"$bin\"; echo \"status \$?\"; stty -a > \"$tmp/stty\"; echo STTY-DONE; sleep 30'"

wait_for '^>' 1
tm send-keys -t t 'hello world' Enter
wait_for '^\[hello world\]$' 1
tm send-keys -t t F3 Enter
wait_for '^\[hello world\]$' 2 || true
tm send-keys -t t F1 Enter
wait_for '^\[h\]$' 1 || true
tm send-keys -t t 'abc' Escape
wait_for '^> abc@$' 1 || true
tm send-keys -t t 'xyz' Enter
wait_for '^\[xyz\]$' 1 || true
tm send-keys -t t 'RUN' BSpace BSpace 'EAD' Enter
wait_for '^\[READ\]$' 1 || true
prompts=$(screen | grep -c '^>')
tm send-keys -t t C-c
wait_for '^BREAK$' 1 || true
wait_for '^>' $((prompts + 1)) || true
tm send-keys -t t 'BYE' Enter
wait_for '^STTY-DONE$' 1 || true
screen | grep -q '^status 0$' || fail "line_echo did not exit with status 0"

if [ -s "$tmp/stty" ]; then
  grep -qE '(^| )icanon( |$)' "$tmp/stty" || fail "icanon not restored after exit"
  grep -qE '(^| )echo( |$)' "$tmp/stty" || fail "echo not restored after exit"
else
  fail "no stty output after exit"
fi

if [ "$failures" -ne 0 ]; then
  echo "--- final screen ---"
  screen
  echo "editor_tmux: $failures check(s) failed"
  exit 1
fi
echo "editor_tmux: all checks passed"
