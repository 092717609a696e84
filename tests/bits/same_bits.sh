#!/usr/bin/env bash
# same_bits.sh PROGRAM DATABASE REQUESTS: the answers that PROGRAM, a pll_answer_hash, hashes are the
# same for every host: in the four rounding modes, where denormal numbers are flushed, where invalid
# arithmetic traps, and in two locales with a decimal comma. Prints the hash.
set -euo pipefail

program=$1
database=$2
requests=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export LOCPATH=$work

fail() {
    echo "same_bits.sh: $*" >&2
    exit 1
}

take_hash() { # OPTION...
    "$program" --requests "$requests" --database "$database" "$@" ||
        fail "status $? with the options: $*"
}

# One locale with thousands in threes, one with hundreds in twos and another sign for them.
make_locale() { # NAME SEPARATOR GROUPING
    printf '%s\n' 'comment_char %' 'escape_char /' LC_NUMERIC 'decimal_point ","' \
        "thousands_sep \"$2\"" "grouping $3" 'END LC_NUMERIC' >"$work/$1.src"
    # Warns of what the source leaves out.
    (cd "$work" && localedef -c -i "$1.src" -f ANSI_X3.4-1968 "./$1" >log 2>&1) || true
    [[ -d $work/$1 ]] || fail "localedef makes no locale: $(cat "$work/log")"
}
make_locale comma . '3;3'
make_locale comma_and_space ' ' '3;2'

expected=$(take_hash)
expect_same() { # OPTION...
    local hash
    hash=$(take_hash "$@")
    [[ $hash == "$expected" ]] || fail "$hash instead of $expected with the options: $*"
}
for mode in up down zero; do
    expect_same --rounding "$mode"
done
expect_same --denormals flushed
expect_same --traps on
expect_same --locale comma
expect_same --locale comma_and_space --rounding up
echo "$expected"
