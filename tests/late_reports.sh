#!/bin/sh
# late_reports.sh PROGRAM RUNS: each run ends well, and its trace ends in one trailer and holds the log's
# last message.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
run=0
while [ $run -lt "$2" ]; do
    rm -f "$folder"/*
    "$1" "$folder/trace" "$folder/log"
    if [ "$(tail -n 5 "$folder/trace" | sed -n 2p)" != "* ***** Trace stopped *****" ] ||
        [ "$(grep -c '^\* \*\*\*\*\* Trace' "$folder/trace")" != 2 ] ||
        ! grep -q 'Info    : the last' "$folder/trace"; then
        tail -n 20 "$folder/trace"
        echo "run $run: the trace does not end in its trailer, or misses the last message"
        exit 1
    fi
    run=$((run + 1))
done
