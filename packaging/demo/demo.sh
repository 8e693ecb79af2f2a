#!/bin/bash
# Starts Tarn with a Redis server of its own, full of sample data, and a favourite for it: on the display there is, or,
# where there is none, on a virtual one, driven by synthetic clicks up to a picture of a hash. `./run demo` builds first.
set -euo pipefail
cd "$(dirname "$0")/../.."
. packaging/common.sh

folder=$(mktemp -d "${TMPDIR:-/tmp}/tarn-demo-XXXXXX")
trap 'jobs -p | xargs -r kill 2>/dev/null || true; wait; rm -rf "$folder"' EXIT
trap 'exit 130' INT TERM HUP

redis() { redis-cli -h 127.0.0.1 -p "$port" "$@"; }

# startServer: a redis-server on a free loopback port, that ends with this script. Sets `port`.
startServer() {
  local server attempt
  for attempt in {1..50}; do
    port=$((20000 + RANDOM % 12000))
    setpriv --pdeathsig KILL redis-server --port "$port" --bind 127.0.0.1 --save '' --appendonly no \
      --dir "$folder" >"$folder/redis.log" 2>&1 &
    server=$!
    while kill -0 "$server" 2>/dev/null; do
      # Another server may have the port: it is ours only if it says our number.
      if redis INFO server 2>/dev/null | tr -d '\r' | grep -qx "process_id:$server"; then return; fi
      sleep 0.05
    done
  done
  cat "$folder/redis.log" >&2
  die "no redis-server would start (tried $attempt ports)"
}

fillServer() {
  local replies
  replies=$(packaging/demo/sample-data.sh | redis)
  if grep -q '^\(ERR\|WRONGTYPE\|(error)\)' <<<"$replies"; then die "the sample data failed: $replies"; fi
}

startServer
fillServer
export XDG_DATA_HOME=$folder/data
QT_QPA_PLATFORM=offscreen build/release/packaging/tarn_demo_favourite "Demo" 127.0.0.1 "$port"

if [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]]; then
  build/release/tarn
else
  . packaging/demo/virtual-display.sh
  driveOnVirtualDisplay
fi
