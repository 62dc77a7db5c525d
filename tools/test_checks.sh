#!/usr/bin/env bash
# Tries the checks of checks.sh: what they say, and how they end.
set -euo pipefail
tools=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# expect STATUS WHAT COMMANDS OUTPUT
expect() {
    local output status=0
    output=$(bash -c "set -euo pipefail; . '$tools/checks.sh'; $3" 2>&1) || status=$?
    [ "$status" -eq "$1" ] && [ "$output" = "$4" ] && return
    printf '%s: status %d\n%s\n' "$2" "$status" "$output"
    failed=1
}

mkdir -m 770 "$work/data" "$work/data/opcua"
install -m 660 /dev/null "$work/data/file"
install -m 600 /dev/null "$work/data/opcua/key"
expect 0 "all is well" "check one true; end_checks" $'ok      one\n1 checks, 0 failed'
expect 1 "one fails, the others are made" "check 'the first' sh -c 'echo why >&2; exit 4'; check two true; end_checks" \
    $'FAILED  the first\n        why\nok      two\n2 checks, 1 failed'
expect 0 "rights as they are meant" "has_data_rights '$work/data'" ""
chmod 640 "$work/data/file"
expect 1 "a file that the group can't write" "has_data_rights '$work/data'" "640 $work/data/file"
chmod 660 "$work/data/file"
chmod 775 "$work/data"
expect 1 "a directory that others can enter" "has_data_rights '$work/data'" "775 $work/data"
[ "$failed" -eq 0 ] || exit 1
printf 'checks say and end as they should in all 5 cases\n'
