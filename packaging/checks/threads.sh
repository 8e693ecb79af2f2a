#!/bin/bash
# Fails, and says where, if what two threads reach isn't used under the lock that its annotation names. Only clang reads
# the annotations, so the folders that have threads are read once more by it, each as one source.
set -euo pipefail
cd "$(dirname "$0")/../.."
for folder in platform/foundation wire; do
  git ls-files "$folder/*.cpp" | sed 's/.*/#include "&"/' |
    clang++ -x c++ -std=c++20 -I. -fsyntax-only -Wthread-safety -Werror -
done
