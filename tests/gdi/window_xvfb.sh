#!/usr/bin/env bash
# Real windows on an X server of their own (Xvfb): what UPDATE copies is on
# the screen in its colours and what was drawn after it is not; Ctrl+C breaks
# a drawing run, from the terminal or typed into the window; a window closed
# from outside makes the next statement fail with "GDI is not open"; BYE
# closes the windows and ends the window thread.
# Usage: window_xvfb.sh BUILD_FOLDER (with basic, picture_tool and x11_close)
set -u
build=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
for tool in Xvfb xwd xdotool; do
  if ! command -v $tool >/dev/null; then
    echo "window tests skipped: $tool is not installed (Debian: xvfb, x11-apps, xdotool)"
    exit 0
  fi
done
if [ ! -x "$build/x11_close" ]; then
  echo "window tests skipped: x11_close was not built (Debian: libx11-dev)"
  exit 0
fi

work=$(mktemp -d)
pids=()
cleanup() {
  for p in "${pids[@]}"; do kill "$p" 2>/dev/null; done
  rm -rf "$work"
}
trap cleanup EXIT
fail=0
failed() { echo "--- FAIL: $*"; fail=1; }

# Xvfb picks a free display number itself and writes it to the descriptor.
Xvfb -displayfd 3 -screen 0 640x480x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
pids+=($!)
for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.1; done
[ -s "$work/display" ] || { echo "--- FAIL: Xvfb did not start"; exit 1; }
export DISPLAY=:$(cat "$work/display")
unset WAYLAND_DISPLAY SDL_VIDEODRIVER

# Waits until file $1 holds $4 (or one) lines with the text $2, for up to $3
# tenths of a second.
await() {
  for _ in $(seq "$3"); do
    [ "$(grep -c "$2" "$1" 2>/dev/null)" -ge "${4:-1}" ] && return 0
    sleep 0.1
  done
  return 1
}

# A shell fed through a FIFO, so that windows stay open between runs.
mkfifo "$work/in"
mkdir "$work/dump"
(cd "$here" && BASIC_GDI_DUMP="$work/dump" exec "$build/basic" <"$work/in" >"$work/out" 2>"$work/err") &
shell=$!
pids+=($shell)
exec 3>"$work/in"

echo "GET xvfb_draw.bas" >&3
echo "RUN" >&3
if await "$work/out" DONE 100; then
  grep -q "more than a second" "$work/out" && failed "WINDOW took more than a second"
  id=$(xdotool search --name "Velo Basic Test Window" | head -n 1)
  xwd -silent -id "$id" -out "$work/shot.xwd"
  # Red across the top, blue down and at 45 degrees, the end pixels left out.
  want="FFFFFF FF0000 FF0000 FFFFFF 0000FF 0000FF FFFFFF 0000FF 0000FF FFFFFF FFFFFF"
  got=$("$build/picture_tool" pixel "$work/shot.xwd" 9 10 10 10 189 10 190 10 \
    20 20 20 109 20 110 30 20 119 109 120 110 100 60 | tr '\n' ' ' | sed 's/ $//')
  [ "$got" = "$want" ] || failed "screen pixels: wanted $want, got $got"
  # The whole window is the picture of the UPDATE, without the later black line.
  "$build/picture_tool" compare "$work/dump/gdi1.ppm" "$work/shot.xwd" ||
    failed "the screen is not the picture of the last UPDATE"
else
  failed "the drawing program did not finish"
fi

windows() { xdotool search --name "Velo Basic Test Window" 2>/dev/null | wc -l; }

# Ctrl+C breaks a drawing run; SDL must not have taken the signal for itself.
# The window stays open until the next RUN's link pass closes it.
echo "GET xvfb_close.bas" >&3
echo "RUN" >&3  # the link pass closes the first window
sleep 1
[ "$(windows)" = 1 ] || failed "RUN left $(windows) windows open"
kill -INT $shell
await "$work/out" "BREAK in line" 50 || failed "SIGINT did not break the drawing run"
[ "$(windows)" = 1 ] || failed "the break closed the window"

# Ctrl+C typed into the graphics window breaks the run as in the terminal.
echo "RUN" >&3
sleep 1
id=$(xdotool search --name "Velo Basic Test Window" | head -n 1)
xdotool key --window "$id" ctrl+c
await "$work/out" "BREAK in line" 50 2 || failed "Ctrl+C in the window did not break"

# A window closed from outside makes the next statement on it fail.
echo "RUN" >&3
sleep 1
ids=$(xdotool search --name "Velo Basic Test Window")
[ "$(echo "$ids" | wc -w)" = 1 ] || failed "the next RUN left windows open: $ids"
"$build/x11_close" "$ids"
await "$work/out" "GDI is not open" 50 || failed "closing the window did not stop the program"
grep -q "ERROR GDI is not open in line [57]0" "$work/out" ||
  failed "the error is not at a graphics statement: $(tail -n 2 "$work/out")"

echo "BYE" >&3
exec 3>&-
for _ in $(seq 50); do kill -0 $shell 2>/dev/null || break; sleep 0.1; done
if kill -0 $shell 2>/dev/null; then
  failed "BYE did not end the shell"
else
  wait $shell || failed "the shell ended with status $?: $(tail -n 30 "$work/err")"
fi
grep -q "off-screen" "$work/err" && failed "the windows were headless: $(cat "$work/err")"

[ $fail = 0 ] && echo "window tests: passed"
exit $fail
