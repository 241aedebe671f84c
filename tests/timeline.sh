#!/bin/bash
# timeline.sh PROGRAM: what quor-timeline makes of a trace with all that readers meet: a midnight, a
# clock that is set back, two runs, exits and entries alone, entries of several lines, control
# characters, lines of other formats, a torn end.
set -euo pipefail
program=$1
cd "$(dirname "$0")/timeline"
status=0
same() { # NAME EXPECTED FOUND
    [ "$2" = "$3" ] && return
    printf '%s\nexpected:\n%s\nfound:\n%s\n' "$1" "$2" "$3"
    status=1
}
same "folded stacks" "$(cat tricky.folded)" "$("$program" --folded tricky.trace 2>/dev/null)"
same "summary" "$(cat tricky.summary)" "$("$program" <tricky.trace 2>/dev/null)"
same "what was not understood" \
    "quor-timeline: lines not understood: 2, exits without entry: 1, calls without exit: 3, clock set back: 1" \
    "$("$program" --strict tricky.trace 2>&1 >/dev/null && echo "no error")"
same "one thread" "102;void Unplaced() 100" "$("$program" --folded --thread 102 tricky.trace 2>/dev/null)"

events=$(mktemp)
trap 'rm -f "$events"' EXIT
"$program" --chrome tricky.trace >"$events" 2>/dev/null
cat >"$events.cmake" <<'END'
file(READ ${EVENTS} json)
string(JSON length LENGTH "${json}" traceEvents)
message("${length} events")
END
same "JSON" "17 events" "$(cmake -DEVENTS="$events" -P "$events.cmake" 2>&1)"
rm -f "$events.cmake"
# Per thread every end has its begin, in the order of time.
awk -F'[:,]' '/"ph"/ {
        thread = $6; time = $8 + 0
        if ($2 == "\"B\"") open[thread]++
        if ($2 == "\"E\"" && open[thread]-- == 0) bad = 1
        if (time < last[thread]) bad = 1
        last[thread] = time
    }
    END { for (thread in open) if (open[thread] != 0) bad = 1; exit bad }' "$events" ||
    { echo "events do not nest"; status=1; }
exit $status
