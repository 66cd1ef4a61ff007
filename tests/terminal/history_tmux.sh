#!/usr/bin/env bash
# Line history on a real terminal (tmux): Up and Down in the shell and at INPUT, the
# shell's lines kept for the next run (INPUT answers are not), and a "#!" program run
# directly. Usage: history_tmux.sh path/to/basic    Exit status 0 when every check passed.
set -u
bin=${1:?usage: history_tmux.sh path/to/basic}
. "$(dirname "$0")/tmux_lib.sh"
basic=$bin
history="$tmp/state/basic/history"

# First run: Up brings back a shell line, and an INPUT answer at the next INPUT.
start_pane 100 40
tm new-session -d -s keep 'sleep 600'  # keeps the server while "t" is replaced
wait_for '^READY$'
tm send-keys -t t 'WIDTH' Enter
wait_for '^Width is 72$'
tm send-keys -t t Up Enter
wait_for '^Width is 72$' 2
tm send-keys -t t '10 INPUT A$' Enter '20 PRINT "GOT ";A$' Enter 'RUN' Enter
wait_for '^\?$'
tm send-keys -t t 'hello there' Enter
wait_for '^GOT hello there$'
tm send-keys -t t 'RUN' Enter
wait_for '^\?' 2
# The newest line is RUN, the one before it the first answer.
tm send-keys -t t Up Up Enter
wait_for '^GOT hello there$' 2
# Down past the newest line gives back what was being typed.
tm send-keys -t t 'LI' Up Up Down Down 'ST' Enter
wait_for '^   10   INPUT A\$$'
tm send-keys -t t 'BYE' Enter
check_exit
[ -s "$history" ] || fail "no history file at $history"
grep -q '^WIDTH$' "$history" || fail "shell line not kept"
grep -q 'hello' "$history" && fail "an INPUT answer was kept"
[ "$(stat -c %a "$history" 2>/dev/null)" = 600 ] || fail "history file is not private"

# Second run: the lines of the first are there, the newest last.
tm kill-session -t t
rm -f "$tmp/stty"
start_pane 100 40
wait_for '^READY$'
tm send-keys -t t Up
wait_for '^BYE$'
tm send-keys -t t Escape
# WIDTH, 10 INPUT A$, 20 PRINT ..., RUN, LIST, BYE: six lines back.
tm send-keys -t t Up Up Up Up Up Up Enter
wait_for '^Width is 72$'
tm send-keys -t t 'BYE' Enter
check_exit

# A program made executable runs through its "#!" line, reading the keyboard.
tm kill-session -t t
rm -f "$tmp/stty"
mkdir -p "$tmp/bin"
ln -s "$basic" "$tmp/bin/basic"
printf '#!/usr/bin/env basic\nINPUT "Your name? ",N$\nPRINT "Hello, ";N$\n' >"$tmp/greet.bas"
chmod +x "$tmp/greet.bas"
bin="$tmp/greet.bas"
start_pane 100 40
wait_for '^Your name\?'
tm send-keys -t t 'Ada' Enter
wait_for '^Hello, Ada$'
check_exit
finish "line history on a terminal"
