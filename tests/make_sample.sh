#!/bin/sh
# make_sample.sh PROGRAM FOLDER: two runs of the program "sample" in one trace and one log, made anew, for
# tests of what reads them. Both are in the format but for the lines that the program adds to its texts.
set -eu
program=$1
folder=$2
check=$(dirname "$0")/../scripts/check-format
mkdir -p "$folder"
rm -f "$folder"/sample.*
"$program" "$folder"
"$program" "$folder" files
for kind in trace log; do
    sed '/^|/d' "$folder/sample.$kind" >"$folder/sample.one_line"
    "$check" $kind "$folder/sample.one_line"
done
