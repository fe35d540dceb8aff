#!/usr/bin/env bash
# Builds everything from clean and runs every test, with the real peers installed.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh all

BUILD=${BUILD_DIR:-build}
rm -rf "$BUILD"
cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQORLO_WERROR=ON
cmake --build "$BUILD" -j2

echo "== format check"
git ls-files 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'bench/*.cpp' 'bench/*.h' 'fuzz/*.cpp' 'fuzz/*.h' \
  | xargs clang-format --dry-run --Werror

echo "== tests"
ctest --test-dir "$BUILD" -j2 --output-on-failure
