#!/usr/bin/env bash
# Every test that docs/promises.md names is there, so that no promise stands on a test that has gone:
# `Suite.Name` in tests/, `file.test.js: what it says` in nc/test/. And no row of its tables is without one.
#   check_promises.sh [TREE]
# shellcheck disable=SC2016    # backticks are those of the page
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"
page=docs/promises.md
bad=0

# has_test SUITE NAME
has_test() {
    grep -rqPzo "TEST(_F|_P)?\(\s*$1,\s*$2\)" tests --include='*.cpp'
}

number=0
while IFS= read -r line; do
    number=$((number + 1))
    named=0
    while IFS= read -r name; do
        case $name in
            *.test.js:\ *)
                named=1
                file=nc/test/${name%%: *}
                if [ ! -e "$file" ] || ! grep -qF -- "${name#*: }" "$file"; then
                    printf '%s:%s: no test "%s"\n' "$page" "$number" "$name"
                    bad=1
                fi
                ;;
            *)
                [[ $name =~ ^[A-Z][A-Za-z0-9]*\.[A-Z][A-Za-z0-9]*$ ]] || continue
                named=1
                if ! has_test "${name%%.*}" "${name#*.}"; then
                    printf '%s:%s: no test "%s"\n' "$page" "$number" "$name"
                    bad=1
                fi
                ;;
        esac
    done < <(grep -oE '`[^`]+`' <<<"$line" | tr -d '\140')
    if [ "$named" -eq 0 ] && [[ $line == '| '* && $line != *'| promise |'* ]]; then
        printf '%s:%s: a promise without a test\n' "$page" "$number"
        bad=1
    fi
done <"$page"
exit "$bad"
