#!/bin/bash
# Collects every text that is looked up in the user's language, from the sources and the layouts.
#
#   resources/translations/extract.sh POT                  writes them to POT, the template of all translations
#   resources/translations/extract.sh --update POT PO...   and brings these translations up to date with it
set -euo pipefail
update=
if [[ ${1:-} == --update ]]; then
  update=yes
  shift
fi
(($# >= 1)) || { sed -n '2,6s/^# \?//p' "$0" >&2; exit 2; }
pot=$(realpath -m "$1")
shift
translations=()
for po in "$@"; do translations+=("$(realpath "$po")"); done

cd "$(dirname "$0")/../.."
parts=$(mktemp -d)
trap 'rm -rf "$parts"' EXIT

options=(--from-code=UTF-8 --add-location=file --sort-by-file --package-name=Tarn --copyright-holder="The Tarn maintainers")
mapfile -t sources < <(find platform wire workbench favourites shell resources -name '*.cpp' | sort)
mapfile -t layouts < <(find resources/layouts -name '*.ui' | sort)

# Each of these names takes the English text as its first argument.
xgettext "${options[@]}" --language=C++ --keyword --keyword=localizedString:1 --keyword=localizable:1 --keyword=reasonLine:1 \
  --output="$parts/sources.pot" "${sources[@]}" 2>"$parts/warnings" || { cat "$parts/warnings" >&2; exit 1; }
xgettext "${options[@]}" --its=resources/translations/layouts.its --output="$parts/layouts.pot" "${layouts[@]}"
# The time of the run stays out, so that the same texts give the same file.
msgcat --sort-by-file --add-location=file "$parts/sources.pot" "$parts/layouts.pot" |
  sed '/^"POT-Creation-Date: /d' >"$pot"

[[ -z $update ]] || for po in "${translations[@]}"; do
  msgmerge --quiet --update --backup=none --no-fuzzy-matching --sort-by-file --add-location=file "$po" "$pot"
done
