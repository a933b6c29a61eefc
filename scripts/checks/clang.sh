#!/usr/bin/env bash
# Builds the product with the second compiler, then asks its linter. The whole suite with it: scripts/test-clang.sh.
set -euo pipefail
cd "$(dirname "$0")/../.."
cmake --preset clang >/dev/null
cmake --build --preset clang --target product
scripts/checks/lint.py build/clang
