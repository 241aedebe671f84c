#!/bin/bash
# timeline.sh PROGRAM: how long quor-timeline takes for a million lines, as a multiple of what `wc -l`
# and `grep -c` take for them together; medians of fifteen rounds, in each of which all take their turn.
set -euo pipefail
program=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
trace=$folder/trace

# Eight threads, each again and again in the same tree of calls.
awk 'BEGIN {
    rule = "-------------------------------------------------------------------------------"
    print rule "\n* ***** Trace started *****\n\n* Version       : \n* Start time    : 2026-01-31 10:00:00.000000000"
    print "* Process name  : spoold\n* Process id    : 100\n" rule "\n"
    steps = split("==> void Spooler::Scan(int)|31: ==> bool Examine::Read(const Spool&)|52: ==> int Size()|52: <== int Size()|" \
        "76: 12 files of the spool are left|31: <== bool Examine::Read(const Spool&)|44: ==> void Report::Write()|" \
        "52: ==> int Size()|52: <== int Size()|44: <== void Report::Write()|<== void Spooler::Scan(int)", step, "|")
    for (line = 0; line < 1000000; ++line) {
        nanoseconds = line * 2100
        thread = line % 8
        at = 1 + (thread + int(line / 8)) % steps
        text = step[at] ~ /^[0-9]/ ? step[at] : "20: " step[at]
        printf "[%05d: 10:%02d:%02d.%09d]   %s\n", 100 + thread, nanoseconds / 60e9, nanoseconds / 1e9 % 60, nanoseconds % 1e9, text
    }
}' >"$trace"

floor() { { wc -l "$trace" && grep -c '==>' "$trace"; } | cat; }
forms=(summary stuck folded chrome speedscope jsonl replay)
for round in {1..15}; do
    for form in floor "${forms[@]}"; do
        begin=$(date +%s%N)
        if [ "$form" = floor ]; then floor; else "$program" "--$form" "$trace"; fi >/dev/null 2>&1
        echo "$form $round $(($(date +%s%N) - begin))"
    done
done | sort -k1,1 -k3,3n | awk '{ if ($1 != form) { form = $1; seen = 0 } if (++seen == 8) median[form] = $3 }
    END {
        printf "%-12s %8.1f ms\n", "floor", median["floor"] / 1e6
        for (form in median) if (form != "floor")
            printf "%-12s %8.1f ms %6.2f\n", form, median[form] / 1e6, median[form] / median["floor"]
    }'
