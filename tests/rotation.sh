#!/bin/bash
# rotation.sh SPOOLD CONFIGURATION: logrotate, by our configuration for it, rotates the log and the trace of a
# busy spoold. Every line is found exactly once, and each trace is whole.
set -euo pipefail
command -v logrotate >/dev/null || PATH=$PATH:/usr/sbin
folder=$(mktemp -d)
(setsid "$(dirname "$0")/../scripts/guard" $$ "$folder" >/dev/null 2>&1 &)
trap 'kill "$spoold" 2>/dev/null || true; rm -rf "$folder"' EXIT
program=$(realpath "$1")
configuration=$(realpath "$2")
cd "$folder"
mkdir spool
"$program" --spool spool --log spoold.log --trace spoold.trace --level low --foreground &
spoold=$!
await() { # COMMAND...
    local deadline=$((SECONDS + 60))
    until "$@" 2>/dev/null; do
        [ $SECONDS -lt $deadline ] || { echo "in vain: $*"; cat spoold.log; exit 1; }
        sleep 0.01
    done
}
await grep -q Started spoold.log
sed -e "s|/var/log/spoold|$folder|g; s|systemctl kill .*|kill -HUP $spoold|; s|weekly|size 1|" "$configuration" >conf
touch spool/{100..299}
logrotate --force --state "$folder/state" conf
await grep -q "Trace reopened" spoold.log
touch spool/last
await eval '[ "$(ls spool/done/*.report | wc -l)" -eq 201 ]'
kill -TERM "$spoold"
wait "$spoold"

same() { diff <(echo "$1") <(echo "$2") || exit 1; } # EXPECTED FOUND
same "$({ seq 100 299; echo last; } | sed "s/.*/Done: '&'/")" "$(cat spoold.trace* | grep -o "Done: '.*'" | sort)"
same "$(printf '%s\n' 'Info    : Signal: Hangup' 'Info    : Signal: Terminated')" \
    "$(cat spoold.log* | grep -o 'Info    : Signal: .*' | sort)"
for trace in spoold.trace spoold.trace.1; do
    same "1 1" "$(grep -c 'Trace started' $trace) $(tail -n 5 $trace | grep -c 'Trace stopped')"
done
