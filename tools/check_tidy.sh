#!/usr/bin/env bash
# clang-tidy over the product's sources, by .clang-tidy, on all cores.
set -euo pipefail
cd "$(dirname "$0")/.."
[ -e build/release/compile_commands.json ] || cmake --preset release >/dev/null
git ls-files 'platform/*.cpp' 'rvlib/*.cpp' 'rvdlm/*.cpp' 'simulator/*.cpp' 'console/*.cpp' |
    xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p build/release --extra-arg=-Wno-unknown-warning-option
