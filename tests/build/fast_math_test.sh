#!/usr/bin/env bash
# fast_math_test.sh TREE GENERATOR COMPILER: a project that builds itself with -Ofast, -ffast-math
# and their parts, and adds the tree as a subdirectory, gets a library with exact arithmetic, which
# does not make its host flush denormal numbers to zero when it is loaded.
set -euo pipefail

tree=$1
generator=$2
compiler=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
FLAGS="-Ofast -ffast-math -funsafe-math-optimizations -fassociative-math -freciprocal-math -ffinite-math-only"

fail() {
    echo "fast_math_test.sh: $*" >&2
    exit 1
}

step() {
    "$@" >"$work/log" 2>&1 || {
        cat "$work/log" >&2
        fail "failed: $*"
    }
}

# A library that takes our flags as libpll does, one that does not, and a host that loads either.
cat >"$work/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(embedder LANGUAGES CXX)
add_subdirectory("$tree" pll)
add_library(exact SHARED sum.cpp)
target_link_libraries(exact PRIVATE pll_flags)
add_library(careless SHARED sum.cpp)
END
# To those who reorder the sum is 0, and who know no NaN take it for equal to itself.
cat >"$work/sum.cpp" <<'END'
extern "C" int exact_arithmetic(double large, double small, double nan);

extern "C" int exact_arithmetic(double large, double small, double nan)
{
    const double rest = (large + small) - large;
    return rest != small && nan != nan;
}
END
cat >"$work/host.cpp" <<'END'
#include <cfloat>
#include <dlfcn.h>
#include <limits>

// 0: exact; 1: inexact; 2: denormal numbers are lost; 3: not loaded.
int main(int, char** arguments)
{
    void* const library = dlopen(arguments[1], RTLD_NOW);
    void* const symbol = library == nullptr ? nullptr : dlsym(library, "exact_arithmetic");
    if (symbol == nullptr) {
        return 3;
    }
    volatile double smallest = DBL_MIN;
    volatile double half = smallest / 2;
    if (half == 0) {
        return 2;
    }
    const auto is_exact = reinterpret_cast<int (*)(double, double, double)>(symbol);
    return is_exact(1e16, 5.0, std::numeric_limits<double>::quiet_NaN()) != 0 ? 0 : 1;
}
END
step "$compiler" -O2 "$work/host.cpp" -o "$work/host" -ldl
step cmake -G "$generator" -S "$work" -B "$work/build" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="$FLAGS" -DCMAKE_SHARED_LINKER_FLAGS="-ffast-math"
step cmake --build "$work/build" --target exact careless

"$work/host" "$work/build/libexact.so" || fail "with our flags a library has status $?"
if "$work/host" "$work/build/libcareless.so"; then
    fail "without our flags nothing goes wrong: this test shows nothing"
fi

# libpll links with what the first library was linked with.
if [[ $generator == Ninja ]]; then
    command=$(ninja -C "$work/build" -t commands pll | grep -e ' -shared ')
    [[ $command == *-ffast-math*-fno-fast-math*-fno-unsafe-math-optimizations* ]] ||
        fail "our flags do not come last where libpll is linked: $command"
fi
echo "fast_math_test.sh: ok"
