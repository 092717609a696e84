#!/usr/bin/env bash
# embed_test.sh TREE GENERATOR COMPILER: a project that adds the tree as a subdirectory gets the
# library alone, and no warning of ours stops its build.
set -euo pipefail

tree=$1
generator=$2
compiler=$3

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "embed_test.sh: $*" >&2
    exit 1
}

cat >"$work/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(embedder LANGUAGES CXX)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
add_subdirectory("$tree" pll)
add_executable(host "$tree/examples/host.cpp")
target_link_libraries(host PRIVATE pll::pll)
foreach(target pllcalc pll_unit_tests pll_bench example_host)
    if(TARGET \${target})
        message(FATAL_ERROR "\${target} is built for those who want the library")
    endif()
endforeach()
END
cmake -G "$generator" -S "$work" -B "$work/build" -DCMAKE_CXX_COMPILER="$compiler" \
    >"$work/log" 2>&1 || {
    cat "$work/log" >&2
    fail "cannot be embedded"
}
commands=$work/build/compile_commands.json
grep -q -- 'ffp-contract=off' "$commands" || fail "our flags do not reach our sources"
if grep -q -- '-Werror' "$commands"; then
    fail "our warnings are errors of others"
fi
if grep -- 'ffp-contract=off' "$commands" | grep -q 'host\.cpp'; then
    fail "our flags reach the sources of others"
fi
echo "embed_test.sh: ok"
