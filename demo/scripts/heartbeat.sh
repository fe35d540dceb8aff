#!/bin/sh
# A demo application item: each run adds a line to Output/heartbeat.txt.
cd "$(dirname "$0")/.." || exit 1
mkdir -p Output
date '+%Y-%m-%d %H:%M:%S heartbeat from the demo schedule' >> Output/heartbeat.txt
