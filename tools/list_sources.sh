#!/usr/bin/env bash
# list_sources.sh KIND...: the files of the tree of the given kinds (cpp, h, sh), one a line:
# those that git tracks, or, in an unpacked archive, all but what lies below build/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

list_files() {
    if git ls-files --error-unmatch CMakeLists.txt >/dev/null 2>&1; then
        git -c core.quotepath=off ls-files
    else
        find . -path ./build -prune -o -type f -print | sed 's|^\./||'
    fi
}

matches() {
    case $1 in
    sh) echo '(^dev|^\.ci/run|\.sh)$' ;;
    cpp | h) echo "\\.$1\$" ;;
    *)
        echo "list_sources.sh: unknown kind $1" >&2
        exit 2
        ;;
    esac
}

for kind in "$@"; do
    pattern=$(matches "$kind")
    while IFS= read -r file; do
        if [[ $file =~ $pattern && -f $file ]]; then
            echo "$file"
        fi
    done < <(list_files)
done | LC_ALL=C sort
