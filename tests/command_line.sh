#!/usr/bin/env bash
# The command line as a user meets it: help and version, the usage error, and a
# program file run directly through its "#!" line.
# Usage: command_line.sh path/to/basic    Exit status 0 when every check passed.
set -u
basic=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

expect() {  # name expected-status expected-output command...
  local name=$1 status=$2 expected=$3
  shift 3
  local out rc
  out=$("$@" 2>&1 </dev/null)
  rc=$?
  if [ "$rc" != "$status" ] || [ "$out" != "$expected" ]; then
    echo "--- FAIL: $name (status $rc, expected $status)"
    diff <(printf '%s\n' "$expected") <(printf '%s\n' "$out") | head -n 20
    failures=$((failures + 1))
  fi
}

usage="Usage: basic [--classic] [--strict] [--sandbox DIR] [<program file>]
Without a file, basic starts its interactive shell: type HELP there.
With one, it loads, links and runs the program, then exits.
  --classic     run old listings as classic systems did: their IMAGE formats,
                FOR and NEXT, mixed brackets, substring stores (HELP CLASSIC)
  --strict      a run that fails, or a file that does not load, exits with
                status 1 and writes its error report to standard error
  --sandbox DIR every file the program or the shell opens, creates, removes
                or chains to must lie in DIR or below it (also BASIC_SANDBOX)
  -h, --help    show this text
  --version     show the version
See basic(1) for the shell commands, the line editor and the files."
expect "-h" 0 "$usage" "$basic" -h
expect "--help" 0 "$usage" "$basic" --help
expect "--version" 0 "Velo Basic V0.94.0.154" "$basic" --version
expect "two arguments" 255 "
Velo Basic V0.94.0.154 for POSIX terminals
Structured HP 2000 BASIC with graphics windows

Usage: Basic [<Src>]" "$basic" a b
expect "unknown option is a file name" 255 "
Velo Basic V0.94.0.154 for POSIX terminals
Structured HP 2000 BASIC with graphics windows

Unable to open -x." "$basic" -x

# --classic changes the length a first-position substring store leaves.
printf '10 A$="ABCDEFG"\n20 A$[3]="XY"\n30 PRINT A$;"|"\n' >"$work/classic.bas"
expect "default substring store" 0 "ABXYE|" "$basic" "$work/classic.bas"
expect "--classic substring store" 0 "ABXY|" "$basic" --classic "$work/classic.bas"

# --classic with no file starts the shell with the switch on.
banner="
Velo Basic V0.94.0.154 for POSIX terminals
Structured HP 2000 BASIC with graphics windows

HELP is available

READY
"
classic_shell() { printf 'CLASSIC\nBYE\n' | "$basic" "$@" | head -n 10; }
expect "--classic shell" 0 "$banner
CLASSIC
Classic is ON" classic_shell --classic
expect "shell without --classic" 0 "$banner
CLASSIC
Classic is OFF" classic_shell

# --strict: status 1 and the report on standard error for a failed run, a bad line
# and a missing file; a run that ends well, or by STOP, stays 0. Without it, 0.
printf '10 PRINT "PARTIAL";\n20 X=Y\n' >"$work/fails.bas"
printf '10 PRIN X\n' >"$work/bad.bas"
printf '10 PRINT "FINE"\n20 STOP\n' >"$work/fine.bas"
stdout_only() { "$@" 2>/dev/null; }
stderr_only() { "$@" 2>&1 >/dev/null; }
report='
ERROR Undefined value accessed in statement number 20 in file "'"$work"'/fails.bas"'
expect "--strict failed run: output" 1 "PARTIAL" stdout_only "$basic" --strict "$work/fails.bas"
expect "--strict failed run: report" 1 "$report" stderr_only "$basic" --strict "$work/fails.bas"
expect "failed run without --strict" 0 "PARTIAL$report" "$basic" "$work/fails.bas"
expect "--strict bad line" 1 "" stdout_only "$basic" --strict "$work/bad.bas"
expect "--strict missing file" 1 "" stdout_only "$basic" --strict "$work/none.bas"
expect "--strict with --classic" 0 "FINE" "$basic" --strict --classic "$work/fine.bas"

# A script made executable runs through /usr/bin/env; its line numbers are the file's.
mkdir "$work/bin"
ln -s "$basic" "$work/bin/basic"
printf '#!/usr/bin/env basic\nPRINT "hello from a script"\nX = Y\n' >"$work/hello.bas"
chmod +x "$work/hello.bas"
expect "#! script" 0 'hello from a script

ERROR Undefined value accessed in file line 3 in file "'"$work"'/hello.bas"' \
  env PATH="$work/bin:$PATH" "$work/hello.bas"

# Library names: "$" and "*" name the folders of BASIC_LIB and BASIC_GROUP; a file is
# found by its name, with .bas, or ignoring case; a missing folder and two matching
# files are named.
mkdir -p "$work/lib/group" "$work/lib/system"
printf '10 PRINT "TREK0 OF THE GROUP"\n20 CHAIN "$HELPER"\n' >"$work/lib/group/TREK0"
printf '10 PRINT "HELPER OF THE SYSTEM"\n' >"$work/lib/system/helper.bas"
libs() { (cd "$work" && BASIC_LIB=lib/system BASIC_GROUP=lib/group "$basic" "$@"); }
expect "a program of the group library" 0 "TREK0 OF THE GROUP
HELPER OF THE SYSTEM" libs '*TREK0'
nolib() { (cd "$work" && BASIC_GROUP="$work/nogroup" "$basic" "$@"); }
expect "a group library that is not there" 255 "
Velo Basic V0.94.0.154 for POSIX terminals
Structured HP 2000 BASIC with graphics windows

Unable to open *TREK0 (group library $work/nogroup not found)." nolib '*TREK0'
printf '10 CHAIN "*TREK0"\n' >"$work/chains.bas"
expect "CHAIN into a group library that is not there" 0 "
ERROR Unable to open chain target (group library $work/nogroup not found) in statement number 10 in file \"chains.bas\"" nolib chains.bas
expect "FILES of a group library that is not there" 0 "
ERROR File not found (group library $work/nogroup not found) in statement number 10" \
  nolib <(printf '10 FILES *ZZ\n')
printf '10 PRINT "ADREAD"\n' >"$work/adread.bas"
printf '10 CHAIN "ADREAD"\n' >"$work/upper.bas"
expect "a program found ignoring case and with .bas" 0 "ADREAD" libs upper.bas
cp "$work/adread.bas" "$work/ADREAD.BAS"
expect "two programs that match ignoring case" 0 "
ERROR Ambiguous file name (both ADREAD.BAS and adread.bas match) in statement number 10 in file \"upper.bas\"" \
  libs upper.bas
getting() { printf 'GET %s\nSAVE *Saved\n' "$1" | (cd "$work" && BASIC_GROUP="$2" "$basic") | sed -n '10p;12,13p'; }
expect "GET and SAVE name the missing folder and the two matches" 0 "Unable to open Adread (both ADREAD.BAS and adread.bas match).
Cannot open *Saved for output (group library $work/nogroup not found).
Unable to open *Saved." getting Adread "$work/nogroup"
getting adread.bas lib/group >/dev/null
[ -f "$work/lib/group/Saved" ] || { echo "--- FAIL: SAVE *Saved wrote no lib/group/Saved"; failures=$((failures + 1)); }
# APPEND and MERGE find their files as GET does; CATALOG names a missing library.
printf '100 PRINT "TAIL"\n' >"$work/lib/group/tail.bas"
merging() { printf 'NEW\n5 PRINT "FIRST"\nAPPEND *Tail\nMERGE $HELPER\nLIST\n' | libs | sed -n '15,17p'; }
expect "APPEND and MERGE of library files" 0 "    5   PRINT \"FIRST\"
   10   PRINT \"HELPER OF THE SYSTEM\"
  100   PRINT \"TAIL\"" merging
missing() { printf 'APPEND *Tail\nMERGE *Tail\nCATALOG *\n' | nolib | sed -n '10p;12p;14p'; }
expect "APPEND, MERGE and CATALOG of a missing library" 0 "Unable to open *Tail (group library $work/nogroup not found).
Unable to open *Tail (group library $work/nogroup not found).
Unable to open $work/nogroup." missing

# Each run seeds RND from the clock to the microsecond and the process: twenty
# rolls of a die started one after another show at least four faces.
printf '10 PRINT INT(RND(0)*6)+1\n' >"$work/die.bas"
faces=$(for _ in $(seq 20); do "$basic" "$work/die.bas"; done | sort -u | wc -l)
if [ "$faces" -lt 4 ]; then
  echo "--- FAIL: twenty runs rolled only $faces different faces"
  failures=$((failures + 1))
fi

# Without a display the windows are drawn off-screen: the program goes on, and
# standard error says why, once.
printf '10 WINDOW @1;100,100\n20 LINETO @1;10,10\n30 WINDOW @2;50,50\n40 PRINT "DRAWN"\n' \
  >"$work/draw.bas"
nodisplay() { env -u DISPLAY -u WAYLAND_DISPLAY SDL_VIDEODRIVER=x11 timeout 20 "$@"; }
expect "no display: the program runs" 0 "DRAWN" stdout_only nodisplay "$basic" "$work/draw.bas"
notices=$(nodisplay "$basic" "$work/draw.bas" 2>&1 >/dev/null |
  grep -c '^basic: graphics windows are drawn off-screen only (.*)$')
if [ "$notices" != 1 ]; then
  echo "--- FAIL: no display: $notices notices instead of one"
  failures=$((failures + 1))
fi

# A window open while the program sleeps costs next to no processor time: the
# window thread waits for requests, it does not spin.
printf '10 WINDOW @1;100,100\n20 LINETO @1;10,10\n30 SLEEP 1000\n' >"$work/idle.bas"
cpu=$( { TIMEFORMAT='%U %S'; time SDL_VIDEODRIVER=dummy "$basic" "$work/idle.bas" >/dev/null 2>&1; } 2>&1)
if ! awk -v t="$cpu" 'BEGIN { split(t, p, " "); exit !(p[1] + p[2] < 0.4) }'; then
  echo "--- FAIL: a window open during SLEEP 1000 took $cpu s of processor time"
  failures=$((failures + 1))
fi

# Output through a pipe shows while the program still computes, down to one
# character without a line end: a prompt that must be seen before a long wait.
printf '10 PRINT "?";\n20 GOTO 20\n' >"$work/busy.bas"
mkfifo "$work/pipe"
"$basic" "$work/busy.bas" >"$work/pipe" &
busy=$!
got=
IFS= read -r -t 2 -n 1 got <"$work/pipe"
kill "$busy"
wait "$busy" 2>/dev/null
if [ "$got" != "?" ]; then
  echo "--- FAIL: one character printed before a loop was not seen within 2 s"
  failures=$((failures + 1))
fi

if [ "$failures" -eq 0 ]; then
  echo "command line: all checks passed"
  exit 0
fi
echo "command line: $failures check(s) failed"
exit 1
