#!/usr/bin/env bash
# check_layers.sh [ROOT]: fails, naming each line, when an include goes against the layers.
#
#   h/  <-  pll_info.h  <-  pll.h  <-  pll_prop.h, pll_util.h, pll_manager.h  <-  advice/  <-  app/
#
# A public header includes what stands to its left. A source of the library includes public
# headers, the private headers of its own area and the few that serve all areas; its area is the
# longest of AREAS that its name starts with. Hosts (examples, command-line and installation
# tests) and the plain model see the public headers only; other tests see everything. Headers are
# included by bare name, and the library uses no header but its own and those of C++ and C.
set -euo pipefail

root=${1:-$(dirname "${BASH_SOURCE[0]}")/..}
cd "$root"

AREAS=(pll pll_info pll_prop pll_util pll_manager)
SERVES_ALL_AREAS=(pll_arith.h pll_report_error.h pll_trace.h pll_vco_phase.h)

declare -A RANK=([pll_info.h]=1 [pll.h]=2 [pll_prop.h]=3 [pll_util.h]=3 [pll_manager.h]=3)
declare -A HOME_OF=()  # folder of each header of ours, by its bare name
breaches=0

report() { # FILE:LINE TEXT
    echo "$1: $2" >&2
    breaches=$((breaches + 1))
}

layer_of() { # FILE
    case $1 in
    h/* | include/* | pll/* | advice/* | app/* | examples/* | bench/*) echo "${1%%/*}" ;;
    tests/*/*)
        local rest=${1#tests/}
        echo "tests/${rest%%/*}"
        ;;
    *) dirname "$1" ;;
    esac
}

area_of() { # FILE
    local name area best=pll
    name=$(basename "$1")
    for area in "${AREAS[@]}"; do
        if [[ $name == "$area"[._]* && ${#area} -gt ${#best} ]]; then
            best=$area
        fi
    done
    echo "$best"
}

serves_all_areas() { # HEADER
    local header
    for header in "${SERVES_ALL_AREAS[@]}"; do
        [[ $header == "$1" ]] && return 0
    done
    return 1
}

# Whether a file may include a header of ours; both by path.
may_include() { # FILE HEADER
    local from to name
    from=$(layer_of "$1")
    to=$(layer_of "$2")
    name=$(basename "$2")
    case $from in
    h) [[ $to == h ]] ;;
    include)
        [[ $to == h ]] && return 0
        [[ $to == include ]] || return 1
        ((${RANK[$name]:-3} < ${RANK[$(basename "$1")]:-4}))
        ;;
    pll)
        [[ $to == h || $to == include ]] && return 0
        [[ $to == pll ]] || return 1
        serves_all_areas "$name" || [[ $(area_of "$1") == "$(area_of "$2")" ]]
        ;;
    advice) [[ $to == h || $to == include || $to == advice ]] ;;
    app) [[ $to == h || $to == include || $to == advice || $to == "$from" ]] ;;
    tests/cli) [[ $to == h || $to == include || $to == tests/support || $to == "$from" ]] ;;
    examples | tests/install | tests/api) [[ $to == h || $to == include || $to == "$from" ]] ;;
    tests/model) [[ $to == h || $to == include || $to == tests/model || $to == tests/support ]] ;;
    tests/support) [[ $to == h || $to == include || $to == tests/support ]] ;;
    *) [[ $to != app || $from == tests/* ]] ;;
    esac
}

check_own_include() { # FILE LINE NAME
    if [[ $3 == advice/* && -f $3 ]]; then
        may_include "$1" "$3" || report "$1:$2" "$(layer_of "$1") may not include $3"
    elif [[ $3 == */* ]]; then
        report "$1:$2" "\"$3\" is not a bare file name"
    elif [[ -z ${HOME_OF[$3]:-} ]]; then
        report "$1:$2" "\"$3\" is no header of this tree"
    elif ! may_include "$1" "${HOME_OF[$3]}/$3"; then
        report "$1:$2" "$(layer_of "$1") may not include ${HOME_OF[$3]}/$3"
    fi
}

check_system_include() { # FILE LINE NAME
    case $1 in
    h/* | include/* | pll/* | advice/*)
        if [[ $3 == */* && $3 != sys/* ]]; then
            report "$1:$2" "<$3> is not of C++ or C"
        fi
        ;;
    esac
}

list_files() { # PATTERN...
    local folder folders=()
    for folder in h include pll advice app tests bench examples; do
        [[ -d $folder ]] && folders+=("$folder")
    done
    find "${folders[@]}" -type f \( -name '*.h' -o -name "$1" \) | LC_ALL=C sort
}

while IFS= read -r header; do
    HOME_OF[$(basename "$header")]=$(dirname "$header")
done < <(list_files '*.h')

includes=0
while IFS=: read -r file line text; do
    includes=$((includes + 1))
    if [[ $text =~ ^[[:space:]]*#[[:space:]]*include[[:space:]]*\"([^\"]*)\" ]]; then
        check_own_include "$file" "$line" "${BASH_REMATCH[1]}"
    elif [[ $text =~ ^[[:space:]]*#[[:space:]]*include[[:space:]]*\<([^\>]*)\> ]]; then
        check_system_include "$file" "$line" "${BASH_REMATCH[1]}"
    fi
done < <(list_files '*.cpp' | tr '\n' '\0' | xargs -0 grep -EHn '^[[:space:]]*#[[:space:]]*include')

if [[ $includes -eq 0 ]]; then
    echo "check_layers.sh: no includes found below $PWD" >&2
    exit 1
fi
if [[ $breaches -ne 0 ]]; then
    echo "$breaches includes go against the layers" >&2
    exit 1
fi
echo "$includes includes keep to the layers"
