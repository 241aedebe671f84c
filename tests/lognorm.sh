#!/bin/bash
# lognorm.sh LOGNORMALIZER RULEBASE FOLDER: how many lines of each kind liblognorm finds in the trace and the
# log of make_sample.sh, and where it ends the name of a source file.
set -euo pipefail
normalizer=$1
rules=$(realpath "$2")
cd "$3"
normalize() { "$normalizer" -T -r "$rules" -e json | jq -r "$1"; }
status=0
expect() { # EXPECTED FOUND
    diff <(echo "$1") <(echo "$2") || status=1
}

expect "2 log,critical
2 log,error
4 log,info
2 log,warning
52 trace
2 trace,critical
48 trace,entry
14 trace,error
10 trace,event
46 trace,exit
4 trace,info
4 trace,warning" "$(cat sample.trace sample.log | normalize 'select(."event.tags") | ."event.tags" | join(",")' |
    LC_ALL=C sort | uniq -c | sed 's/^ *//')"
expect "reader2 76 in
reader21076 null in" "$(printf '[00100: 00:00:01.000000100] %s: in\n' 'reader2  76' reader21076 |
    normalize '"\(.file) \(.line) \(.text)"')"
exit $status
