#!/bin/bash
# formats.sh SPOOLD: check-format takes what spoold writes, and notices faults planted in it. (check-docs
# asks it about the files of the guide's programs, the report of an assertion among them.)
set -euo pipefail
cd "$(dirname "$0")/.."
check=$PWD/scripts/check-format
work=$(mktemp -d)
(setsid scripts/guard $$ "$work" >/dev/null 2>&1 &)
trap 'rm -rf "$work"' EXIT
mkdir "$work/spool"
ln -s nowhere "$work/spool/missing" # throws, which dumps the stack
for level in detail low; do # the second run appends
    (cd "$work" && "$1" --spool spool --log log --trace trace --level $level --once)
    ln -s nowhere "$work/spool/missing"
done
sed '1d; /^==> /,$d' docs/examples/assertion.out >"$work/assert"
failed=0
for kind in trace log assert; do
    "$check" $kind "$work/$kind" || failed=1
done

# KIND|EDIT|EXPECTED
while IFS='|' read -r kind edit expected; do
    sed -E "$edit" "$work/$kind" >"$work/planted"
    if output=$("$check" "$kind" "$work/planted" 2>&1) || [[ $output != *"$expected"* ]]; then
        printf 'not noticed in the %s: %s\n%s\n' "$kind" "$edit" "$output"
        failed=1
    fi
done <<'ROWS'
trace|1s/-//|not a line of a run
trace|7s/[0-9]+/x/|expected process id
trace|12s/\[[0-9]/[/;12s/\[[0-9]/[/;12s/\[[0-9]/[/;12s/\[[0-9]/[/;12s/\[[0-9]/[/;12s/\[[0-9]/[/|not a line of a run
trace|s/^([^.]*\.[0-9]+\]) +[0-9]+: /\1 /|neither a source line nor an event
trace|s/^1\. /2. /|expected stack entry 1
trace|s/appended/started/|expected appended
trace|$d|ends too early
trace|/End time/d|expected end time
log|1,8d|expected rule
log|s/Error   :/Error:/|not a message
log|s/\] /]/|not a message
assert|/REASON/d|expected reason
assert|/^0\. /d|expected stack entry 0
assert|$d|ends too early
ROWS
exit $failed
