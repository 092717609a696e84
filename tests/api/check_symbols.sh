#!/usr/bin/env bash
# check_symbols.sh SHARED STATIC SONAME SOURCE: what the library asks of others and what it shows.
#
#  - No object refers to abort, exit or the standard streams, save that of the table check, which
#    writes to standard output.
#  - The shared library bears the name with its ABI number, needs only the runtime of C++ and C,
#    and exports nothing that no public header declares.
#  - What the static library defines for the linker is declared in a public header as well, or
#    stands in the namespace of what is internal: a host may have such names of its own.
set -euo pipefail

shared=$1
static=$2
soname=$3
source=$4
failures=0

complain() {
    echo "check_symbols.sh: $*" >&2
    failures=$((failures + 1))
}

# C functions and objects, then the stream objects and termination of C++, as the linker sees them.
ENDING='abort|exit|_exit|_Exit|quick_exit|raise|__assert_fail|_ZSt9terminatev'
# Where a function that promises not to throw calls one that may, clang writes out the call that g++
# leaves to the tables of exceptions.
if nm "$static" | grep ' __clang_call_terminate$' >/dev/null; then
    ENDING=${ENDING%|_ZSt9terminatev}
fi
WRITING='stdin|stdout|stderr|printf|fprintf|vprintf|vfprintf|puts|fputs|putchar|putc|fputc|fwrite'
WRITING+='|perror|__printf_chk|__fprintf_chk'
STREAMS='_ZSt3cin|_ZSt4cerr|_ZSt4clog|_ZSt4wcin|_ZSt5wcout|_ZSt5wcerr|_ZSt5wclog'
STANDARD_OUTPUT='_ZSt4cout'
MAY_WRITE_STANDARD_OUTPUT='^bandwidth_table\.cpp\.o$'

# OBJECT SYMBOL of each undefined symbol; the tool's lines are ARCHIVE:OBJECT: U SYMBOL.
undefined=$(nm -A -u "$static" | sed -nE 's/^.*:([^:]+):.* U ([^ @]+).*$/\1 \2/p')
[[ $(wc -l <<<"$undefined") -gt 10 ]] || complain "no undefined symbols found in $static"

while read -r object symbol; do
    if [[ $symbol =~ ^($ENDING|$WRITING|$STREAMS)$ ]]; then
        complain "$object refers to $symbol"
    elif [[ $symbol == "$STANDARD_OUTPUT" && ! $object =~ $MAY_WRITE_STANDARD_OUTPUT ]]; then
        complain "$object refers to std::cout"
    fi
done <<<"$undefined"
writers=$(grep -c " $STANDARD_OUTPUT\$" <<<"$undefined" || true)
[[ $writers -le 1 ]] || complain "$writers objects refer to std::cout"

if nm -D -u "$shared" | grep -E " U ($ENDING|$WRITING|$STREAMS)(@|\$)" >&2; then
    complain "the shared library refers to the symbols above"
fi

found=$(objdump -p "$shared" | awk '$1 == "SONAME" { print $2 }')
[[ $found == "$soname" ]] || complain "the name of the library is '$found' instead of '$soname'"

while read -r needed; do
    case $needed in
    libstdc++.so.* | libm.so.* | libgcc_s.so.* | libc.so.* | ld-linux*) ;;
    libasan.so.* | libubsan.so.*) ;;  # of a build under the sanitizers
    *) complain "the library needs $needed" ;;
    esac
done < <(objdump -p "$shared" | awk '$1 == "NEEDED" { print $2 }')

# Each exported name starts with a class or function of a public header. Templates of the standard
# library that we instantiate are weak and shared with the host, which is as it should be.
is_of_the_runtime() {
    [[ $1 =~ (^|[[:space:]\&*])(std|__gnu_cxx)::|^__|^_init$|^_fini$|^operator ]]
}
exported=0
while read -r name; do
    exported=$((exported + 1))
    name=${name#vtable for }
    name=${name#typeinfo for }
    name=${name#typeinfo name for }
    if ! is_of_the_runtime "$name"; then
        grep -qw -- "${name%%[!A-Za-z_0-9]*}" "$source"/include/*.h "$source"/h/*.h ||
            complain "$name is exported but in no public header"
    fi
done < <(nm -D -C --defined-only "$shared" | sed -nE 's/^[0-9a-f]+ [A-Za-z] (.*)$/\1/p')
[[ $exported -gt 10 ]] || complain "only $exported symbols are exported"

# Names of templates come with the type that they return in front of them.
defined=$(nm -C --defined-only "$static" 2>/dev/null | sed -nE 's/^[0-9a-f]+ [A-Zu] (.*)$/\1/p' | sort -u)
[[ $(grep -c '^pll_internal::' <<<"$defined") -gt 10 ]] || complain "no internal symbols in $static"
foreign=$(awk '
    NR == FNR { is_public[$0] = 1; next }
    {
        name = $0
        sub(/^(vtable|VTT|typeinfo|typeinfo name|guard variable|construction vtable) for /, "", name)
        sub(/[(].*/, "", name)
        if (name ~ /(^|[ *&])(std|__gnu_cxx|pll_internal)::/ || name ~ /^(DW[.]ref[.])?__/) next
        if (name ~ /^DW[.]ref[.]_ZTI/ || name ~ /^operator /) next
        sub(/[^A-Za-z_0-9].*/, "", name)
        if (!(name in is_public)) print
    }' <(grep -ohE '[A-Za-z_][A-Za-z_0-9]*' "$source"/include/*.h "$source"/h/*.h | sort -u) - <<<"$defined")
while IFS= read -r name; do
    [[ -z $name ]] || complain "$name is defined outside the namespace of what is internal"
done <<<"$foreign"

if [[ $failures -eq 0 ]]; then
    echo "$exported exported symbols and $(wc -l <<<"$undefined") references are as they should be"
fi
exit $((failures != 0))
