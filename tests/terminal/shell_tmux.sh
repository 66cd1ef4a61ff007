#!/usr/bin/env bash
# The shell on a real terminal (tmux): typing, the template keys, Ctrl+C at the
# prompt and while a program runs, and a sane terminal after BYE.
# Usage: shell_tmux.sh path/to/basic    Exit status 0 when every check passed.
set -u
bin=${1:?usage: shell_tmux.sh path/to/basic}
. "$(dirname "$0")/tmux_lib.sh"

start_pane 100 40

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
check_exit

# Keys typed before the shell is up are not lost to its question about the cursor.
tm kill-session -t t
tm new-session -d -s t -x 100 -y 40 "env -u BASIC_HISTORY TERM=xterm sh -c 'sleep 0.5; exec \"$bin\"'"
tm send-keys -t t 'WIDTH' Enter
wait_for '^Width is 72$'
tm send-keys -t t 'BYE' Enter

# A shell started below other output asks the terminal where the cursor is and
# goes on from there, not from the bottom row.
tm kill-session -t t 2>/dev/null
tm new-session -d -s t -x 100 -y 40 "env -u BASIC_HISTORY TERM=xterm sh -c 'printf \"one\\ntwo\\nthree\\n\"; exec \"$bin\"'"
wait_for '^READY$'
row=$(tm capture-pane -p -t t | grep -n '^Velo Basic' | cut -d: -f1)
[ "${row:-99}" -le 6 ] || fail "the banner starts on row ${row:-none}, not below the three lines"
tm send-keys -t t 'BYE' Enter
finish "shell on a terminal"
