#!/bin/bash
# lnav.sh LNAV FORMAT EXAMPLES: lnav takes the format without a word, finds every message in its samples,
# and reads the traces and logs in docs/examples/*.out together, as grep and awk see them. Those are what
# the library writes, which check-docs holds true.
set -euo pipefail
lnav=$1
format=$(realpath "$2")
examples=$(realpath "$3")
HOME=$(mktemp -d)
export HOME XDG_CONFIG_HOME=$HOME TERM=dumb
trap 'rm -rf "$HOME"' EXIT
cd "$HOME"
awk '/^==> .* <==$/ { file = $2; next } file ~ /\.(trace|log)$/ { print >file }' "$examples"/*.out
for file in *.trace *.log; do touch -d "$(sed -n 's/^\* Start time *: //p' "$file" | tail -n 1)" "$file"; done
status=0
expect() { # EXPECTED FOUND
    diff <(echo "$1") <(echo "$2") || status=1
}
query() { "$lnav" -n -c ";$1" -c ':write-csv-to -' *.trace *.log </dev/null 2>&1 | tail -n +2; }

"$lnav" -i "$format"
expect "" "$("$lnav" -n -C 2>&1)"

# What is seen is the lines themselves, but for what lnav puts around them.
expect "$(cat *.trace | grep -cE '==> |\*\* Thrown|Info    : |Critical: ')" \
    "$("$lnav" -n *.trace 2>&1 </dev/null | grep -cE '==> |\*\* Thrown|Info    : |Critical: ')"

# The blocks at the top of the files have no level.
expect "$(awk '/^\[/ {
        level = "debug"
        if (/(==>|<==) /) level = "trace"
        if (/Info    : /) level = "info"
        if (/\] \*\*\* /) level = "notice"
        if (/Warning : |WARNING: /) level = "warning"
        if (/Error   : |\*\* (Thrown|in: )/) level = "error"
        if (/Critical: /) level = "critical"
        ++count[level]; logged[level] += FILENAME ~ /log$/
    }
    /^\* End time/ { ++count["notice"] }
    END { for (level in count) print level "," count[level] - logged[level] "," logged[level] + 0 }' *.trace *.log | sort)" \
    "$(query "SELECT log_level, sum(log_format = 'quor_trace'), sum(log_format = 'quor_log')
    FROM all_logs WHERE log_level <> 'unknown' GROUP BY log_level" | sort)"
expect "0" "$(query "SELECT sum(back) FROM (SELECT log_time < lag(log_time) OVER (ORDER BY log_line) back FROM all_logs)")"

# Each message of a log is in a trace at its time, but for those of a trace that was off.
logged=$(sed -nE 's/^\[[-0-9: ]{19}\] //p' *.log)
expect "$(cat *.trace | sed -nE 's/^\[[0-9]+: [0-9:.]+\] +[0-9]+: //p' | grep -cxF "$logged")" \
    "$(query "SELECT count(DISTINCT quor_log.log_line) FROM quor_log JOIN quor_trace ON quor_trace.log_body LIKE '%: ' || quor_log.log_body || '%'
    AND abs(julianday(quor_trace.log_time) - julianday(quor_log.log_time)) < 2.0 / 86400")"

threads=$(cat *.trace | sed -nE 's/^\[([0-9]+):.*/\1/p' | sort -u | wc -l)
expect "$threads,$threads" "$(query "SELECT count(DISTINCT log_opid), count(DISTINCT thread) FROM quor_trace")"
expect "$(cat *.trace | sed -nE '/REQUEST/s/^\[([0-9]+):.*/\1/p' | sort -u)" \
    "$(query "SELECT DISTINCT log_opid FROM quor_trace WHERE log_body LIKE '%REQUEST TO STOP' ORDER BY 1")"
expect "$(sed -nE 's/^\[.*==> //p' *.trace | sort -u)" "$(query "SELECT DISTINCT function FROM quor_trace
    WHERE log_body LIKE '==>%'" | sed 's/^"//; s/"$//' | sort)"
exit $status
