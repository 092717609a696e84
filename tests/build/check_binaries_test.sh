#!/usr/bin/env bash
# check_binaries_test.sh SCRIPT COMPILER: the checks of binaries find what they look for, in small
# binaries that are built with one mistake each.
set -euo pipefail

script=$1
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "check_binaries_test.sh: $*" >&2
    exit 1
}

cat >"$work/main.cpp" <<'CODE'
#include <cstdio>
int main(int count, char**)
{
    char text[64];
    std::snprintf(text, sizeof text, "%d", count);
    return std::puts(text) < 0;
}
CODE
GOOD=(-O2 -fPIE -pie -fstack-protector-strong "-Wl,-z,relro" "-Wl,-z,now" "-Wl,-z,noexecstack")

link_program() { # FLAG...
    "$compiler" "${GOOD[@]}" "$work/main.cpp" -o "$work/program" "$@"
}

finds() { # CHECK WORDS
    if "$script" "$1" "$work/program" >"$work/said" 2>&1; then
        fail "$1 passes where it should say: $2"
    fi
    grep -q -- "$2" "$work/said" || fail "$1 does not say: $2"
}

link_program "-Wl,-rpath,/usr/lib:\$ORIGIN/../lib" -Wl,--enable-new-dtags
"$script" search_paths "$work/program" >/dev/null || fail "a sound search path is refused"
"$script" hardening "$work/program" >/dev/null || fail "a hardened program is refused"
link_program
"$script" search_paths "$work/program" >/dev/null || fail "a program without a search path is refused"

for path in /usr/lib: :/usr/lib /usr/lib::/lib ::: . lib; do
    link_program "-Wl,-rpath,$path" -Wl,--enable-new-dtags
    finds search_paths 'current directory'
done
link_program -Wl,-z,lazy
finds hardening BIND_NOW
link_program -Wl,-z,norelro
finds hardening RELRO
link_program -Wl,-z,execstack
finds hardening 'execute its stack'
link_program -fno-pie -no-pie
finds hardening 'fixed address'

"$compiler" -O2 -fno-stack-protector -fcf-protection=none -c "$work/main.cpp" -o "$work/main.o" \
    2>/dev/null || "$compiler" -O2 -fno-stack-protector -c "$work/main.cpp" -o "$work/main.o"
ar rc "$work/library.a" "$work/main.o"
if CONTROL_FLOW_PROTECTION=1 "$script" hardening "$work/library.a" 2>"$work/said"; then
    fail "unchecked stacks pass"
fi
grep -q 'does not check its stacks' "$work/said" || fail "unchecked stacks are not named"
grep -q '0 of the 1 objects' "$work/said" || fail "unmarked targets of jumps are not named"
echo "check_binaries_test.sh: ok"
