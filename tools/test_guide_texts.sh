#!/usr/bin/env bash
# guide_texts.pl finds what differs, mends it, and nothing else.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
bad=0

# expect STATUS OUTPUT PAGE [--write]: what it says to a page, with a pattern for what it prints.
expect() {
    local status=0 output
    printf '%s\n' "$3" >"$work/page.md"
    # shellcheck disable=SC2086
    output=$(tools/guide_texts.pl ${4:-} "$work/page.md") || status=$?
    if [ "$status" != "$1" ] || ! grep -qE -- "$2" <<<"$output"; then
        printf '"%s": status %s, %s\n' "$3" "$status" "$output"
        bad=1
    fi
}

expect 0 '^$' 'Press *Next*<!--SK_NEXT-->, then **Finish**<!--SK_FINISH-->.'
expect 1 'Onward.*is "Next".*SK_NEXT' 'Press *Onward*<!--SK_NEXT-->.'
expect 1 'no text SK_NONE' 'Press *Next*<!--SK_NONE-->.'
expect 0 '^$' 'Press *Weights are in
place*<!--SK_WEIGHTS_IN_PLACE-->.'
expect 0 '^$' 'A word in *stress* is no quotation.'
expect 0 'is "Next"' 'Press *Onward*<!--SK_NEXT--> *twice*.' --write
grep -qxF 'Press *Next*<!--SK_NEXT--> *twice*.' "$work/page.md" || { echo "not mended"; bad=1; }
[ "$bad" = 0 ] && echo "texts of the documents are found and mended in all 7 cases"
exit "$bad"
