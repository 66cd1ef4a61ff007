#!/usr/bin/env bash
# The shell on a real terminal (tmux): typing, the template keys, Ctrl+C at the
# prompt and while a program runs, and a sane terminal after BYE.
# Usage: shell_tmux.sh path/to/basic    Exit status 0 when every check passed.
set -u
bin=${1:?usage: shell_tmux.sh path/to/basic}
if ! command -v tmux >/dev/null 2>&1; then
  echo "SKIP: tmux is not installed"
  exit 0
fi
bin=$(cd "$(dirname "$bin")" && pwd)/$(basename "$bin")
tmp=$(mktemp -d)
sock="basic-shell-$$"
tm() { tmux -L "$sock" -f /dev/null "$@"; }
cleanup() { tm kill-server >/dev/null 2>&1; rm -rf "$tmp"; }
trap cleanup EXIT

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
screen() { tm capture-pane -p -t t -S -200 2>/dev/null; }
wait_for() {  # pattern [count]
  local pattern=$1 count=${2:-1}
  for _ in $(seq 200); do
    [ "$(screen | grep -cE -- "$pattern")" -ge "$count" ] && return 0
    sleep 0.05
  done
  fail "timed out waiting for '$pattern' x$count"
  screen | grep -v '^$' | tail -n 20 | sed 's/^/  | /'
  return 1
}

tm new-session -d -s t -x 100 -y 40 \
  "env TERM=xterm sh -c 'trap : INT; \"$bin\"; echo \"status \$?\"; stty -a > \"$tmp/stty\"; echo STTY-DONE; sleep 30'"

wait_for '^READY$'
tm send-keys -t t 'WIDTH' Enter
wait_for '^Width is 72$'
# F3 types the last line again; F1 copies one character of it.
tm send-keys -t t F3 Enter
wait_for '^Width is 72$' 2
tm send-keys -t t F1 F1 'X' Enter
wait_for '^WIX$'
wait_for '^\?\?\?$'
# Escape abandons the line being typed.
tm send-keys -t t 'LIST' Escape
wait_for '^LIST@$'
# Ctrl+C at the prompt.
tm send-keys -t t C-c
wait_for '^BREAK$'
# Ctrl+C while a program runs stops it with a report at the statement.
tm send-keys -t t '10 SLEEP 50' Enter '20 GOTO 10' Enter 'RUN' Enter
sleep 0.5
tm send-keys -t t C-c
wait_for '^BREAK in line (10|20)$'
tm send-keys -t t 'BYE' Enter
wait_for 'MINUTES OF TERMINAL TIME$'
wait_for '^STTY-DONE$'
screen | grep -q '^status 0$' || fail "basic did not exit with status 0"
if [ -s "$tmp/stty" ]; then
  grep -qE '(^| )icanon( |$)' "$tmp/stty" || fail "icanon not restored after BYE"
  grep -qE '(^| )echo( |$)' "$tmp/stty" || fail "echo not restored after BYE"
else
  fail "no stty record after exit"
fi

if [ "$failures" -eq 0 ]; then
  echo "shell on a terminal: all checks passed"
  exit 0
fi
echo "shell on a terminal: $failures check(s) failed"
exit 1
