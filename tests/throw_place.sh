#!/bin/bash
# throw_place.sh LIBRARY_FOLDER [FLAGS]: "** in: " names the function that built the exception, however and
# by whichever compiler the host is optimised, also when the library itself throws.
set -euo pipefail
cd "$(dirname "$0")/.."
host=$(mktemp)
trap 'rm -f "$host"' EXIT
expected=$(printf '** in: %s(%s(int))\n' "$host" Swallowed "$host" FromText "$host" FromString "$host" FromStream)
expected+=$'\n'"** in: $1/libzelvarquor.so.2.8(std::vector<bool, std::allocator<bool> > quor::Any::Get<std::vector<bool, std::allocator<bool> > >() const)"
failed=0
for compiler in g++ clang++; do
    command -v $compiler >/dev/null || continue
    # GCC would move a throw into a symbol that no stack can name.
    options=$([ $compiler = g++ ] && echo -fno-reorder-blocks-and-partition) || true
    for optimisation in -O0 -O2 -O3 "-O2 -flto"; do
        # shellcheck disable=SC2086 # lists of words
        $compiler ${2:-} -std=c++17 $optimisation $options -rdynamic -Icore/shared tests/hosts/throw_place.cpp \
            -o "$host" -L"$1" -lzelvarquor -Wl,-rpath,"$1"
        places=$("$host" | sed -n 's/.*\(\*\* in: .*\) \[0x[0-9a-f]*\]$/\1/p')
        if [ "$places" != "$expected" ]; then
            printf '%s %s:\n%s\n' "$compiler" "$optimisation" "$places"
            failed=1
        fi
    done
done
exit $failed
