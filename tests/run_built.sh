#!/bin/sh
# run_built.sh SOURCES BUILD: runs the tests of a build where there is no ctest, only a shell: each
# test of the test program in a process of its own, and the programs beside it. Ends in
# "N passed, N failed". Skipped tests are named.
set -u
sources=$1
build=$2
tests=$build/tests
passed=0
failed=0
output=$(mktemp)
trap 'rm -f "$output"' EXIT

run() { # NAME COMMAND...
    name=$1
    shift
    begin=$(date +%s)
    if "$@" >"$output" 2>&1 </dev/null; then
        passed=$((passed + 1))
        if grep -q '^\[  SKIPPED \]' "$output"; then
            echo "skipped $name: $(sed -n 's/.*: Skipped$//; /RUN/{n;p;}' "$output" | tail -n 1)"
        fi
    else
        failed=$((failed + 1))
        echo "FAILED  $name"
        cat "$output"
    fi
    seconds=$(($(date +%s) - begin))
    [ $seconds -lt 5 ] || echo "$name took $seconds s"
}

names=$("$tests/quor_tests" --gtest_list_tests | awk '
    /^[^ ]/ { suite = $1; next }
    /^ / && suite ~ /\.$/ { print suite $1 }')
[ -n "$names" ] || { echo "the test program lists no tests"; failed=1; }
for name in $names; do
    run "$name" "$tests/quor_tests" --gtest_filter="$name"
done
run late_reports "$sources/tests/late_reports.sh" "$tests/hosts/late_reports" 50
echo "$passed passed, $failed failed"
[ $failed -eq 0 ]
