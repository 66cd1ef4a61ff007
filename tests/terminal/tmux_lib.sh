# Shared by the real-terminal tests: a private tmux server with one pane "t"
# that runs a program, waits on what the pane shows, and checks the terminal
# modes left behind. Source it after setting `bin`, the program to run.
if ! command -v tmux >/dev/null 2>&1; then
  echo "SKIP: tmux is not installed"
  exit 0
fi
[ -x "$bin" ] || { echo "FAIL: $bin is not an executable"; exit 1; }
bin=$(cd "$(dirname "$bin")" && pwd)/$(basename "$bin")

tmp=$(mktemp -d)
sock="basic-term-$$"
tm() { tmux -L "$sock" -f /dev/null "$@"; }
cleanup() { tm kill-server >/dev/null 2>&1; rm -rf "$tmp"; }
trap cleanup EXIT

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
screen() { tm capture-pane -p -t t -S -200 2>/dev/null; }
# Waits until the pane shows pattern (grep -E) count times.
wait_for() {
  local pattern=$1 count=${2:-1}
  for _ in $(seq 600); do  # 30 s: a loaded machine can be slow to start a pane
    [ "$(screen | grep -cE -- "$pattern")" -ge "$count" ] && return 0
    sleep 0.05
  done
  fail "timed out waiting for '$pattern' x$count"
  screen | grep -v '^$' | tail -n 20 | sed 's/^/  | /'
  return 1
}

# Runs the program in a fresh pane; the wrapper shell outlives Ctrl+C, then
# records the exit status and the terminal modes. The line history goes to a
# scratch folder, and $tmp/bin comes first in the PATH.
start_pane() {  # columns rows
  tm new-session -d -s t -x "$1" -y "$2" \
    "env -u BASIC_HISTORY TERM=xterm XDG_STATE_HOME=\"$tmp/state\" PATH=\"$tmp/bin:$PATH\" sh -c 'trap : INT; \"$bin\"; echo \"status \$?\"; stty -a > \"$tmp/stty\"; echo STTY-DONE; sleep 30'"
}

# After the program ended: status 0, canonical input and echo back on.
check_exit() {
  wait_for '^STTY-DONE$' || true
  screen | grep -q '^status 0$' || fail "$(basename "$bin") did not exit with status 0"
  if [ -s "$tmp/stty" ]; then
    grep -qE '(^| )icanon( |$)' "$tmp/stty" || fail "icanon not restored after exit"
    grep -qE '(^| )echo( |$)' "$tmp/stty" || fail "echo not restored after exit"
  else
    fail "no stty record after exit"
  fi
}

# Prints the verdict and exits with it.
finish() {  # name
  if [ "$failures" -eq 0 ]; then
    echo "$1: all checks passed"
    exit 0
  fi
  echo "$1: $failures check(s) failed"
  exit 1
}
