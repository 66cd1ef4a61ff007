#!/usr/bin/env bash
# The editing and run commands on a real terminal (tmux): EDIT with the editing
# keys and Escape, AUTO ended by Escape, Ctrl+C and a line that is there,
# CONTINUE after Ctrl+C, and CATALOG paging at the height of the window.
# Usage: commands_tmux.sh path/to/basic    Exit status 0 when every check passed.
set -u
bin=${1:?usage: commands_tmux.sh path/to/basic}
. "$(dirname "$0")/tmux_lib.sh"

# A library of more files than the window has lines.
mkdir -p "$tmp/lib"
for i in $(seq 10 39); do printf '10 REM %s\n' "$i" >"$tmp/lib/prog$i.bas"; done
export BASIC_LIB="$tmp/lib"
start_pane 100 16
wait_for '^READY$'
# CLS, and the pane's history forgotten: what follows is all the pane shows.
fresh() {
  tm send-keys -t t 'CLS' Enter
  for _ in $(seq 100); do
    [ -z "$(screen | tr -d ' \n')" ] && break
    sleep 0.05
  done
  tm clear-history -t t
}

# EDIT: the listing stands on the line; Backspace walks back, typing replaces.
tm send-keys -t t '10 PRINT "HELLO"' Enter 'EDIT 10' Enter
wait_for '^10 PRINT "HELLO"$' 2
tm send-keys -t t BSpace BSpace BSpace BSpace BSpace BSpace 'WORLD"' Enter
tm send-keys -t t 'LIST' Enter
wait_for '^   10   PRINT "WORLD"$'
# Back to the number: a changed number stores a copy; F3 copies the rest.
fresh
tm send-keys -t t 'EDIT 10' Enter
wait_for '^10 PRINT "WORLD"$'
for _ in $(seq 16); do tm send-keys -t t BSpace; done
tm send-keys -t t '2' F3 Enter
tm send-keys -t t 'LIST' Enter
wait_for '^   20   PRINT "WORLD"$'
wait_for '^   10   PRINT "WORLD"$'
# Escape leaves the line as it was.
fresh
tm send-keys -t t 'EDIT 20' Enter
wait_for '^20 PRINT "WORLD"$'
tm send-keys -t t BSpace BSpace 'X'
sleep 0.2
tm send-keys -t t Escape
wait_for '^20 PRINT "WORLX@$'
tm send-keys -t t 'LIST 20' Enter
wait_for '^   20   PRINT "WORLD"$'

# AUTO: Escape ends it, as Ctrl+C does; a line that is there stops it.
fresh
tm send-keys -t t 'AUTO 100,5' Enter
wait_for '^100 ?$'
tm send-keys -t t 'A=1' Enter
wait_for '^105 ?$'
sleep 0.2
tm send-keys -t t Escape
wait_for '^105 @$'
tm send-keys -t t 'AUTO 200' Enter
wait_for '^200 ?$'
tm send-keys -t t C-c
wait_for '^BREAK$'
tm send-keys -t t 'AUTO 95,5' Enter
wait_for '^95 ?$'
tm send-keys -t t 'B=2' Enter
wait_for '^Line 100 exists: AUTO stops.$'
tm send-keys -t t 'LIST 95-105' Enter
wait_for '^   95   B=2$'
wait_for '^  100   A=1$'

# CONTINUE after Ctrl+C goes on with the count where it stopped.
tm send-keys -t t 'NEW' Enter
fresh
tm send-keys -t t '10 I=0' Enter '20 I=I+1' Enter '30 SLEEP 10' Enter '40 IF I<5000 THEN 20' \
  Enter '50 PRINT "LOOP DONE"' Enter 'RUN' Enter
sleep 0.5
tm send-keys -t t C-c
wait_for '^BREAK in line (20|30|40)$'
tm send-keys -t t 'PRINT "AT";I' Enter
wait_for '^AT [0-9]+'
first=$(screen | sed -n 's/^AT \([0-9][0-9]*\).*/\1/p' | tail -n 1)
tm send-keys -t t 'CONTINUE' Enter
sleep 0.5
tm send-keys -t t C-c
wait_for '^BREAK in line (20|30|40)$' 2
tm send-keys -t t 'PRINT "NOW";I' Enter
wait_for '^NOW [0-9]+'
now=$(screen | sed -n 's/^NOW \([0-9][0-9]*\).*/\1/p' | tail -n 1)
[ -n "$first" ] && [ -n "$now" ] && [ "$now" -gt "$first" ] ||
  fail "CONTINUE did not go on from $first (now $now)"
tm send-keys -t t '40 IF I<5 THEN 20' Enter 'CONT' Enter
wait_for '^Cannot continue: the program was changed\.$'

# CATALOG pages at the window's height: Enter shows more, Escape stops.
fresh
tm send-keys -t t 'CATALOG $' Enter
wait_for '^--More--'
screen | grep -q 'prog39\.bas' && fail "CATALOG did not stop at the window's height"
# A page fills the window exactly: the command stays on its top row.
tm capture-pane -p -t t | head -n 1 | grep -q '^CATALOG \$' ||
  fail "the first page pushed the command off the window: $(tm capture-pane -p -t t | head -n 1)"
tm send-keys -t t Enter
wait_for '^--More--' 2
sleep 0.2
tm send-keys -t t Escape
wait_for '^--More--@$'
tm send-keys -t t 'PRINT "PROMPT BACK"' Enter
wait_for '^PROMPT BACK$'
screen | grep -q 'prog39\.bas' && fail "CATALOG went on after Escape"

tm send-keys -t t 'BYE' Enter
check_exit
finish "commands on a terminal"
