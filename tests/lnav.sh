#!/bin/bash
# lnav.sh LNAV FORMAT FOLDER: lnav takes the format without a word, finds every message in its samples,
# and reads the trace and the log of make_sample.sh together.
set -euo pipefail
lnav=$1
format=$(realpath "$2")
cd "$3"
HOME=$(mktemp -d)
export HOME XDG_CONFIG_HOME=$HOME TERM=dumb
trap 'rm -rf "$HOME"' EXIT
status=0
expect() { # EXPECTED FOUND
    diff <(echo "$1") <(echo "$2") || status=1
}
query() { "$lnav" -n -c ";$1" -c ':write-csv-to -' sample.trace sample.log </dev/null 2>&1 | tail -n +2; }

"$lnav" -i "$format"
expect "" "$("$lnav" -n -C 2>&1)"

# What is seen is the lines themselves, but for what lnav puts around them.
expect "$(grep -cE '==> |\*\* Thrown|Info    : |Critical: ' sample.trace)" \
    "$("$lnav" -n sample.trace 2>&1 </dev/null | grep -cE '==> |\*\* Thrown|Info    : |Critical: ')"

# The blocks at the top of the files have no level. Each message of the log is in the trace at its time.
expect "unknown,9,8
trace,94,0
debug,52,0
info,4,4
notice,12,0
warning,4,2
error,14,2
critical,2,2" "$(query "SELECT log_level, sum(log_format = 'quor_trace'), sum(log_format = 'quor_log')
    FROM all_logs GROUP BY log_level ORDER BY 1")"
expect "10" "$(query "SELECT count(DISTINCT quor_log.log_line) FROM quor_log JOIN quor_trace ON quor_trace.log_body LIKE '%: ' || quor_log.log_body
    AND abs(julianday(quor_trace.log_time) - julianday(quor_log.log_time)) < 2.0 / 86400")"
expect "0" "$(query "SELECT sum(back) FROM (SELECT log_time < lag(log_time) OVER (ORDER BY log_line) back FROM all_logs)")"

# A thread each for main, two workers and the loop of a controller.
expect "8,8" "$(query "SELECT count(DISTINCT log_opid), count(DISTINCT thread) FROM quor_trace")"
expect "$(sed -nE '/REQUEST/s/^\[([0-9]+):.*/\1/p' sample.trace | sort -u)" \
    "$(query "SELECT DISTINCT log_opid FROM quor_trace WHERE log_body LIKE '%REQUEST TO STOP' ORDER BY 1")"
expect "stack,4,4
text,8,8" "$(query "SELECT CASE WHEN log_body LIKE '0. %' THEN 'stack' ELSE 'text' END, count(*),
    sum(instr(log_body, '1. ') OR instr(log_body, '| '))
    FROM quor_trace WHERE log_body LIKE '%' || char(10) || '%' AND thread IS NOT NULL AND log_body NOT LIKE '%stopped%'
    GROUP BY 1")"
expect "<NULL>,1
sample,1" "$(query "SELECT file, count(DISTINCT line) FROM quor_trace
    WHERE function = 'void Read(int)' AND log_level = 'trace' GROUP BY file ORDER BY 1")"
exit $status
