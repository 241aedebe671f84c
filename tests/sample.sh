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
folded=$("$program" --folded "$trace" 2>/dev/null | sed -E 's/ ([&*])([,)])/\1\2/g' |
    awk -F ';' '!($1 in number) { number[$1] = ++threads } { sub(/^[0-9]+;/, number[$1] " "); sub(/ [0-9]+$/, ""); print }')
again=$(sed -E 's/^4/8/; s/^3/7/; s/^2/6/; s/^1/5/' <<<"$calls") # the second run's
expect "$calls"$'\n'"$again" "$folded"

expect "Exceptions
  1 thrown in sample(Lower())
  1 thrown in sample(Lower())
Not finished
  #: worker stuck was asked to stop, and not destroyed
  #: worker stuck was asked to stop, and not destroyed" \
    "$("$program" --summary "$trace" 2>/dev/null | sed -nE 's| in .*/| in |; s/ \[0x[0-9a-f]+\]//
        s/^  [-0-9]{10} [0-9:.]{18}/  #/; /^Exceptions/,$p')"
expect "quor-timeline: lines not understood: 0, exits without entry: 2, calls without exit: 4, clock set back: 0
exit 1" "$("$program" --strict "$trace" 2>&1 >/dev/null || echo "exit $?")"
exit $status
