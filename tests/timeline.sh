#!/bin/bash
# timeline.sh PROGRAM [CASE]: what quor-timeline makes of small traces, of one with all that readers meet
# (timeline/tricky.trace), and of files that are compressed, endless or growing.
#
# timeline/cases is a table. "# " says what a case shows, and begins with an empty folder. "> " is a line of
# the file "trace", or of the one that ">> FILE" named last: "START DATE TIME PROGRAM PID" is a banner, "END
# DATE TIME" a trailer, and "101 10:00:01.5 TEXT" the line of a thread. "$ " are arguments; below them is all
# that the program writes; if it fails, also what it says on standard error, and its exit code.
set -euo pipefail
program=$(realpath "$1")
cd "$(dirname "$0")/timeline"
tables=$PWD
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
status=0
fail() {
    echo "$*"
    status=1
}
written() { # of what makes the lines of a trace
    local rule
    rule=$(printf '%079d' 0 | tr 0 -)
    sed -E 's/^> ?//; s/\{CR\}$/\r/
        s/^([0-9]{3} [0-9:]{8}) ?(.*)$/\1.0 \2/; s/^([0-9]{3} [0-9:]{8})\.0 \.([0-9])/\1.\2/
        s/^([0-9]{3}) ([0-9:]{8}\.[0-9]) ?(.*)$/[00\1: \200000000]   10: \3/
        s/\]   10: (0\. |\*\*\* Trac)/] \1/
        s/^START (.*) (.*) (.*) (.*)$/'"$rule"'\n* ***** Trace started *****\n\n* Version       : \n* Start time    : \1 \2.000000000\n* Process name  : \3\n* Process id    : \4\n'"$rule"'\n/
        s/^END (.*)$/\n'"$rule"'\n* ***** Trace stopped *****\n\n* End time      : \1.000000000\n'"$rule"'/'
}
ran() { # ARGUMENTS: all that the program does
    local code=0
    if [[ $1 = *.gz* ]]; then gzip -kf "${file%.gz}" && head -c 60 "$file.gz" >damaged.gz; fi
    eval "\"$program\" $1" >out 2>told </dev/null || code=$?
    cat out
    [ $code -eq 0 ] || { sed 's/^/told: /' told; echo "exit $code"; }
}
check() { # CASE: one by one, the arguments and the lines that are expected
    local line arguments="" expected="" file=trace text=""
    rm -f ./*
    compare() {
        if [ -n "$text" ]; then written <<<"${text%$'\n'}" >>"$file"; fi
        text=""
        if [ -n "$arguments" ] && ! diff <(echo -n "$expected") <(ran "$arguments") >difference; then
            fail "$1"$'\n'"\$ $arguments"$'\n'"$(cat difference)"
        fi
        arguments="" expected=""
    }
    while IFS= read -r line; do
        case $line in
            '>> '*) compare "$1"; file=${line#>> }; : >"$file" ;;
            '>'*) if [ -n "$arguments" ]; then compare "$1"; fi; text+=$line$'\n' ;;
            '$ '*) compare "$1"; arguments=${line#\$ } ;;
            *) expected+=$line$'\n' ;;
        esac
    done
    compare "$1"
}
while IFS= read -r line; do
    if [ "${line:0:2}" = "# " ]; then title=$line; lines=(); continue; fi
    if [ -n "$line" ]; then lines+=("$line"); continue; fi
    check "$title" < <(printf '%s\n' "${lines[@]}")
done < <(cat "$tables/cases"; echo)

same() { # WHAT EXPECTED FOUND
    [ "$2" = "$3" ] || fail "$1 - expected:"$'\n'"$2"$'\n'"found:"$'\n'"$3"
}
same "a trace with all that readers meet" "$(cat "$tables/tricky.folded")" "$("$program" --folded "$tables/tricky.trace" 2>told)"
same "its faults" "quor-timeline: lines not understood: 4, exits without entry: 1, calls without exit: 4, clock set back: 1" "$(cat told)"

# A thousand calls without exit between an entry and its exit, and one more; texts without an end.
deep() {
    echo '[00001: 00:00:00.000000000]    1: ==> void Outer()'
    seq -f '[00001: 00:00:00.000000000]    2: ==> void Inner%g()' "$1"
    echo '[00001: 00:00:00.000000001]    1: <== void Outer()'
}
same "1000 and 1001 calls" "exits without entry: 0, calls without exit: 1000 exits without entry: 1, calls without exit: 1002" \
    "$({ deep 1000 | "$program" --folded; deep 1001 | "$program" --folded; } 2>&1 >/dev/null |
        grep -o 'exits without entry.*exit: [0-9]*' | paste -s -d ' ')"
printf '[00001: 00:00:00.000000001]    1: ==> %0100000d\n' 0 >long # a search by recursion would need a stack of its length
same "a long text" "" "$("$program" --folded --function '0.*x' long 2>&1)"
"$program" long >/dev/full 2>/dev/null && fail "a full disk is no error"
"$program" --help >/dev/full 2>/dev/null && fail "a full disk is no error to the help"
"$program" --function '(' long >told 2>&1 && fail "a wrong expression is no error"
"$program" no_such_file 2>told && fail "a missing file is no error"
same "a missing file" "quor-timeline: no_such_file: No such file or directory" "$(cat told)"

# The manual knows the options, and no others.
options() { grep -oE -- '--[a-z]{2,}[a-z-]*' | sort -u; }
differ=$(diff <("$program" --help | options) <(sed 's/\\-/-/g' "$tables/../../docs/man/quor-timeline.1" | options)) ||
    fail "options in the help and in the manual:"$'\n'"$differ"

# What the page about it shows; of the stacks without times, the threads numbered as they appear.
docs=$tables/../../docs
sed -n '/^==> hanging.trace/,/^==> status/{/^==> /!p}' "$docs/examples/hanging.out" >hanging.trace
same "docs/stuck.txt" "$(cat "$docs/stuck.txt")" "$("$program" --stuck hanging.trace 2>/dev/null)"
same "docs/folded.txt" "$(cat "$docs/folded.txt")" "$("$program" --folded hanging.trace 2>/dev/null | awk -F ';' '
    !($1 in number) { number[$1] = ++threads } { sub(/^[0-9]+;/, number[$1] " "); sub(/ [0-9]+$/, ""); print }')"

# As its release 1.25.0 publishes it.
"$program" --speedscope "$tables/tricky.trace" >speedscope.json 2>/dev/null
jsonschema -i speedscope.json "$tables/speedscope.schema.json" || fail "speedscope refuses it"

# A file that grows, and is replaced: what is there at the signal is read before the end. The program is
# ready for the signal once it blocks it.
sed -n 1,9p <(written <<<'> START 2026-01-31 10:00:00 spoold 100') >growing
"$program" --follow --folded growing 2>/dev/null && fail "folded stacks cannot be followed"
"$program" --follow --stuck growing >followed 2>told &
follower=$!
until [ $((0x$(sed -n 's/^SigBlk:\t//p' /proc/$follower/status) & 2)) -ne 0 ]; do :; done
written <<<'> 101 10:00:01 ==> void Hang()' >>growing
mv growing renamed
written <<<'> 101 10:00:02 ==> void HangDeeper()' >growing
kill -INT $follower
wait $follower || fail "following ended with an error"
same "a growing file" "Hang  growing:10 HangDeeper  growing:1" \
    "$(sed -nE 's/^    .* (Hang.*)$/\1/p' followed | paste -s -d ' ')"
exit $status
