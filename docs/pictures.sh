#!/bin/bash
# Takes the pictures of the user guide anew, by a program that does what it tells: docs/pictures.sh BUILD-FOLDER
set -euo pipefail
(($# == 1)) || { sed -n '2s/^# //p' "$0" >&2; exit 2; }
build=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --build "$build" --target tarn_pictures
cd "$work"
QT_QPA_PLATFORM=offscreen "$build/docs/tarn_pictures"
mkdir -p "$here/guide"
for picture in *.png; do
  # A window has few colours: this makes it a third of the size.
  if command -v pngquant >/dev/null; then
    pngquant --force --output "$here/guide/$picture" 64 "$picture"
  else
    cp "$picture" "$here/guide/$picture"
  fi
done
