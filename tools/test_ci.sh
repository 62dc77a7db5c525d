#!/usr/bin/env bash
# Tries what .ci/run tells about its steps, whatever becomes of them, and what it refuses.
set -euo pipefail
tools=$(cd "$(dirname "$0")" && pwd)
failed=0
tried=0

# expect STATUS WHAT COMMAND PATTERN...: the command ends like that, and each pattern is in what it says.
expect() {
    local wanted=$1 what=$2 command=$3 pattern output status=0
    shift 3
    output=$(bash -c "$command" 2>&1) || status=$?
    tried=$((tried + 1))
    [ "$status" -eq "$wanted" ] || { printf '%s: status %d\n%s\n' "$what" "$status" "$output"; failed=$((failed + 1)); }
    for pattern; do
        [[ $output == *$pattern* ]] || { printf '%s: missing "%s" in\n%s\n' "$what" "$pattern" "$output"; failed=$((failed + 1)); }
    done
}
# Seconds are counted by hand.
steps="set -euo pipefail; . '$tools/steps.sh'; begin_steps"
expect 0 "all is well" "$steps; step one; SECONDS=65; step two words; SECONDS=7275; end_steps" \
    "== one (" $'How long it took, min:s\n   1:05  ok      one\n 120:10  ok      two words\n 121:15  in all'
expect 7 "the step that fails" "$steps; step one; step two; (exit 7); step three" "ok      one" "FAILED  two"
expect 143 "the run is ended" "$steps; step one; kill -TERM \$\$; sleep 100" "FAILED  one"
expect 4 "it ends before the first step" "$steps; exit 4"
expect 3 "an unknown argument" "'$tools/../.ci/run' --ful" '.ci/run: unknown argument "--ful"; there is --full, and nothing else'
expect 3 "an argument too many" "'$tools/../.ci/run' --full all" 'unknown argument "all"'

[ "$failed" -eq 0 ] || exit 1
printf 'steps and arguments are right in all %d cases\n' "$tried"
