#!/usr/bin/env bash
# Photographs every window of the desktop program under Xvfb into docs/screenshots/<window>.png, on a
# copy of the demo folder, and reports what the program's checks find wrong with each window.
# Name windows to photograph only those: scripts/screenshots.sh frmMain frmSchedule
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh screenshots

BUILD=${BUILD_DIR:-build}
[ -f "$BUILD/build.ninja" ] || cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Debug
cmake --build "$BUILD" -j2 --target qorlo_screenshots

mkdir -p docs/screenshots
# A fixed screen and no window manager: each window is drawn as the program lays it out.
QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x900x24" \
  "$BUILD/tools/screenshots/qorlo_screenshots" docs/screenshots "$@"
identify -format "%f %wx%h\n" docs/screenshots/*.png
