#!/bin/bash
# planted_faults.sh LIBRARY_FOLDER VERSION COMPILER EXAMPLES: each check of scripts/ fails, for the
# right reason, on an input with a fault planted in it.
set -euo pipefail
cd "$(dirname "$0")/.."
library_folder=$1 version=$2 compiler=$3 examples=$4
library=$library_folder/libzelvarquor.so.$version
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

fails_with() { # fails_with TEXT COMMAND...
    local expected=$1 output
    shift
    if output=$("$@" 2>&1); then
        echo "not noticed: $*"
        failed=1
    elif ! grep -qF -- "$expected" <<<"$output"; then
        printf 'expected "%s" from: %s\n%s\n' "$expected" "$*" "$output"
        failed=1
    else
        echo "noticed: $expected"
    fi
}

# The guard: a script that is killed leaves neither its daemon nor its folder. The pipe ends with both.
mkdir "$work/run"
mkfifo "$work/end"
bash -c '(setsid scripts/guard $$ "$0" >"$1" &); cd "$0"; (setsid sleep 600 >"$1" &); kill -KILL $$' \
    "$work/run" "$work/end" &
cat "$work/end"
[ ! -e "$work/run" ] || { echo "not removed: a folder under guard"; failed=1; }

# Layers: FILE INCLUDE EXPECTED
while IFS='|' read -r file include expected; do
    rm -rf "$work/quor"
    cp -r core/shared/quor "$work/quor"
    echo "#include $include" >>"$work/quor/$file"
    fails_with "$expected" scripts/check-layers "$work/quor"
done <<'ROWS'
process.h|<quor/log.h>|process (foundations) may not include log (reporting)
log.cpp|"time.h"|write <quor/NAME.h>
novelty.cpp|<quor/time.h>|module novelty has no layer
ROWS

# Exports: one symbol too few, a variable that the library does not look up
{ cat tests/exported_symbols.txt; echo 'quor::~'; } >"$work/list"
fails_with '-quor::~' scripts/check-exports "$library" "$work/list"
echo 'int g_number; int Number() { return g_number; }' >"$work/number.cpp"
"$compiler" -fPIC -shared -Wl,-Bsymbolic "$work/number.cpp" -o "$work/number.so"
scripts/check-exports "$work/number.so" "$work/list" --update
fails_with 'must name g_number' scripts/check-exports "$work/number.so" "$work/list"

# The file: names, then the strings in it
mkdir "$work/lib"
fails_with 'is not a file of its own' scripts/check-library "$work/lib" "$version"
cp "$library" "$work/lib/"
fails_with 'does not link to' scripts/check-library "$work/lib" "$version"
ln -s "libzelvarquor.so.$version" "$work/lib/libzelvarquor.so"
plant_ident() { # same length, so that offsets stay
    objcopy --dump-section .rodata="$work/rodata" "$library" "$work/unused"
    LC_ALL=C sed "$1" "$work/rodata" >"$work/planted"
    objcopy --update-section .rodata="$work/planted" "$library" "$work/lib/libzelvarquor.so.$version"
}
plant_ident 's/KPXVersion/KPXVersiom/'
fails_with 'read-only data starts with' scripts/check-library "$work/lib" "$version"
plant_ident 's/\$KPXBuildTime: /$KPXBuildTime; /'
fails_with 'string 4 is: $KPXBuildTime;' scripts/check-library "$work/lib" "$version"

# The gate: a call before the branch; a way out that never asks
echo 'bool Gate(); void Write(); void AsksByCall() { if (Gate()) Write(); } int NeverAsks(int files) { return files; }' |
    "$compiler" -O2 -c -x c++ - -o "$work/gate.o"
for function in AsksByCall NeverAsks; do
    fails_with "$function cannot return past a closed gate without a call" \
        scripts/check-gate "$work/gate.o" "$function"
done

# The documents: another program, another output, another name of a test
mkdir "$work/tree"
cp -r README.md docs "$work/tree"
for change in 'README.md|s/files : {2, 0}/files : {3, 0}/|+    for (int files : {2, 0})' \
    'docs/examples/signals.out|s/Quit/Quits/|-Quits' \
    'docs/promises.md|s/Log\.Copies/Log.Hides/|no test Log.Hides'; do
    IFS='|' read -r page edit expected <<<"$change"
    sed "$edit" "$page" >"$work/tree/$page"
    QUOR_TREE=$work/tree fails_with "$expected" scripts/check-docs "$examples"
    cp "$page" "$work/tree/$page"
done

exit $failed
