#!/usr/bin/env bash
# Drives the line editor on a real terminal (tmux) through the line_echo test program.
# Usage: editor_tmux.sh path/to/line_echo    Exit status 0 when every check passed.
set -u
bin=${1:?usage: editor_tmux.sh path/to/line_echo}
. "$(dirname "$0")/tmux_lib.sh"

start_pane 80 30

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
check_exit
finish editor_tmux
