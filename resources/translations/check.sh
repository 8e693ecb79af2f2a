#!/bin/bash
# check.sh PO: fails unless the translation has every text that is looked up, each with the placeholders of the English.
set -euo pipefail
po=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$here/extract.sh" "$work/tarn.pot"
msgfmt --check --output-file=/dev/null "$po"
msgmerge --quiet --no-fuzzy-matching --no-wrap --output-file="$work/merged.po" "$po" "$work/tarn.pot"

# texts OPTION HEADING: names the texts that msgattrib finds with the option, and fails if there are any.
texts() {
  local found
  found=$(msgattrib "$1" --no-obsolete --no-wrap --no-location "$work/merged.po" | grep -A99 '^msgid "[^"]' || true)
  [[ -z $found ]] || { printf '%s: %s:\n%s\n' "$po" "$2" "$found" >&2; return 1; }
}

failed=
texts --untranslated "without a translation" || failed=yes
texts --only-fuzzy "marked as doubtful" || failed=yes

# The placeholders of one translation on standard input, beside those of its English text.
export sorted='grep -o "{[0-9]}" | sort | tr -d "\n"'
# shellcheck disable=SC2016 # the inner shell expands it
msgattrib --translated --no-obsolete "$work/merged.po" | msgexec bash -c '
  placeholders=$(eval "$sorted")
  expected=$(eval "$sorted" <<<"$MSGEXEC_MSGID")
  [[ -z $MSGEXEC_MSGID || $placeholders == "$expected" ]] || {
    printf "other placeholders than in the English text: %s\n" "$MSGEXEC_MSGID" >&2
    exit 1
  }' || failed=yes
[[ -z $failed ]]
