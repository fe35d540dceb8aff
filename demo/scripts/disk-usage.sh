#!/bin/sh
# A demo application item: each run writes the application folder's disk usage to Output/disk-usage.txt.
cd "$(dirname "$0")/.." || exit 1
mkdir -p Output
{ date '+%Y-%m-%d %H:%M:%S'; du -sh . ; } > Output/disk-usage.txt
