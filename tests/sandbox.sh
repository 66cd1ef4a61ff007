#!/usr/bin/env bash
# --sandbox DIR and BASIC_SANDBOX: every file a program or the shell opens,
# creates, removes or chains to stays in DIR and below. One check per way out
# (an absolute name, "..", a link to a file, a link to a folder) for each kind of
# file (GET, SAVE, CHAIN, the command line's file, FILES, ASSIGN, CREATE, PURGE,
# text files, pictures), and the ways that stay inside keep working.
# Usage: sandbox.sh path/to/basic    Exit status 0 when every check passed.
set -u
basic=$(realpath "${1:?usage: sandbox.sh path/to/basic}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
unset DISPLAY WAYLAND_DISPLAY SDL_VIDEODRIVER

# The sandbox "box" and, beside it, "outside" with a program and a data file.
mkdir -p "$work/box/sub" "$work/outside"
cd "$work/box" || exit 1
printf '10 PRINT "OUTSIDE RAN"\n' >../outside/secret.bas
printf '10 PRINT "INSIDE RAN"\n' >inside.bas
printf '10 FILES *\n20 CREATE R,"kept.dat",1,8\n' >../outside/make.bas
(cd ../outside && "$basic" make.bas)
ln -s ../outside/secret.bas file_link.bas
ln -s ../outside/kept.dat data_link.dat
ln -s ../outside folder_link
ln -s ../outside/planted.dat planted.dat  # names nothing yet
ln -s ../inside.bas sub/inside_link.bas
outside_before=$(ls -la ../outside | md5sum)

# Names that lead outside: absolute, "..", a link to a file, a link to a folder.
ways_out=("$work/outside/secret.bas" "../outside/secret.bas" "file_link.bas" "folder_link/secret.bas")
data_out=("$work/outside/kept.dat" "../outside/kept.dat" "data_link.dat" "folder_link/kept.dat")

# The command line's file.
for name in "${ways_out[@]}"; do
  out=$("$basic" --sandbox . "$name" 2>&1)
  [[ $out == *"Unable to open $name (outside the sandbox)."* ]] ||
    fail "the command line ran $name: $out"
done
[ "$("$basic" --sandbox . sub/inside_link.bas)" = "INSIDE RAN" ] ||
  fail "a link inside the sandbox to a file inside it was refused"
[ "$("$basic" --sandbox "$work/box" "$work/box/inside.bas")" = "INSIDE RAN" ] ||
  fail "an absolute name inside the sandbox was refused"
[ "$(BASIC_SANDBOX=. "$basic" ../outside/secret.bas 2>&1 | tail -1)" = \
  "Unable to open ../outside/secret.bas (outside the sandbox)." ] ||
  fail "BASIC_SANDBOX does not confine the command line's file"

# The shell: GET and SAVE each way out, and inside.
{
  for name in "${ways_out[@]}"; do echo "GET $name"; done
  echo "10 PRINT \"SAVED\""
  for name in "${ways_out[@]}"; do echo "SAVE $name"; done
  echo "SAVE folder_link/new.bas"
  echo "SAVE sub/saved.bas"
  echo "GET sub/saved.bas"
  echo "LIST"
} >shell.in
"$basic" --sandbox . <shell.in >shell.out 2>&1
for name in "${ways_out[@]}"; do
  grep -qxF "Unable to open $name (outside the sandbox)." shell.out || fail "GET $name was not refused"
  grep -qxF "Cannot open $name for output (outside the sandbox)." shell.out ||
    fail "SAVE $name was not refused"
done
grep -qxF "Cannot open folder_link/new.bas for output (outside the sandbox)." shell.out ||
  fail "SAVE of a new file through a folder link was not refused"
grep -q "OUTSIDE" shell.out && fail "GET loaded a file outside the sandbox"
[ -f sub/saved.bas ] && grep -q '^   10   PRINT "SAVED"$' shell.out ||
  fail "SAVE and GET inside the sandbox: $(cat shell.out)"

# Programs: CHAIN, FILES, ASSIGN, CREATE and PURGE each way out are refused
# with "File outside the sandbox"; CHAIN with a status variable gets its code.
run_line() {  # statement -> what a program of that one line prints
  printf '10 %s\n' "$1" >one.bas
  "$basic" --sandbox . one.bas 2>&1
}
refused() {  # statement
  local out
  out=$(run_line "$1")
  [[ $out == *"ERROR File outside the sandbox in statement number 10"* ]] ||
    fail "$1 was not refused: $out"
}
for i in 0 1 2 3; do
  refused "CHAIN \"${ways_out[$i]}\""
  refused "FILES ${data_out[$i]}"
  refused "ASSIGN \"${data_out[$i]}\",1,R"
  refused "PURGE R,\"${data_out[$i]}\""
  refused "CREATE R,\"${data_out[$i]}\",1,8"
  # Text files: the program outside as one, and made or appended to.
  refused "FILES ${ways_out[$i]}"
  refused "ASSIGN \"${ways_out[$i]}\",1,R,\"TEXT\""
  refused "ASSIGN \"${ways_out[$i]}\",1,R,\"APPEND\""
done
refused "CREATE R,\"planted.dat\",1,8"
refused "ASSIGN \"planted.dat\",1,R,\"TEXT\""
refused "ASSIGN \"folder_link/new.txt\",1,R,\"APPEND\""
printf '10 CHAIN R,"file_link.bas"\n20 PRINT "STATUS";R\n' >status.bas
[ "$("$basic" --sandbox . status.bas | tr -s ' ')" = "STATUS 2012 " ] ||
  fail "CHAIN with a status variable: $("$basic" --sandbox . status.bas)"
[ "$("$basic" --sandbox=. status.bas | tr -s ' ')" = "STATUS 2012 " ] ||
  fail "--sandbox=DIR: $("$basic" --sandbox=. status.bas)"
printf '10 FILES *\n20 CREATE R,"sub/in.dat",1,8\n30 ASSIGN "sub/in.dat",1,S\n40 PRINT R;S\n' >in.bas
printf '50 CHAIN "sub/inside_link.bas"\n' >>in.bas
[ "$("$basic" --sandbox . in.bas | tr -s ' ')" = $' 0 0 \nINSIDE RAN' ] ||
  fail "files inside the sandbox: $("$basic" --sandbox . in.bas)"

# Pictures go only to a folder inside the sandbox.
printf '10 WINDOW @1; 8,8\n20 MOVETO @1; 0,0\n30 LINETO @1; 7,7\n40 UPDATE @1\n' >draw.bas
BASIC_GDI_DUMP=../outside "$basic" --sandbox . draw.bas >/dev/null 2>&1
[ -e ../outside/gdi1.ppm ] && fail "a picture was written outside the sandbox"
BASIC_GDI_DUMP=folder_link "$basic" --sandbox . draw.bas >/dev/null 2>&1
[ -e ../outside/gdi1.ppm ] && fail "a picture was written through a folder link"
BASIC_GDI_DUMP=sub "$basic" --sandbox . draw.bas >/dev/null 2>&1
[ -s sub/gdi1.ppm ] || fail "a picture inside the sandbox was not written"

[ "$(ls -la ../outside | md5sum)" = "$outside_before" ] ||
  fail "the folder outside the sandbox changed: $(ls -la ../outside)"

# The library folders count as inside the sandbox: the one who starts basic names them.
mkdir -p "$work/group"
printf '10 PRINT "GROUP PROGRAM RAN"\n' >"$work/group/trek0.bas"
printf '10 FILES *\n20 CREATE R,"*ZZ",1,8\n30 ASSIGN "*zz",1,S\n40 PRINT R;S\n50 CHAIN "*TREK0"\n' >lib.bas
[ "$(BASIC_GROUP="$work/group" "$basic" --sandbox . lib.bas | tr -s ' ')" = $' 0 0 \nGROUP PROGRAM RAN' ] ||
  fail "a group library outside the sandbox: $(BASIC_GROUP="$work/group" "$basic" --sandbox . lib.bas)"
[ -f "$work/group/ZZ" ] || fail "CREATE *ZZ made no file in the group library"
[[ $("$basic" --sandbox . '*../outside/secret.bas' 2>&1) == *"(outside the sandbox)."* ]] ||
  fail "an unset group library let a name out of the sandbox"

# A sandbox that cannot be had stops the start: nothing runs unconfined.
out=$("$basic" --sandbox "$work/none" inside.bas 2>&1)
status=$?
[ $status -eq 2 ] && [[ $out == "basic: cannot use $work/none as the sandbox: "* ]] ||
  fail "a missing sandbox folder: status $status, $out"

if [ "$failures" -eq 0 ]; then
  echo "sandbox: all checks passed"
  exit 0
fi
echo "sandbox: $failures check(s) failed"
exit 1
