# shellcheck shell=bash
# The demo without a display: Tarn on a virtual one, driven from outside by synthetic clicks and keys. Sourced by
# demo.sh, which has set `folder`, `port` and `redis`.

# Where the window is: its number and its corner.
window=
windowX=0
windowY=0

# waitUntil SECONDS WHAT COMMAND...: waits for the command to succeed; the demo fails, naming WHAT, if it doesn't in time.
waitUntil() {
  local end=$((SECONDS + $1)) what=$2
  shift 2
  until "$@" >/dev/null 2>&1; do
    kill -0 "$tarn" 2>/dev/null || die "Tarn ended before $what: $(cat "$folder/tarn.log")"
    ((SECONDS < end)) || die "$what didn't happen"
    sleep 0.1
  done
}

startDisplay() {
  setpriv --pdeathsig KILL Xvfb -displayfd 3 -screen 0 1280x860x24 -nolisten tcp \
    3>"$folder/display" >"$folder/xvfb.log" 2>&1 &
  local end=$((SECONDS + 20))
  until [[ -s $folder/display ]]; do
    ((SECONDS < end)) || die "Xvfb didn't start: $(cat "$folder/xvfb.log")"
    sleep 0.1
  done
  DISPLAY=:$(<"$folder/display")
  export DISPLAY
}

# click X Y: one click of the left button, in points from the window's corner.
click() { xdotool mousemove $((windowX + $1)) $((windowY + $2)) click 1; }

findWindow() {
  window=$(xdotool search --onlyvisible --name '^Tarn' | head -n 1)
  [[ -n $window ]]
}

# callsOf COMMAND: how often the demo's server has run it.
callsOf() { redis INFO commandstats | sed -n "s/^cmdstat_$1:calls=\([0-9]*\),.*/\1/p"; }

ranMoreOften() { [[ $(callsOf "$1") != "$2" ]]; }

# clickUntilServerRuns COMMAND X Y: clicks there until the click has led to that command, again while it hasn't: the
# window may still be on its way.
clickUntilServerRuns() {
  local before attempt
  before=$(callsOf "$1")
  for attempt in {1..10}; do
    click "$2" "$3"
    for _ in {1..20}; do
      ranMoreOften "$1" "$before" && return
      sleep 0.1
    done
  done
  import -window root build/demo-failed.png
  die "after $attempt clicks at $2,$3 Tarn still hasn't sent $1; see $PWD/build/demo-failed.png"
}

# takePicture FILE: of the window, once it has come to rest.
takePicture() {
  local before='' now=1
  until [[ $now == "$before" ]]; do
    before=$now
    sleep 0.3
    import -window "$window" "$1"
    now=$(identify -format '%#' "$1")
  done
}

# Expands the favourite, opens its first database, searches for the users, which are hashes, and clicks the first one.
driveOnVirtualDisplay() {
  say "There is no display here: Tarn runs on a virtual one, and synthetic clicks drive it."
  startDisplay
  build/release/tarn >"$folder/tarn.log" 2>&1 &
  tarn=$!
  waitUntil 30 "the window's opening" findWindow
  eval "$(xdotool getwindowgeometry --shell "$window" | grep '^[XY]=' | sed 's/^/window/')"
  # Without a window manager nobody else gives it the keyboard.
  xdotool windowfocus --sync "$window"

  clickUntilServerRuns 'config|get' 25 100
  clickUntilServerRuns scan 90 124
  click 380 112
  local searches
  searches=$(callsOf scan)
  xdotool type 'user:'
  xdotool key Return
  waitUntil 20 "the search" ranMoreOften scan "$searches"
  clickUntilServerRuns hscan 380 224
  click 700 220
  mkdir -p build
  takePicture build/demo.png
  say "A hash, as Tarn shows it: $PWD/build/demo.png"
}
