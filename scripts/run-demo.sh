#!/usr/bin/env bash
# Builds the scheduler and starts it on a scratch copy of the demo application folder.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh build

BUILD=${BUILD_DIR:-build}
cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$BUILD" -j2 --target qorlomanagerd

SCRATCH=$(mktemp -d "${TMPDIR:-/tmp}/qorlo-demo-XXXXXX")
cp -r demo/. "$SCRATCH/"
cp "$BUILD/src/app/qorlomanagerd" "$SCRATCH/"
echo "Demo application folder: $SCRATCH"
echo "Watch $SCRATCH/Output, $SCRATCH/QorloLog.XML and $SCRATCH/Web/livestat.htm; stop with Ctrl-C."
export XDG_CONFIG_HOME="$SCRATCH/.config"
# Items name their programs relative to the application folder.
cd "$SCRATCH"
exec "$SCRATCH/qorlomanagerd"
