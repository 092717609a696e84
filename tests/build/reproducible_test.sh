#!/usr/bin/env bash
# reproducible_test.sh TREE COMPILER some|all: two copies of the tree, in folders with names of
# different length, give the same bytes. "some" compiles what uses the names of source files, with
# the facts for a debugger too; "all" builds the libraries and the program.
set -euo pipefail

tree=$1
compiler=$2
extent=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# What a cache of objects kept may name the folder of somebody else.
export CCACHE_DISABLE=1

fail() {
    echo "reproducible_test.sh: $*" >&2
    exit 1
}

step() {
    "$@" >"$work/log" 2>&1 || {
        cat "$work/log" >&2
        fail "failed: $*"
    }
}

# Where the objects come from, and which files are compared.
objects=()
while IFS= read -r source; do
    objects+=("pll/CMakeFiles/pll_objects.dir/${source#pll/}.o")
done < <(cd "$tree" && grep -rl --include='*.cpp' __FILE__ pll | LC_ALL=C sort)
[[ ${#objects[@]} -ge 2 ]] || fail "no sources with the names of files found"

build_in() { # FOLDER
    mkdir -p "$1"
    (cd "$tree" && cp -r CMakeLists.txt cmake include h pll app data "$1")
    [[ ! -d $tree/advice ]] || cp -r "$tree/advice" "$1"
    local flags=-g targets=("${objects[@]}")
    if [[ $extent == all ]]; then
        flags=
        targets=(pll pll_static pll_advice pllcalc)
    fi
    step cmake -G Ninja -S "$1" -B "$1/out" -DCMAKE_CXX_COMPILER="$compiler" \
        -DPLL_BUILD_TESTS=OFF -DPLL_BUILD_EXAMPLES=OFF -DCMAKE_CXX_FLAGS="$flags"
    step cmake --build "$1/out" --target "${targets[@]}"
}

first=$work/here
second=$work/elsewhere/with/a/longer/name
build_in "$first"
build_in "$second"

compared=0
while IFS= read -r file; do
    compared=$((compared + 1))
    cmp "$first/out/$file" "$second/out/$file" >&2 || fail "$file differs between the two folders"
    if grep -aq "$work" "$first/out/$file"; then
        fail "$file names the folder that it was built in"
    fi
done < <(cd "$first/out" && find . -type f \( -name '*.o' -o -name '*.so.*' -o -name '*.a' -o -name pllcalc \) | LC_ALL=C sort)
[[ $compared -ge ${#objects[@]} ]] || fail "only $compared files were compared"
echo "reproducible_test.sh: $compared files are the same"
