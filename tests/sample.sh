#!/bin/bash
# sample.sh PROGRAM GUIDE FOLDER: what quor-timeline makes of the trace that the library has just written, by
# make_sample.sh. Threads are numbered as they appear, and times left out. GUIDE is docs/sample.txt.
set -euo pipefail
program=$1
guide=$2
trace=$3/sample.trace
status=0
expect() { # EXPECTED FOUND
    diff <(echo "$1") <(echo "$2") || status=1
}

calls=$(cat "$guide") # as the guide shows them
folded=$("$program" --folded "$trace" 2>/dev/null |
    awk -F ';' '!($1 in number) { number[$1] = ++threads } { sub(/^[0-9]+;/, number[$1] " "); sub(/ [0-9]+$/, ""); print }')
again=$(sed -E 's/^4/8/; s/^3/7/; s/^2/6/; s/^1/5/' <<<"$calls") # the second run's
expect "$calls"$'\n'"$again" "$folded"

run='Stuck
  worker stuck, thread #, was asked to stop by thread #, and not destroyed; since
    WorkerThread::operator()
  thread #, silent since
    Lower
Swallowed
  1 Critical: The disk is full
  1 Error: cannot open no-such-file
  1 WARNING: WorkerThread scan. Error: nothing left to read
  1 exception: cannot open no-such-file, in Fail
  1 exception: nothing left to read, in Reader::Main
  1 exception: of no importance, in Lower'
expect "$run"$'\n'"$run" "$("$program" "$trace" 2>/dev/null | sed -nE '/^ +count/d; /^Slow/,/^Run/d; /^Run/d
    s/thread [0-9]+/thread #/g; s/since .*/since/; s/^    [0-9].*  ([^ ]+)  [^ ]+$/    \1/
    s/^ +([0-9]+)  [0-9:.]{18}  [0-9:.]{18}  /  \1 /; p')"
expect "quor-timeline: lines not understood: 0, exits without entry: 2, calls without exit: 4, clock set back: 0
exit 1" "$("$program" --strict "$trace" 2>&1 >/dev/null || echo "exit $?")"
exit $status
