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

# Each paragraph is one text: the English and its translation name the same placeholders.
# shellcheck disable=SC2016 # the variables are perl's
msgattrib --translated --no-obsolete --no-wrap "$work/merged.po" | perl -00 -ne '
  my ($english, $translated) = map { join "", sort /\{[0-9]\}/g } split /^msgstr /m;
  next if $english eq $translated;
  print STDERR "other placeholders than in the English text:\n$_";
  $failed = 1;
  END { $? = $failed }' || failed=yes
[[ -z $failed ]]
