#!/bin/bash
# Runs clang-tidy, as .clang-tidy says, over all that the program is made of, or over the folders named, such as
# `packaging/checks/tidy.sh wire platform/appkit`. It reads the batches of a build, in which the headers are parsed once
# for many sources. Takes minutes, so ./test doesn't.
set -euo pipefail
cd "$(dirname "$0")/../.."
mkdir -p build
. packaging/common.sh

installMissing run test tidy
cmake --preset debug -B build/tidy -DCMAKE_CXX_COMPILER=clang++ >build/tidy.log 2>&1 ||
  { cat build/tidy.log >&2 && die "cmake couldn't configure build/tidy"; }
cmake --build build/tidy --target tarn_appkit_autogen tarn_resources_autogen -- --quiet >/dev/null

(($#)) || set -- codec favourites formatters platform resources shell wire workbench
folders=$(IFS='|' && echo "$*")
# A batch includes its sources, which the first check would call a mistake.
run-clang-tidy -quiet -p build/tidy -j "$(nproc)" -checks=-bugprone-suspicious-include \
  -header-filter="^$PWD/($folders)/" "^$PWD/(build/tidy/)?($folders)/(?!.*_autogen/)" \
  2>build/tidy.log | sed 's/\x1b\[[0-9;]*m//g' >build/tidy.txt || failed=1
grep -E '(warning|error): ' build/tidy.txt | sort -u && die "clang-tidy found what stands above; more in build/tidy.txt"
[[ -z ${failed:-} ]] || die "clang-tidy failed: see build/tidy.log"
