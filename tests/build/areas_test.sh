#!/usr/bin/env bash
# areas_test.sh TREE: a folder of the tree cannot drop out of the build in silence.
set -euo pipefail

tree=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

mkdir -p "$work"/{one,golden}
cat >"$work/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(areas LANGUAGES NONE)
include("$tree/cmake/pll_areas.cmake")
if(NAMED)
    pll_add_area(\${NAMED} "\${WANTED}")
endif()
pll_add_area(one ON)
pll_expect_folders(one golden build two)
file(GLOB ENTRIES *.txt)
pll_expect_listed(ENTRIES "\${LEAST}")
END
echo 'message(STATUS "entered one")' >"$work/one/CMakeLists.txt"

expect() { # STATUS WORDS_OF_THE_OUTPUT CMAKE_ARGUMENT...
    local expected=$1 words=$2 status=0 output
    shift 2
    output=$(cmake -S "$work" -B "$work/build" -DNAMED= -DWANTED=ON -DLEAST=1 "$@" 2>&1) || status=$?
    if [[ $((status != 0)) -ne $expected || $(tr -s '\n ' '  ' <<<"$output") != *"$words"* ]]; then
        echo "cmake $*: exit status $status, and not '$words' in:" >&2
        echo "$output" >&2
        failures=$((failures + 1))
    fi
}

expect 0 'entered one'
expect 1 'ENTRIES: 1 files found, at least 2 expected' -DLEAST=2
mkdir "$work/two"
expect 1 'two has no CMakeLists.txt' -DNAMED=two
expect 0 'entered one' -DNAMED=two -DWANTED=OFF
expect 1 'nowhere has no CMakeLists.txt' -DNAMED=nowhere
mkdir "$work/three"
expect 1 'three is not entered'

exit $((failures != 0))
