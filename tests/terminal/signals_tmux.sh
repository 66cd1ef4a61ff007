#!/usr/bin/env bash
# The shell on a real terminal under job control (tmux and an interactive bash):
# background and piped runs never stop on the terminal's modes, output shows while
# a program pauses, Ctrl+Z and fg keep the right terminal modes, SIGTERM restores
# the terminal and ends with status 143.
# Usage: signals_tmux.sh path/to/basic    Exit status 0 when every check passed.
set -u
bin=${1:?usage: signals_tmux.sh path/to/basic}
. "$(dirname "$0")/tmux_lib.sh"

tm new-session -d -s t -x 100 -y 40 "env TERM=xterm PS1='$ ' bash --norc --noprofile -i"
wait_for '^\$'

# A file run in the background, and one piped into head from its own process
# group (timeout makes one), finish without touching the terminal's modes.
printf '10 FOR I=1 TO 3\n20 PRINT "LINE";I\n30 NEXT I\n' > "$tmp/three.bas"
printf '10 PRINT "LOOPING"\n20 GOTO 10\n' > "$tmp/loop.bas"
tm send-keys -t t "$bin $tmp/three.bas > $tmp/bg.out & wait \$!; echo BG-STATUS \$?" Enter
wait_for '^BG-STATUS' || true
screen | grep -q '^BG-STATUS 0$' || fail "a file run in the background did not finish with status 0"
grep -q '^LINE 3' "$tmp/bg.out" || fail "the background run's output is missing"
tm send-keys -t t "timeout 10 $bin $tmp/loop.bas | head -c 8; echo PIPE-STATUS \${PIPESTATUS[0]}" Enter
wait_for '^PIPE-STATUS' || true
screen | grep -q 'PIPE-STATUS 141$' || fail "a piped run from a background group did not end quietly"

# A shell started in the background waits for the terminal without taking its
# modes; fg gives it raw keys.
tm send-keys -t t "$bin &" Enter
wait_for '^READY$'
sleep 0.3
tm send-keys -t t 'fg' Enter
sleep 0.3
tm send-keys -t t 'WIDTH' Enter
wait_for '^Width is 72$'
tm send-keys -t t F3 Enter
wait_for '^Width is 72$' 2
tm send-keys -t t 'BYE' Enter
wait_for 'MINUTES OF TERMINAL TIME'
tm send-keys -t t "clear" Enter
sleep 0.3

tm send-keys -t t "$bin" Enter
wait_for '^READY$'

# A line printed before a pause shows at once, not when the run ends.
tm send-keys -t t '10 PRINT "STARTED"' Enter '20 SLEEP 6000' Enter 'RUN' Enter
for _ in $(seq 40); do screen | grep -q '^STARTED$' && break; sleep 0.05; done
screen | grep -q '^STARTED$' || fail "output printed before SLEEP did not show during it"
wait_for '^DONE$'

# Ctrl+Z at the prompt: the shell gets its modes back; fg gives raw keys again,
# so a typed line is echoed once, and the template keys work.
tm send-keys -t t C-z
wait_for 'Stopped'
tm send-keys -t t "stty -a > $tmp/stopped; fg" Enter
sleep 0.3
tm send-keys -t t 'WIDTH' Enter
wait_for '^WIDTH$'
wait_for '^Width is 72$'
tm send-keys -t t F3 Enter
wait_for '^Width is 72$' 2
grep -qE '(^| )icanon( |$)' "$tmp/stopped" || fail "icanon not restored while stopped"
grep -qE '(^| )echo( |$)' "$tmp/stopped" || fail "echo not restored while stopped"

# Ctrl+Z while a program runs; fg lets it finish.
tm send-keys -t t '20 SLEEP 1000' Enter 'RUN' Enter
wait_for '^STARTED$' 2
tm send-keys -t t C-z
wait_for 'Stopped' 2
tm send-keys -t t 'fg' Enter
wait_for '^DONE$' 2

# SIGTERM while a line is read in raw mode: the terminal is restored.
tm send-keys -t t 'LI'
sleep 0.2
# The pane's bash runs the shell as its one child: end that process, by its id.
kill -TERM "$(ps -o pid= --ppid "$(tm display -p -t t '#{pane_pid}')")"
wait_for '^\$ ' 2
tm send-keys -t t "echo status \$?; stty -a > $tmp/stty; echo STTY-DONE" Enter
wait_for '^STTY-DONE$'
screen | grep -q '^status 143$' || fail "SIGTERM did not end the shell with status 143"
grep -qE '(^| )icanon( |$)' "$tmp/stty" || fail "icanon not restored after SIGTERM"
grep -qE '(^| )echo( |$)' "$tmp/stty" || fail "echo not restored after SIGTERM"
finish "signals on a terminal"
