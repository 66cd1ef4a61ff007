#!/usr/bin/env bash
# The interpreter as a process: lost output, ending signals, output that must
# be seen while a program still runs, inputs that never end, memory that
# cannot be had. Usage: process_tests.sh path/to/basic
set -u
basic=$(realpath "${1:?usage: process_tests.sh path/to/basic}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
# Sanitizers reserve terabytes of address space: memory limits cannot apply.
sanitized=0
grep -qa __asan_init "$basic" && sanitized=1

# Seconds since the epoch, with fractions.
now() { date +%s.%N; }
elapsed_below() {  # start limit
  awk -v s="$1" -v e="$(now)" -v l="$2" 'BEGIN { exit !(e - s < l) }'
}
# Waits up to 5 s for a file to hold a pattern.
wait_for() {  # file pattern
  for _ in $(seq 100); do
    grep -q -- "$2" "$1" 2>/dev/null && return 0
    sleep 0.05
  done
  return 1
}

# The reader of standard output goes away: the shell goes on, and SAVE still happens.
printf '10 FOR I=1 TO 5000\n20 PRINT "LINE";I\n30 NEXT I\nRUN\nSAVE after.bas\nBYE\n' >lost.in
"$basic" <lost.in | head -c 100 >/dev/null
status=${PIPESTATUS[0]}
[ "$status" -eq 0 ] || fail "shell with a closed output ended with status $status"
[ -s after.bas ] || fail "SAVE after the output was closed did not happen"

# A command-line run that loses its output ends quietly, as SIGPIPE would end it.
printf '10 PRINT "X";\n20 GOTO 10\n' >loop.bas
start=$(now)
timeout 10 "$basic" loop.bas | head -c 10 >/dev/null
status=${PIPESTATUS[0]}
[ "$status" -eq 141 ] || fail "command-line run with a closed output: status $status, not 141"
elapsed_below "$start" 5 || fail "command-line run with a closed output took too long"

# Waits up to 5 s for a process to end; one that does not is killed.
ended() {  # pid
  for _ in $(seq 100); do
    kill -0 "$1" 2>/dev/null || return 0
    sleep 0.05
  done
  kill -KILL "$1" 2>/dev/null
  return 1
}

# Output is seen as soon as it is printed, before a pause or a long computation,
# through a pipe; SIGTERM and SIGHUP flush it and end with 128 + the signal. A
# SIGHUP ignored on entry (nohup) stays ignored, so that case needs it live.
printf '10 PRINT "STARTED"\n20 SLEEP 20000\n30 PRINT "NEVER"\n' >sleep.bas
printf '10 PRINT "STARTED";\n20 FOR I=1 TO 1E9\n30 NEXT I\n' >compute.bas
cases=("sleep.bas TERM 143" "compute.bas HUP 129")
if (((0x$(awk '/^SigIgn/ { print $2 }' /proc/$$/status) & 1) != 0)); then
  echo "SKIP: SIGHUP is ignored here; compute.bas is ended by SIGTERM"
  cases[1]="compute.bas TERM 143"
fi
for case in "${cases[@]}"; do
  set -- $case
  rm -f out.txt
  "$basic" "$1" > >(cat >out.txt) &
  pid=$!
  wait_for out.txt STARTED || fail "$1: output through a pipe not seen while the program runs"
  start=$(now)
  kill -"$2" $pid
  ended $pid || fail "$1: SIG$2 did not end the run"
  { wait $pid; } 2>/dev/null
  status=$?
  [ "$status" -eq "$3" ] || fail "$1: SIG$2 ended the run with status $status, not $3"
  elapsed_below "$start" 3 || fail "$1: SIG$2 did not end the run promptly"
  grep -q NEVER out.txt && fail "$1: the run went on after SIG$2"
done
"$basic" sleep.bas >out.txt &
pid=$!
wait_for out.txt STARTED || fail "output to a file not seen during SLEEP"
kill -TERM $pid
ended $pid || fail "SIGTERM during SLEEP did not end the run"
{ wait $pid; } 2>/dev/null
status=$?
[ "$status" -eq 143 ] || fail "SIGTERM during SLEEP ended with status $status, not 143"

# A pause too long to count is still a pause (it once wrapped to none at all).
printf '10 SLEEP 1E38\n20 PRINT "WOKE"\n' >forever.bas
"$basic" forever.bas >forever.out &
pid=$!
sleep 1
kill -0 $pid 2>/dev/null || fail "SLEEP 1E38 did not pause"
kill -TERM $pid 2>/dev/null
ended $pid || fail "SIGTERM did not end SLEEP 1E38"
{ wait $pid; } 2>/dev/null
grep -q WOKE forever.out && fail "SLEEP 1E38 ended before the run was stopped"

# GET never blocks on a FIFO without a writer; a line that never ends is cut
# in bounded memory, and the session goes on.
mkfifo fifo
printf 'GET fifo\nGET .\nBYE\n' | timeout 5 "$basic" >get.out
grep -q '^Unable to open fifo\.$' get.out || fail "GET of a FIFO did not answer at once"
grep -q '^Unable to open \.\.$' get.out || fail "GET of a folder is not refused with a whole line"
{ head -c 30000000 /dev/zero | tr '\0' 'x'; printf '\nPRINT "ALIVE"\n'; } >endless.in
printf '10 PRINT 1\nRUN\n' >>endless.in
if command -v /usr/bin/time >/dev/null && [ "$sanitized" -eq 0 ]; then
  /usr/bin/time -f '%M' -o rss.txt timeout 20 "$basic" <endless.in >endless.out
  [ "$(cat rss.txt)" -lt 16000 ] || fail "an endless piped line used $(cat rss.txt) KB"
else
  timeout 20 "$basic" <endless.in >endless.out
fi
grep -q '^DONE$' endless.out || fail "the session did not go on after an endless line"

# Memory that cannot be had: "Not enough memory", and the program stays.
if [ "$sanitized" -eq 0 ]; then
  cat >oom.in <<'BAS'
10 A$="X"
20 FOR I=1 TO 26
30 A$=A$+A$
40 NEXT I
RUN
20 DIM B(16000000)
RUN
LIST
BAS
  (ulimit -v 100000 && "$basic" <oom.in >oom.out 2>&1)
  grep -q '^ERROR Not enough memory in line 30$' oom.out || fail "a string beyond memory"
  grep -q '^ERROR Not enough memory in line 20$' oom.out || fail "an array beyond memory"
  grep -q '^   20   DIM B(16000000)$' oom.out || fail "the program was lost after a memory error"
fi

if [ "$failures" -eq 0 ]; then
  echo "process tests: all checks passed"
  exit 0
fi
echo "process tests: $failures check(s) failed"
exit 1
