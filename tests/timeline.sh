#!/bin/bash
# timeline.sh PROGRAM: what quor-timeline makes of a trace with all that readers meet: a midnight, a
# clock that is set back, three runs, exits and entries alone, entries of several lines, control
# characters, lines of other formats, torn lines, and things that had not come to their end.
set -euo pipefail
program=$1
cd "$(dirname "$0")/timeline"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
status=0
fail() {
    echo "$*"
    status=1
}
expect() { # EXPECTED ARGUMENT...: what is written for these arguments, and with what exit code
    local expected=$1 found
    shift
    found=$("$program" "$@" 2>"$folder/told"; echo "exit $?")
    [ "$found" = "$expected" ] || fail "$* - expected:"$'\n'"$expected"$'\n'"found:"$'\n'"$found"
}
told() { # EXPECTED: on standard error by the last one
    [ "$(cat "$folder/told")" = "$1" ] || fail "expected: $1"$'\n'"found: $(cat "$folder/told")"
}

expect "$(cat tricky.folded)"$'\nexit 0' --folded tricky.trace
told "quor-timeline: lines not understood: 5, exits without entry: 1, calls without exit: 4, clock set back: 1"
expect "$(cat tricky.summary)"$'\nexit 0' <tricky.trace
expect $'102;void Unplaced() 100\n102;void WithoutLine() 200\nexit 1' --folded --thread 102 --strict tricky.trace
# The hidden lines move the clock too: without them it would not be midnight between these two.
expect $'101;void Other(a, b) 3899999900\nexit 0' --folded --thread 101 --to 00:00:02 tricky.trace
expect $'100;void Outer() 100\n100;void Outer();void Inner() 1699999900\nexit 0' \
    --folded --thread 100 --from 23:59:59 --to 00:00:00.7 tricky.trace
expect $'100;void Inner() 2500000000\n100;void CutByItsOuter() 100000000\nexit 0' \
    --folded --function 'Cut|Inner' tricky.trace
printf '[00001: 00:00:00.000000001]    1: ==> %0100000d\n' 0 >"$folder/long.trace"
expect "exit 0" --folded --function '0.*' "$folder/long.trace" # the search would need a stack of its length
expect "exit 0" --folded --from "2026-02-02 00:00:00" tricky.trace
expect "exit 1" --from 25:00:00 tricky.trace
told "quor-timeline: 25:00:00: neither HH:MM:SS nor YYYY-MM-DD HH:MM:SS"
expect "exit 1" no_such_file
told "quor-timeline: no_such_file: No such file or directory"
"$program" tricky.trace >/dev/full 2>/dev/null && fail "a full disk is no error"

# The manual knows the options, and no others.
options() { grep -oE -- '--[a-z]{2,}' | sort -u; }
differ=$(diff <("$program" --help | options) <(sed 's/\\-/-/g' ../../docs/man/quor-timeline.1 | options)) ||
    fail "options in the help and in the manual:"$'\n'"$differ"

# Per thread every end has its begin, and time does not go back.
nests='reduce .[] as $e ({open: [], at: 0};
    if $e.at < .at then error("back") else .at = $e.at end |
    if $e.begins then .open += [$e.what] elif .open[-1] == $e.what or $e.what == null then .open |= .[:-1]
    else error("crossed") end) | .open == []'
"$program" --chrome tricky.trace >"$folder/chrome.json" 2>/dev/null
jq -e '.traceEvents | map(select(.ph == "B" or .ph == "E")) | group_by([.pid, .tid])[] |
    map({at: .ts, begins: (.ph == "B"), what: null}) | '"$nests" "$folder/chrome.json" >"$folder/nests" &&
    [ "$(sort -u "$folder/nests")" = true ] || fail "Chrome events do not nest"
"$program" --speedscope tricky.trace >"$folder/speedscope.json" 2>/dev/null
jq -e '.profiles[].events | map({at, begins: (.type == "O"), what: .frame}) | '"$nests" \
    "$folder/speedscope.json" >"$folder/nests" &&
    [ "$(sort -u "$folder/nests")" = true ] || fail "speedscope's events do not nest"
# As its release 1.25.0 publishes it.
jsonschema -i "$folder/speedscope.json" speedscope.schema.json || fail "speedscope refuses it"
exit $status
