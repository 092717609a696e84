#!/usr/bin/env bash
# install_test.sh BUILD HOST GENERATOR COMPILER FLAGS: installs BUILD into a temporary prefix,
# moves the tree, and builds and runs the program in HOST against it by find_package, by
# pkg-config and by the bare compiler. Nothing of the installed tree may remember where it was
# built or installed.
set -euo pipefail

build=$1
host=$2
generator=$3
compiler=$4
read -r -a flags <<<"$5"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
first=$work/first
moved=$work/moved/elsewhere
wanted="27 MHz in, 148.5 MHz and 74.25 MHz out: met"

fail() {
    echo "install_test.sh: $*" >&2
    exit 1
}

# run NAME COMMAND...: the program must say what the settings are.
run() {
    local name=$1 said
    shift
    said=$("$@") || fail "$name: the host ended with status $?"
    [[ $said == "$wanted" ]] || fail "$name: the host said '$said' instead of '$wanted'"
    echo "$name: ok"
}

step() {
    echo "== $*"
    "$@" >"$work/log" 2>&1 || {
        cat "$work/log" >&2
        fail "failed: $*"
    }
}

step cmake --install "$build" --prefix "$first"
mkdir -p "$(dirname "$moved")"
mv "$first" "$moved"

for header in pll.h pll_prop.h pll_util.h pll_info.h pll_manager.h \
    mem_alloc_sys.h msg_internal_error.h gen_string.h; do
    [[ -f $moved/include/libpll/$header ]] || fail "$header is not installed"
done
if grep -rIlE --include='*.cmake' --include='*.pc' --include='*.h' "$first|$build" "$moved"; then
    fail "the files above remember where they were built or first installed"
fi

libdir=$(dirname "$(find "$moved" -name libpll.so)")
package=$(find "$moved" -name pll.pc)
[[ -n $package ]] || fail "pll.pc is not installed"

step cmake -G "$generator" -S "$host" -B "$work/by_package" -DCMAKE_PREFIX_PATH="$moved" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$5"
step cmake --build "$work/by_package"
run "find_package, shared" "$work/by_package/host_shared"
run "find_package, static" "$work/by_package/host_static"

export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$package")
read -r -a cflags <<<"$(pkg-config --cflags pll)"
read -r -a libs <<<"$(pkg-config --libs pll)"
step "$compiler" -std=c++20 "${flags[@]}" "${cflags[@]}" "$host/host.cpp" "${libs[@]}" \
    -o "$work/by_pkg_config"
run "pkg-config" env LD_LIBRARY_PATH="$libdir" "$work/by_pkg_config"

step "$compiler" -std=c++20 "${flags[@]}" -I"$moved/include/libpll" "$host/host.cpp" \
    -L"$libdir" -lpll "-Wl,-rpath,$libdir" -o "$work/by_compiler"
run "bare compiler" "$work/by_compiler"

# The library is found by the number of its ABI, not by its full version.
rm "$libdir/libpll.so"
run "without the development link" "$work/by_compiler"

# The program, if it was built, finds the library of its own tree.
if [[ -f $build/app/pllcalc ]]; then
    step env -u LD_LIBRARY_PATH "$moved/bin/pllcalc" --help
    # The real devices and the templates are found beside it.
    step env -u LD_LIBRARY_PATH "$moved/bin/pllcalc" export --device ecp5 --in 25MHz --out 125MHz
fi
