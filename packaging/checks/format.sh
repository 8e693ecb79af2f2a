#!/bin/bash
# Fails, and says where, if a source isn't formatted as .clang-format says.
set -euo pipefail
cd "$(dirname "$0")/../.."
git ls-files -z '*.h' '*.cpp' | xargs -0 -n 32 -P "$(nproc)" clang-format --dry-run -Werror
