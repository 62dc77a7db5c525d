#!/usr/bin/env bash
# Proves that check_promises.sh finds a test that isn't there and a promise without one, and lets pass the others.
# shellcheck disable=SC2016    # backticks are those of the page
set -euo pipefail
tools=$(cd "$(dirname "$0")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failed=0
tried=0
mkdir -p "$tree/docs" "$tree/tests/system" "$tree/nc/test"
printf 'TEST(Line, IsMended) {\n}\nTEST_P(Store,\n       StaysWhole) {\n}\n' >"$tree/tests/system/a_test.cpp"
printf "test('a server that hangs is noticed', async () => {});\n" >"$tree/nc/test/gateway.test.js"

# expect RESULT TEXT: RESULT is the line of the breach, or "clean".
expect() {
    local result=$1 output status=0
    printf '%b\n' "$2" >"$tree/docs/promises.md"
    output=$("$tools/check_promises.sh" "$tree") || status=$?
    tried=$((tried + 1))
    if [ "$result" = clean ]; then
        [ "$status" -eq 0 ] && [ -z "$output" ] && return
    else
        [ "$status" -ne 0 ] && [[ "$output" == "docs/promises.md:$result: "* ]] && return
    fi
    printf 'expected %s of "%s", got status %s: %s\n' "$result" "$2" "$status" "$output"
    failed=1
}

expect clean 'Text with `Loop` and `bench/endurance`.'
expect clean '| fault | promise | test |\n|---|---|---|\n| a | b | `Line.IsMended` |'
expect clean '| a | b | `Store.StaysWhole`, `Line.IsMended` |'
expect clean '| a | b | `gateway.test.js: a server that hangs is noticed` |'
expect 1 '| a | b | `Line.IsCut` |'
expect 2 'Text\nand `Store.IsMended`.'
expect 1 '| a | b | `gateway.test.js: a server that sleeps` |'
expect 1 '| a | b | `other.test.js: a server that hangs is noticed` |'
expect 1 '| a | b | c |'
expect 3 '| fault | promise | test |\n|---|---|---|\n| a | b | `Line` |'

[ "$failed" -eq 0 ] && printf 'the check of promises finds all %s cases\n' "$tried"
exit "$failed"
