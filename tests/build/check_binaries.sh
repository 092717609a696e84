#!/usr/bin/env bash
# check_binaries.sh search_paths BINARY...: the loader looks for libraries beside the binary or in
# absolute folders only, never in the current directory, which an empty or relative entry means.
#
# check_binaries.sh hardening BINARY...: programs and shared libraries resolve their symbols at the
# start and make the table read-only, have no executable stack and load at any address; the code
# of a static library checks its stacks and, where CONTROL_FLOW_PROTECTION is 1, marks what may be
# jumped to.
set -euo pipefail

check=$1
shift
failures=0

complain() {
    echo "check_binaries.sh: $*" >&2
    failures=$((failures + 1))
}

# The entries of the search path, one a line; nothing when there is none.
list_entries() { # BINARY
    readelf -dW "$1" | sed -nE 's/^.*\((RUNPATH|RPATH)\).*\[(.*)\]$/\2:/p' | tr -d '\n' | tr ':' '\n'
}

check_search_paths() { # BINARY
    local entry
    while IFS= read -r entry; do
        case $entry in
        /* | "\$ORIGIN" | "\$ORIGIN/"*) ;;
        *) complain "$1 searches '$entry' for libraries: empty and relative entries are the current directory" ;;
        esac
    done < <(list_entries "$1")
}

check_hardening_of_image() { # BINARY
    local dynamic segments
    dynamic=$(readelf -dW "$1")
    segments=$(readelf -lW "$1")
    grep -q 'BIND_NOW' <<<"$dynamic" || complain "$1 resolves symbols late: no BIND_NOW"
    grep -q 'GNU_RELRO' <<<"$segments" || complain "$1 has no read-only table: no RELRO"
    grep -qE 'GNU_STACK.* RW ' <<<"$segments" || complain "$1 may execute its stack"
    readelf -hW "$1" | grep -E 'Type: +DYN' >/dev/null || complain "$1 loads at a fixed address"
}

check_hardening_of_objects() { # ARCHIVE
    local objects marked
    nm -u "$1" 2>/dev/null | grep '__stack_chk_fail' >/dev/null || complain "$1 does not check its stacks"
    objects=$(ar t "$1" | wc -l)
    [[ ${CONTROL_FLOW_PROTECTION:-0} == 1 ]] || return 0
    marked=$(readelf -nW "$1" | grep -cE 'x86 feature:.*IBT, SHSTK' || true)
    [[ $marked -eq $objects ]] ||
        complain "$marked of the $objects objects of $1 mark what may be jumped to"
}

for binary in "$@"; do
    [[ -f $binary ]] || complain "there is no $binary"
    case $check/$binary in
    search_paths/*) check_search_paths "$binary" ;;
    hardening/*.a) check_hardening_of_objects "$binary" ;;
    hardening/*) check_hardening_of_image "$binary" ;;
    *) complain "unknown check '$check'" ;;
    esac
done
if [[ $failures -eq 0 ]]; then
    echo "check_binaries.sh: $check of $# files: ok"
fi
exit $((failures != 0))
