#!/bin/bash
# rotation.sh PROGRAM CONFIGURATION: rotates the log and the trace of a busy program five times, by
# logrotate and our configuration for it. Every line is found exactly once.
set -euo pipefail
command -v logrotate >/dev/null || PATH=$PATH:/usr/sbin
folder=$(mktemp -d)
(setsid "$(dirname "$0")/../scripts/guard" $$ "$folder" >/dev/null 2>&1 &)
trap 'kill "$host" 2>/dev/null || true; rm -rf "$folder"' EXIT
exec {answers}< <(cd "$folder" && exec "$1" "$folder" 5)
host=$!
sed -e "s|/var/log/spoold|$folder|g; s|systemctl kill .*|kill -HUP $host|; s|weekly|size 1|" "$2" >"$folder/conf"
await() {
    read -r -t 60 -u $answers answer && [ "$answer" = "$1" ] && return
    echo "instead of '$1' the program answered '${answer:-}'"
    exit 1
}
await ready
for rotation in 1 2 3 4 5; do
    logrotate --force --state "$folder/state" "$folder/conf"
    await $rotation
done
while kill -0 "$host" 2>/dev/null; do read -r -t 1 -u $answers _ || true; done

status=0
once() { # WORD FILE...: the lines with that word, each thread's numbers without gap or repetition
    local word=$1
    shift
    gzip -cdf "$@" | grep -ao "$word [0-9]*-[0-9]*$" | sort | uniq -c | awk -v word="$word" '
        $1 != 1 { print "not once: " $0; bad = 1 }
        { split($3, part, "-"); ++count[part[1]]; if (part[2] > last[part[1]]) last[part[1]] = part[2] }
        END {
            for (thread in count)
                if (count[thread] != last[thread] + 1) { print word ": lines of " thread " are missing"; bad = 1 }
            if (length(count) != 8) { print word ": not of eight threads"; bad = 1 }
            exit bad
        }' || status=1
}
once traced "$folder"/spoold.trace*
once logged "$folder"/spoold.log*
once logged "$folder"/spoold.trace* # the copies
[ "$(ls "$folder"/spoold.trace* | wc -l)" -eq 6 ] || { ls "$folder"; status=1; }
exit $status
