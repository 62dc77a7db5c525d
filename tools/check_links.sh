#!/usr/bin/env bash
# Every relative link of the documents leads to a file of the project, so that they don't drift from the tree.
set -euo pipefail
cd "$(dirname "$0")/.."
bad=0
for page in *.md docs/*.md texts/*.md; do
    while IFS= read -r link; do
        target=${link%%#*}
        [ -z "$target" ] && continue
        if [ ! -e "$(dirname "$page")/$target" ]; then
            printf '%s: the link to %s leads nowhere\n' "$page" "$link"
            bad=1
        fi
    done < <(grep -oE '\]\([^)]+\)' "$page" | sed 's/^](//; s/)$//' | grep -vE '^(https?:|mailto:)')
done
exit "$bad"
