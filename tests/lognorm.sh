#!/bin/bash
# lognorm.sh LOGNORMALIZER RULEBASE EXAMPLES: how many lines of each kind liblognorm finds in the traces and
# logs of docs/examples/*.out, which check-docs holds true, and where it ends the name of a source file.
set -euo pipefail
rules=$2
normalize() { "$normalizer" -T -r "$rules" -e json | jq -r "$1"; }
normalizer=$1
status=0
expect() { # EXPECTED FOUND
    diff <(echo "$1") <(echo "$2") || status=1
}

lines=$(awk '/^==> .* <==$/ { file = $2; next } file ~ /\.(trace|log)$/ && /^\[/' "$3"/*.out)
expect "$(awk '{
        kind = /^\[[0-9]+-/ ? "log" : "trace"
        if (/==> /) kind = kind ",entry"
        if (/<== /) kind = kind ",exit"
        if (/\] \*\*\* /) kind = kind ",event"
        if (/Info    : /) kind = kind ",info"
        if (/Warning : |WARNING: /) kind = kind ",warning"
        if (/Error   : |\*\* (Thrown|in: )/) kind = kind ",error"
        if (/Critical: /) kind = kind ",critical"
        print kind
    }' <<<"$lines" | sort | uniq -c)" \
    "$(normalize 'select(."event.tags") | ."event.tags" | join(",")' <<<"$lines" | sort | uniq -c)"
expect "reader2 76 in
reader21076 null in
null null stack
null 93 seen" "$(printf '%s\n' '[00100: 00:00:01.000000100] reader2  76: in' '[00100: 00:00:01.000000100] reader21076: in' \
    '[00100: 00:00:01.000000100] 0. stack' '[00100: 00:00:01.000000100]   93: Warning : seen' |
    normalize '"\(.file) \(.line) \(.text // .stack)"')"
exit $status
