#!/usr/bin/env bash
# same_bits_of_builds.sh REQUESTS: the hash over so many answers is the same for g++ and clang, for
# -O0, -O2 and -O3 -march=native, with link-time optimisation, and where an embedding build asks for
# -ffast-math; each in the four rounding modes and two locales with a decimal comma.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

requests=$1
expected=

# take_hash NAME COMPILER FLAGS: builds in build/soak/NAME.
take_hash() {
    local folder=build/soak/$1 hash
    cmake -G Ninja -S . -B "$folder" -DCMAKE_CXX_COMPILER="$2" -DCMAKE_CXX_FLAGS="$3" \
        -DCMAKE_BUILD_TYPE=None -DPLL_HARDENING=OFF -DPLL_BUILD_APP=OFF -DPLL_BUILD_EXAMPLES=OFF >/dev/null
    cmake --build "$folder" --target pll_answer_hash >"$folder/log" 2>&1 || {
        tail -n 30 "$folder/log" >&2
        exit 1
    }
    hash=$(tests/bits/same_bits.sh "$folder/tests/bits/pll_answer_hash" data/sample "$requests")
    echo "$hash  $2 $3"
    [[ -z $expected || $hash == "$expected" ]] || {
        echo "same_bits_of_builds.sh: $hash instead of $expected" >&2
        exit 1
    }
    expected=$hash
}

for compiler in g++ clang++; do
    take_hash "$compiler-0" "$compiler" "-O0"
    take_hash "$compiler-2" "$compiler" "-O2"
    take_hash "$compiler-3" "$compiler" "-O3 -march=native"
    take_hash "$compiler-lto" "$compiler" "-O2 -flto"
    take_hash "$compiler-fast" "$compiler" "-O3 -ffast-math"
done
echo "one hash over $requests answers"
