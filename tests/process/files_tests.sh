#!/usr/bin/env bash
# Files that must survive: SIGKILLs at random instants while data files are
# written (serially, by record, by MAT), created, and while programs are saved;
# two programs sharing a data file through LOCK, or without it; a file size
# limit. Bounded: under a minute. Usage: files_tests.sh path/to/basic [kills per kind]
set -u
basic=$(realpath "${1:?usage: files_tests.sh path/to/basic [kills]}")
kills=${2:-55}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# A random pause of 2 to 60 ms: the kill lands anywhere in a run's first instants.
pause() { sleep "0.0$(printf '%02d' $((RANDOM % 59 + 2)))"; }

# A writer must run without an error until it is stopped, or its kills test nothing.
runs_clean() {  # program
  local out
  out=$(timeout 0.5 "$basic" "$1" 2>&1)
  [ $? -eq 124 ] && [ -z "$out" ] || fail "$1 does not run until stopped: $out"
}

# Starts a command, kills it with SIGKILL after a random pause, and waits for it.
kill_during() {
  "$@" >/dev/null 2>&1 &
  local pid=$!
  pause
  kill -KILL $pid 2>/dev/null
  wait $pid 2>/dev/null
}

# --- Serial writes, PRINT # and MAT PRINT # in turn, flowing across records: every
# group of five items K*8+1..K*8+5 that a statement wrote is whole, or absent.
cat >serial_new.bas <<'BAS'
10 FILES *
20 CREATE R,"serial.dat",50,16
BAS
cat >serial_check.bas <<'BAS'
10 REM Items K*8+I, I=1 TO 5 in order; an older run's items follow a newer run's,
20 REM where the first group may have lost its start to the newer run
30 FILES serial.dat
40 ON END #1 THEN 200
50 N=0
60 READ #1;V
70 K=INT(V/8)
80 I=V-8*K
90 IF I<1 OR I>5 THEN 300
100 IF N=0 AND I=1 THEN 160
110 IF N=0 THEN 300
120 IF K=Q AND I=J+1 THEN 160
130 IF J=5 AND I=1 AND K>Q THEN 160
140 IF J=5 AND K<Q THEN 160
150 GOTO 300
160 N=N+1
170 Q=K
180 J=I
190 GOTO 60
200 IF N>0 AND J<>5 THEN 300
210 PRINT "OK"
220 STOP
300 PRINT "TORN AT ITEM";N+1;"OF RECORD";REC(1)
BAS
"$basic" serial_new.bas >/dev/null
base=1
for ((k = 0; k < kills; k++)); do
  cat >serial_write.bas <<BAS
10 FILES serial.dat
20 DIM G(5)
30 ON END #1 THEN 120
40 K=$base
50 FOR I=1 TO 5
60 G(I)=K*8+I
70 NEXT I
80 IF K-2*INT(K/2)=0 THEN PRINT #1;G(1),G(2),G(3),G(4),G(5)
90 IF K-2*INT(K/2)=1 THEN MAT PRINT #1;G
100 K=K+1
110 GOTO 50
120 READ #1,1
130 GOTO 50
BAS
  [ "$k" -eq 0 ] && runs_clean serial_write.bas
  kill_during "$basic" serial_write.bas
  result=$("$basic" serial_check.bas 2>&1)
  [ "$result" = OK ] || { fail "serial writes after kill $k: $result"; break; }
  base=$((base + 20000))
done

# --- Writes bound to a record, PRINT # and MAT PRINT # in turn, in records of 256
# words that often cross a page: each record holds one statement's 121 items.
cat >record_new.bas <<'BAS'
10 FILES *
20 CREATE R,"record.dat",60,256
BAS
cat >record_write.bas <<'BAS'
10 FILES record.dat
20 DIM M(120),S$(1)[12],C(60)
30 K=INT(RND(-TIM(0)-TIM(1)*60)*100000)
40 REM Half the writes go to the records that cross a page of the file
50 N=0
60 FOR R=1 TO 60
70 IF INT((32+(R-1)*544)/4096)=INT((31+R*544)/4096) THEN 100
80 N=N+1
90 C(N)=R
100 NEXT R
110 K=K+1
120 R=1+INT(ABS(RND(1))*60)
130 IF K-4*INT(K/4)<2 THEN R=C(1+INT(ABS(RND(1))*N))
140 IF K-2*INT(K/2)=1 THEN 200
150 MAT M=CON
160 MAT M=(K)*M
170 S$(1)=DEC$(K)
180 MAT PRINT #1,R;M,S$
190 GOTO 110
200 PRINT #1,R;K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,K,DEC$(K)
210 GOTO 110
BAS
cat >record_check.bas <<'BAS'
10 FILES record.dat
20 FOR R=1 TO 60
30 READ #1,R
40 IF TYP(1)=3 THEN 120
50 READ #1;A
60 FOR J=2 TO 120
70 READ #1;B
80 IF B<>A THEN 200
90 NEXT J
100 READ #1;S$
110 IF S$<>DEC$(A) OR TYP(1)<>4 AND TYP(1)<>3 THEN 200
120 NEXT R
130 PRINT "OK"
140 STOP
200 PRINT "TORN RECORD";R
BAS
"$basic" record_new.bas >/dev/null
runs_clean record_write.bas
for ((k = 0; k < kills; k++)); do
  kill_during "$basic" record_write.bas
  result=$("$basic" record_check.bas 2>&1)
  [ "$result" = OK ] || { fail "record writes after kill $k: $result"; break; }
done

# --- CREATE: a killed one leaves no file, or a whole one; never an empty one.
cat >create_loop.bas <<'BAS'
10 FILES *
20 PURGE R,"made.dat"
30 CREATE R,"made.dat",3000,256
40 GOTO 20
BAS
cat >create_check.bas <<'BAS'
10 FILES *
20 ASSIGN "made.dat",1,R
30 IF R=0 OR R=2 THEN PRINT "OK"
40 IF R<>0 AND R<>2 THEN PRINT "ASSIGN STATUS";R
BAS
runs_clean create_loop.bas
for ((k = 0; k < kills; k++)); do
  kill_during "$basic" create_loop.bas
  result=$("$basic" create_check.bas 2>&1)
  [ "$result" = OK ] || { fail "CREATE after kill $k: $result"; break; }
done

# --- SAVE: the file is always one whole program, the old or the new.
{
  for i in $(seq 100); do echo "$((i * 10)) REM LINE $i OF A PROGRAM THAT MUST STAY WHOLE"; done
  for i in $(seq 3000); do printf '1 REM VERSION %d\nSAVE whole.bas\n' "$i"; done
} >save_session.in
lines_ok() {  # a whole program: line 1, then the hundred lines
  [ "$(wc -l <whole.bas)" -eq 101 ] && head -1 whole.bas | grep -qE '^    1 REM VERSION [0-9]+$' &&
    [ "$(tail -1 whole.bas)" = " 1000 REM LINE 100 OF A PROGRAM THAT MUST STAY WHOLE" ]
}
for ((k = 0; k < kills; k++)); do
  "$basic" <save_session.in >/dev/null 2>&1 &
  pid=$!
  pause
  kill -KILL $pid 2>/dev/null
  wait $pid 2>/dev/null
  [ -e whole.bas ] || continue  # killed before its first SAVE
  lines_ok || { fail "SAVE after kill $k left: $(head -c 200 whole.bas | head -3)"; break; }
done

# --- Two programs, 20,000 LOCKed increments each, on one record: 40,000.
printf '10 FILES *\n20 CREATE R,"count.dat",1,8\n30 ASSIGN "count.dat",1,R\n40 PRINT #1,1;0\n' >count_new.bas
cat >increment.bas <<'BAS'
10 FILES count.dat
20 FOR I=1 TO 20000
30 LOCK #1
40 READ #1,1;X
50 PRINT #1,1;X+1
60 UNLOCK #1
70 NEXT I
BAS
printf '10 FILES count.dat\n20 READ #1,1;X\n30 PRINT X\n' >count_show.bas
"$basic" count_new.bas >/dev/null
"$basic" increment.bas &
first=$!
"$basic" increment.bas
wait $first
total=$("$basic" count_show.bas | tr -d ' ')
[ "$total" = "40000." ] || fail "two programs' LOCKed increments ended at $total, not 40000"

# LOCK waits while another program holds the lock, and Ctrl+C breaks the wait.
printf '10 FILES count.dat\n20 LOCK #1\n30 PRINT "HOLDING"\n40 SLEEP 5000\n' >hold.bas
printf '10 FILES count.dat\n20 LOCK #1\n30 PRINT "GOT IT"\n' >wait.bas
"$basic" hold.bas >hold.out &
holder=$!
for _ in $(seq 100); do grep -q HOLDING hold.out && break; sleep 0.05; done
"$basic" wait.bas >wait.out 2>&1 &
waiter=$!
sleep 0.5
grep -q "GOT IT" wait.out && fail "LOCK did not wait for the program that held it"
kill -INT $waiter
for _ in $(seq 40); do kill -0 $waiter 2>/dev/null || break; sleep 0.05; done
kill -0 $waiter 2>/dev/null && { fail "Ctrl+C did not break a LOCK that waits"; kill -KILL $waiter; }
wait $waiter 2>/dev/null
grep -q "^BREAK in statement number 20" wait.out || fail "a broken LOCK wait: $(cat wait.out)"
kill -KILL $holder 2>/dev/null
wait $holder 2>/dev/null
# The lock of a program that ended (here killed) is free again.
timeout 5 "$basic" wait.bas >wait.out 2>&1
grep -q "GOT IT" wait.out || fail "the lock of a killed program stayed taken"

# CHAIN closes the caller's files, so its lock is free for another program while
# the chained one runs on.
printf '10 FILES count.dat\n20 LOCK #1\n30 PRINT "HOLDING"\n40 CHAIN "sleeper.bas"\n' >chainer.bas
printf '10 PRINT "CHAINED"\n20 SLEEP 5000\n' >sleeper.bas
"$basic" chainer.bas >chainer.out &
chainer=$!
for _ in $(seq 100); do grep -q CHAINED chainer.out && break; sleep 0.05; done
timeout 3 "$basic" wait.bas >wait.out 2>&1
grep -q "GOT IT" wait.out || fail "a program that chained still held its lock"
kill -KILL $chainer 2>/dev/null
wait $chainer 2>/dev/null

# Without LOCK: a record is read afresh when the pointer enters it, and a write
# changes only the items written, not the other program's.
printf '10 FILES *\n20 CREATE R,"share.dat",2,16\n30 ASSIGN "share.dat",1,R\n40 PRINT #1,1;1,2,3\n' >share_new.bas
cat >share_a.bas <<'BAS'
10 FILES share.dat,share.dat
20 READ #1,1;X
30 REM The other program writes item 3 and then a flag in record 2
40 READ #2,2
50 IF TYP(2)=3 THEN 40
60 UPDATE #1;20
70 READ #2,1;A,B,C
80 PRINT A;B;C
BAS
printf '10 FILES share.dat\n20 READ #1,1;X,Y\n30 UPDATE #1;30\n40 PRINT #1,2;1\n' >share_b.bas
"$basic" share_new.bas >/dev/null
timeout 10 "$basic" share_a.bas >share.out &
reader=$!
sleep 0.3
"$basic" share_b.bas
wait $reader
[ "$(tr -s ' ' <share.out)" = " 1 20 30 " ] || fail "a write without LOCK changed others' items: $(cat share.out)"

# --- A file size limit: SAVE, CREATE and PRINT # fail with a clear message, and the
# shell goes on with its program (the limit's signal once ended the process).
long=$(printf 'LONGER THAN THE LIMIT %.0s' $(seq 60))
cat >limit.in <<BAS
10 FILES *
20 CREATE R,"small.dat",1,8
30 PRINT "SMALL";R
40 CREATE R,"large.dat",4000,256
50 PRINT "LARGE";R
RUN
SAVE limited.bas
100 REM A LINE $long
SAVE limited.bas
LIST 100
BAS
# The output goes through a pipe: the limit must not cut the test's own file.
( ulimit -f 1 && exec "$basic" <limit.in ) 2>&1 | cat >limit.out
status=${PIPESTATUS[0]}
[ "$status" -eq 0 ] || fail "a file size limit ended the shell with status $status"
grep -q '^SMALL 0 ' limit.out || fail "a small CREATE under a size limit failed"
grep -q '^LARGE 3 ' limit.out || fail "a CREATE past the size limit did not answer 3"
grep -q '^Cannot write limited.bas: File too large\.$' limit.out ||
  fail "SAVE past the size limit did not say why: $(grep -i limited limit.out)"
grep -q '^  100   REM A LINE' limit.out || fail "the program was lost after a failed SAVE"
printf '10 FILES *\n20 CREATE R,"far.dat",40,256\n' >far_new.bas
printf '10 FILES far.dat\n20 PRINT #1,1;1\n30 PRINT "NEAR"\n40 PRINT #1,40;2\n' >far_write.bas
"$basic" far_new.bas >/dev/null
( ulimit -f 8 && exec "$basic" far_write.bas ) 2>&1 | cat >far.out
grep -q '^ERROR Disk full or file too large in statement number 40' far.out ||
  fail "PRINT # past the size limit: $(cat far.out)"

if [ "$failures" -eq 0 ]; then
  echo "files tests: all checks passed ($((kills * 4)) kills)"
  exit 0
fi
echo "files tests: $failures check(s) failed"
exit 1
