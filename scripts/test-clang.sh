#!/usr/bin/env bash
# The whole suite once more, built with the second compiler.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset clang >/dev/null
cmake --build --preset clang
ctest --preset clang --parallel 2
