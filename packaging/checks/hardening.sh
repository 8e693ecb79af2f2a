#!/bin/bash
# hardening.sh PROGRAM: fails, and says what is missing, unless the program was built as a release has to be.
set -euo pipefail
readonly program=$1
failures=0

# expect WHAT PATTERN COMMAND...: the command's output has a line with the pattern.
expect() {
  local what=$1 pattern=$2
  shift 2
  grep -qE "$pattern" <<<"$(LC_ALL=C "$@" "$program")" && return
  echo "$program: no $what" >&2
  failures=$((failures + 1))
}

expect 'position-independent code' 'Type: +DYN' readelf -hW
expect 'read-only relocations' 'GNU_RELRO' readelf -lW
expect 'binding of all symbols at the start' '\(FLAGS(_1)?\).*\b(BIND_)?NOW\b' readelf -dW
expect 'stack protector' '__stack_chk_fail' nm -D --undefined-only
expect '_FORTIFY_SOURCE' '__[a-z]+_chk(@|$)' nm -D --undefined-only
expect '_GLIBCXX_ASSERTIONS' '__glibcxx_assert_fail' nm -D --undefined-only
exit $((failures > 0))
