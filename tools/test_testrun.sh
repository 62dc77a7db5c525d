#!/usr/bin/env bash
# Proves that a run of tests ends with the right closing line whatever its programs do: they hang with children, crash,
# say nothing, leave something running, and the run itself is ended.
set -euo pipefail
tools=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
tried=0
export TEST_GRACE=1

# program NAME TEXT: makes a test program of shell commands.
program() {
    printf '#!/usr/bin/env bash\n%s\n' "$2" >"$work/$1"
    chmod +x "$work/$1"
}

# Child of a child, in a session of its own, that holds the output open and doesn't end when asked to.
stubborn="setsid bash -c 'trap \"\" TERM INT HUP; while :; do sleep 1; done # $work' &"
program good 'echo "[ RUN      ] A.One"; echo "noise"; echo "some[       OK ] A.One (7 ms)"
    echo "[ RUN      ] A.Two"; echo "[       OK ] A.Two (12 ms)"; echo "[  PASSED  ] 2 tests."'
program bad 'echo "[ RUN      ] B.Good"; echo "[       OK ] B.Good (3 ms)"; echo "[ RUN      ] B.Bad/0"; echo "why it failed"
    echo "[  FAILED  ] B.Bad/0, where GetParam() = 5 (4 ms)"; echo "[  PASSED  ] 1 test."
    echo "[  FAILED  ] 1 test, listed below:"; echo "[  FAILED  ] B.Bad/0"; exit 1'
program skipping 'echo "[ RUN      ] S.One"; echo "[  SKIPPED ] S.One (0 ms)"; echo "[ RUN      ] S.Two"
    echo "[       OK ] S.Two (1 ms)"; echo "[  PASSED  ] 1 test."'
program hanging "echo '[ RUN      ] C.Good'; echo '[       OK ] C.Good (3 ms)'; echo '[ RUN      ] C.Hangs'
    trap '' TERM
    $stubborn
    sleep 1000 & wait; sleep 1000"
program crashing 'echo "[ RUN      ] D.Good"; echo "[       OK ] D.Good (3 ms)"; echo "[ RUN      ] D.Crashes"; kill -SEGV $$'
program crashing_late 'echo "[ RUN      ] D.Good"; echo "[       OK ] D.Good (3 ms)"; echo "[  PASSED  ] 1 test."; kill -SEGV $$'
program failing_then_crashing 'echo "[ RUN      ] D.Bad"; echo "[  FAILED  ] D.Bad (3 ms)"; echo "[ RUN      ] D.Crashes"; kill -SEGV $$'
program silent 'exit 0'
program silent_bad 'exit 3'
program leaving "echo '[ RUN      ] E.Good'; $stubborn
    echo '[       OK ] E.Good (3 ms)'; echo '[  PASSED  ] 1 test.'"
program node_good 'printf "%s\n" "TAP version 13" "# Subtest: group" "    # Subtest: first" "    ok 1 - first" "      ---" \
    "      duration_ms: 35.7" "      ..." "    # Subtest: second" "    ok 2 - second" "      ---" "      duration_ms: 2" "      ..." \
    "    1..2" "ok 1 - group" "  ---" "  duration_ms: 40" "  type: '"'suite'"'" "  ..." "1..1" "# pass 2" "# fail 0"'
program node_bad 'printf "%s\n" "# Subtest: lonely" "not ok 1 - lonely" "  ---" "  duration_ms: 5" "  ..." "# pass 0" "# fail 1"; exit 1'
program node_hanging 'printf "%s\n" "# Subtest: group" "    # Subtest: first" "    ok 1 - first" "      ---" "      duration_ms: 35.7" "      ..." \
    "    # Subtest: second"; sleep 1000'
program plain_good 'echo fine'
program plain_bad 'echo "the reason"; exit 1'

# run TEXT: a run that begins with these commands; leaves its output and status. Started in the background this script
# ignores SIGINT, and nothing below it could ever heed it again.
run() {
    status=0
    output=$(env --default-signal=INT bash -c "set -euo pipefail; . '$tools/testrun.sh'; begin_test_run; cd '$work'; $1" 2>&1) || status=$?
    tried=$((tried + 1))
}

# expect STATUS CLOSING_LINE [PATTERN...]: what came of the last run; each pattern is in its output.
expect() {
    local wanted=$1 closing=$2 pattern ok=1
    shift 2
    [ "$status" -eq "$wanted" ] && [ "$(tail -n 1 <<<"$output")" = "$closing" ] || ok=0
    for pattern; do
        [[ "$output" == *$pattern* ]] || { printf 'missing: %s\n' "$pattern"; ok=0; }
    done
    if pgrep -f "# $work" >/dev/null; then
        printf 'a process is left running\n'
        ok=0
    fi
    [ "$ok" -eq 1 ] && return
    printf 'expected status %s and "%s", got status %s:\n%s\n' "$wanted" "$closing" "$status" "$output"
    failed=1
}

run 'add_program good gtest busy ./good; run_programs 60'
expect 0 '2 passed, 0 failed' 'good: 2 passed, 0 failed' '      12 ms  A.Two'
[[ "$output" != *noise* ]] || { echo "what passed is shown"; failed=1; }
run 'add_program bad gtest busy ./bad; add_program good gtest waiting ./good; run_programs 60'
expect 1 '3 passed, 1 failed' 'bad: 1 passed, 1 failed' 'why it failed' 'good: 2 passed, 0 failed'
run 'for i in 1 2 3 4 5; do add_program parts gtest busy ./good; done; run_programs 60'
expect 0 '10 passed, 0 failed' 'parts: 10 passed, 0 failed'
run 'add_program skipping gtest busy ./skipping; run_programs 60'
expect 0 '1 passed, 0 failed'
run 'add_program hanging gtest busy ./hanging; add_program good gtest busy ./good; run_programs 6'
expect 1 '3 passed, 1 failed' "hanging didn't end within 6 s and was ended; it hung in C.Hangs" 'good: 2 passed'
run 'add_program crashing gtest busy ./crashing; add_program good gtest busy ./good; run_programs 60'
expect 1 '3 passed, 1 failed' 'crashing ended with status 139 in D.Crashes'
run 'add_program late gtest busy ./crashing_late; run_programs 60'
expect 1 '1 passed, 1 failed' 'late ended with status 139'
run 'add_program both gtest busy ./failing_then_crashing; run_programs 60'
expect 1 '0 passed, 2 failed' 'both ended with status 139 in D.Crashes'
run 'add_program silent gtest busy ./silent; run_programs 60'
expect 1 '0 passed, 1 failed' 'silent ended without telling what it has tested'
run 'add_program silent gtest busy ./silent_bad; run_programs 60'
expect 1 '0 passed, 1 failed' 'silent ended with status 3'
run 'add_program missing gtest busy ./missing; run_programs 60'
expect 1 '0 passed, 1 failed' 'missing ended with status 127'
run 'add_program leaving gtest busy ./leaving; run_programs 60'
expect 1 '1 passed, 1 failed' 'leaving has left running: '
run 'add_program nc node waiting ./node_good; add_program nc node waiting ./node_bad; run_programs 60'
expect 1 '2 passed, 1 failed' 'nc: 2 passed, 1 failed' 'not ok 1 - lonely' '      35 ms  first'
run 'add_program nc node waiting ./node_hanging; run_programs 6'
expect 1 '1 passed, 1 failed' "it hung in second"
run 'add_program seeds plain busy ./plain_good; add_program bad plain busy ./plain_bad; run_programs 60'
expect 1 '1 passed, 1 failed' 'the reason' 'bad ended with status 1'
run 'run_programs 60'
expect 1 '0 passed, 0 failed'
run 'why_none="the build failed"; attended false; add_program good gtest busy ./good; run_programs 60'
expect 1 '0 passed, 1 failed' 'No test was run: the build failed.'
for signal in TERM:143 INT:130 HUP:129; do
    run "add_program good gtest busy ./good; add_program hanging gtest waiting ./hanging; add_program last gtest waiting ./hanging
         (until [ -e \$test_run/0.result ]; do sleep 0.2; done; kill -${signal%:*} \$\$) & disown; run_programs 60"
    expect "${signal#*:}" '2 passed, 2 failed' 'hanging was ended before it was done'
    run "why_none='the build failed'; (sleep 1; kill -${signal%:*} \$\$) & disown; attended bash -c 'sleep 1000 # $work'"
    expect "${signal#*:}" '0 passed, 1 failed' 'No test was run'
done

[ "$failed" -eq 0 ] && printf 'a run of tests ends as it should in all %s cases\n' "$tried"
exit "$failed"
