#!/usr/bin/env bash
# debug_switch_test.sh TREE COMPILER: a library that is built with PLL_DEBUG_SWITCH off never asks
# the system whether a file is there, which the synthesis of others does.
set -euo pipefail

tree=$1
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "debug_switch_test.sh: $*" >&2
    exit 1
}

step() {
    "$@" >"$work/log" 2>&1 || {
        cat "$work/log" >&2
        fail "failed: $*"
    }
}

source=$(cd "$tree/pll" && grep -rl 'access(' --include='*.cpp' .)
object=pll/CMakeFiles/pll_objects.dir/${source#./}.o
[[ $(wc -l <<<"$source") -eq 1 ]] || fail "not one source asks for files: $source"

# calls_access VALUE: whether the object, built with PLL_DEBUG_SWITCH at VALUE, asks for files.
calls_access() {
    step cmake -G Ninja -S "$tree" -B "$work/$1" -DCMAKE_CXX_COMPILER="$compiler" \
        -DPLL_DEBUG_SWITCH="$1" -DPLL_BUILD_TESTS=OFF -DPLL_BUILD_APP=OFF -DPLL_BUILD_EXAMPLES=OFF
    step cmake --build "$work/$1" --target "$object"
    nm -u "$work/$1/$object" | grep -w 'access' >/dev/null
}

calls_access ON || fail "a library with the switch does not look for it: this test shows nothing"
if calls_access OFF; then
    fail "a library without the switch looks for it"
fi
echo "debug_switch_test.sh: ok"
