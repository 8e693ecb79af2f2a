# shellcheck shell=bash
# The demo without a display: Tarn on a virtual one, driven from outside by synthetic clicks and keys. Sourced by
# demo.sh, which has set `folder`, `port` and `redis`.

# shellcheck disable=SC2154 # `folder` is demo.sh's

# Where the window is: its number and its corner.
window=
windowX=0
windowY=0
foundY=0

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

refreshedTwice() { (($(callsOf 'cluster|nodes') >= 2)); }

ranMoreOften() { [[ $(callsOf "$1") != "$2" ]]; }

# searchFor TEXT X Y: a click at the search field, and the text by keyboard.
searchFor() {
  click "$2" "$3"
  xdotool key ctrl+a
  xdotool type "$1"
  xdotool key Return
}

# downUntilServerRuns COMMAND X FROM TO STEP ACTION...: does ACTION X Y with Y going down a line through the window until
# that has led to the command, since where exactly a control lies follows from the desktop's font. Sets `foundY`.
downUntilServerRuns() {
  local command=$1 x=$2 from=$3 to=$4 step=$5 before
  shift 5
  before=$(callsOf "$command")
  for ((foundY = from; foundY <= to; foundY += step)); do
    "$@" "$x" "$foundY"
    for _ in {1..15}; do
      ranMoreOften "$command" "$before" && return
      sleep 0.1
    done
  done
  import -window root build/demo-failed.png
  die "no click from $x,$from to $x,$to made Tarn send $command; see $PWD/build/demo-failed.png"
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

  mkdir -p build
  downUntilServerRuns 'config|get' 25 56 140 12 click
  # The counts of the databases come with the second of the refreshes that begin so.
  waitUntil 20 "the refresh of the counts" refreshedTwice
  downUntilServerRuns scan 90 $((foundY + 24)) $((foundY + 36)) 12 click
  downUntilServerRuns scan 380 84 134 10 searchFor 'user:'
  downUntilServerRuns hscan 380 $((foundY + 100)) $((foundY + 150)) 9 click
  # The rows are there when the window rests; the first of them then shows in the editors.
  takePicture build/demo.png
  click 700 "$foundY"
  takePicture build/demo.png
  say "A hash, as Tarn shows it: $PWD/build/demo.png"
}
