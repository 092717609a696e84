#!/usr/bin/env bash
# check_layers_test.sh SCRIPT: a made-up tree that keeps to the layers passes the layer check, and
# each single include that does not is found.
set -euo pipefail

check_layers=$1
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failures=0

mkdir -p "$tree"/{h,include,pll,app,examples,tests/{unit,model,support}}
touch "$tree"/h/gen_string.h "$tree"/include/{pll_info,pll_prop,pll_util}.h
touch "$tree"/pll/{pll_arith,pll_search,pll_info_table}.h "$tree"/app/options.h
touch "$tree"/tests/support/verifier.h
echo '#include "pll_info.h"' >"$tree/include/pll.h"

expect() { # STATUS FILE INCLUDED
    local status=0
    echo "#include $3" >"$tree/$2"
    "$check_layers" "$tree" >/dev/null 2>&1 || status=$?
    if [[ $status -ne $1 ]]; then
        echo "$2 including $3: exit status $status instead of $1" >&2
        failures=$((failures + 1))
    fi
    : >"$tree/$2"
}

#      status  file                        included
expect 0       h/msg_internal_error.h      '"gen_string.h"'
expect 1       h/msg_internal_error.h      '"pll_info.h"'
expect 0       include/pll_manager.h       '"pll.h"'
expect 1       include/pll_manager.h       '"pll_prop.h"'
expect 1       include/pll_info.h          '"pll.h"'
expect 1       include/pll_info.h          '"pll_arith.h"'
expect 0       pll/pll_ranking.cpp         '"pll_prop.h"'
expect 0       pll/pll_ranking.cpp         '"pll_search.h"'
expect 1       pll/pll_ranking.cpp         '"pll_info_table.h"'
expect 0       pll/pll_info_reader.cpp     '"pll_info_table.h"'
expect 1       pll/pll_info_reader.cpp     '"pll_search.h"'
expect 0       pll/pll_info_reader.cpp     '"pll_arith.h"'
expect 1       pll/pll_ranking.cpp         '"options.h"'
expect 1       pll/pll_ranking.cpp         '<gtest/gtest.h>'
expect 0       pll/pll_ranking.cpp         '<sys/stat.h>'
expect 1       pll/pll_ranking.cpp         '"../include/pll.h"'
expect 1       pll/pll_ranking.cpp         '"unheard_of.h"'
expect 0       app/main.cpp                '"options.h"'
expect 1       app/main.cpp                '"pll_search.h"'
expect 1       examples/host.cpp           '"pll_arith.h"'
expect 0       tests/unit/search_test.cpp  '"pll_search.h"'
expect 0       tests/model/model.cpp       '"verifier.h"'
expect 1       tests/model/model.cpp       '"pll_arith.h"'
expect 1       tests/support/verifier.cpp  '"pll_search.h"'

exit $((failures != 0))
