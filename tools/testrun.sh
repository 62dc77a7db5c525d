# shellcheck shell=bash
# Sourced by test: runs test programs side by side, and sees to it that the run ends, with its closing line
# "N passed, N failed", whatever becomes of them. A program that doesn't end by itself is ended, and so is everything
# that it has started: those are found by a mark in their environment, for they may have left its process group.
#
#   begin_test_run                          first of all
#   attended COMMAND                        runs a step before the tests; a signal ends it
#   add_program NAME KIND LOAD COMMAND...   KIND gtest, node or plain (one test); LOAD busy or waiting, for its slots
#   run_programs LIMIT                      LIMIT for each program in seconds
#   exit                                    prints the closing line

GRACE=${TEST_GRACE:-10}    # seconds in which a program that is ended, or has ended, may end what it has started
SLOWEST=10

begin_test_run() {
    test_run=$(mktemp -d)
    test_mark=rotor-trim-$$-${RANDOM}${RANDOM}
    test_jobs=()
    attended_pid=""
    why_none=""
    trap finish_test_run EXIT
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
}

attended() {
    local status=0
    set -m    # a process group of its own
    "$@" </dev/null &
    attended_pid=$!
    set +m
    wait "$attended_pid" || status=$?
    attended_pid=""
    return "$status"
}

add_program() {
    local file=$test_run/${#test_jobs[@]}
    printf '%s\n' "$1" >"$file.name"
    printf '%s\n' "$2" >"$file.kind"
    printf '%s\n' "$3" >"$file.load"
    shift 3
    printf '%s\0' "$@" >"$file.command"
    test_jobs+=("$file")
}

# marked_processes JOB: those that the job has started and that are there; JOB may be a pattern.
marked_processes() { grep -lzs "^ROTOR_TRIM_TEST_RUN=$test_mark\.$1\$" /proc/[0-9]*/environ | cut -d / -f 3; }

end_marked() {
    local pids
    mapfile -t pids < <(marked_processes "$1")
    [ ${#pids[@]} -eq 0 ] || kill -KILL "${pids[@]}" 2>/dev/null || true
}

# read_gtest FILE: counts, times and the test under way, of what GoogleTest says; prints what isn't about passed tests.
read_gtest() {
    awk -v counts="$1.counts" -v times="$1.times" '
        function close_test() { under_way = ""; text = "" }
        function note_time() {
            if (match($0, /\([0-9]+ ms\)$/)) print substr($0, RSTART + 1, RLENGTH - 5), under_way > times
        }
        /\[ RUN      \] [^ ]+$/ { under_way = $NF; text = $0 "\n"; next }
        /\[       OK \] .*\([0-9]+ ms\)$/ { ++passed; note_time(); close_test(); next }
        /\[  SKIPPED \] .*\([0-9]+ ms\)$/ { close_test(); next }
        /\[  FAILED  \] .*\([0-9]+ ms\)$/ { ++failed; note_time(); printf "%s%s\n", text, $0; close_test(); next }
        /^\[  PASSED  \]/ { finished = 1; next }
        under_way != "" { text = text $0 "\n"; next }
        /^\[[-= ]|^\[  FAILED|^Note: |^Running main|^$/ { next }
        { print }
        END {
            printf "%s", text
            printf "%d %d %d %s\n", passed, failed, finished, under_way > counts
        }' "$1.log"
}

# read_node FILE: the same of TAP by node. What has no tests in it counts.
read_node() {
    awk -v counts="$1.counts" -v times="$1.times" '
        function depth() { match($0, /^ */); return RLENGTH / 4 }
        /^ *# Subtest: / { level = depth(); name[level] = $0; sub(/^ *# Subtest: /, "", name[level]); next }
        /^ *(not )?ok [0-9]+ - / {
            level = depth(); ended = name[level]; delete name[level]
            is_failure = /^ *not ok/
            is_failure ? ++failed : ++passed
        }
        /^ *duration_ms: / { duration = $2 }
        /^ *type: .suite./ { is_failure ? --failed : --passed; ended = "" }
        /^ *\.\.\.$/ && ended != "" { printf "%d %s\n", duration, ended > times; ended = "" }
        /^# pass [0-9]+$/ { finished = 1 }
        END {
            for (level = 9; level >= 0 && under_way == ""; --level) if (level in name) under_way = name[level]
            printf "%d %d %d %s\n", passed, failed, finished, under_way > counts
        }' "$1.log"
    grep -q '^# fail 0$' "$1.log" || cat "$1.log"
}

read_plain() { printf '0 0 1 \n' >"$1.counts"; }

# run_program FILE LIMIT: writes FILE.report, what is to be shown, and at last FILE.result, "passed failed".
run_program() {
    local file=$1 limit=$2 job name kind command status=0 passed failed finished under_way left=() trouble="" begin=$SECONDS
    job=${file##*/}
    name=$(cat "$file.name")
    kind=$(cat "$file.kind")
    mapfile -d '' -t command <"$file.command"
    ROTOR_TRIM_TEST_RUN=$test_mark.$job timeout --kill-after="$GRACE" "$limit" \
        "${command[@]}" >"$file.log" 2>&1 </dev/null || status=$?
    local ticks=$((GRACE * 5))
    while mapfile -t left < <(marked_processes "$job"); [ ${#left[@]} -gt 0 ] && [ $((ticks--)) -gt 0 ]; do
        sleep 0.2
    done

    "read_$kind" "$file" >"$file.report"
    read -r passed failed finished under_way <"$file.counts"
    case $status in
        0)
            if [ "$finished" -eq 0 ]; then
                trouble="ended without telling what it has tested"
            elif [ ${#left[@]} -gt 0 ]; then
                trouble="has left running: $(ps -o pid=,args= -p "$(IFS=,; echo "${left[*]}")" | tr '\n' ';')"
            fi
            ;;
        124 | 137)
            trouble="was killed${under_way:+ in $under_way}"
            [ $((SECONDS - begin)) -lt "$limit" ] ||
                trouble="didn't end within $limit s and was ended${under_way:+; it hung in $under_way}"
            ;;
        *) [ "$finished" -eq 0 ] || [ "$failed" -eq 0 ] && trouble="ended with status $status${under_way:+ in $under_way}" ;;
    esac
    [ "$kind" = plain ] && [ "$status" -ne 0 ] && cat "$file.log" >>"$file.report"
    [ "$kind" = plain ] && [ -z "$trouble" ] && passed=1
    # GoogleTest leaves out its last word when a test has failed; the program may have crashed after that.
    if [ "$kind" = gtest ] && [ "$status" -eq 1 ] && [ "$failed" -gt 0 ] && [ -z "$under_way" ]; then
        trouble=
    fi
    if [ -n "$trouble" ]; then
        failed=$((failed + 1))
        printf '%s %s\n' "$name" "$trouble" >>"$file.report"
    fi
    end_marked "$job"
    printf '%s %s\n' "$passed" "$failed" >"$file.part"
    mv "$file.part" "$file.result"
}

# sum_results FILE...: adds them up, "passed failed"; a program without a result has failed.
sum_results() {
    local file passed=0 failed=0 p f
    for file; do
        p=0 f=1
        [ ! -e "$file.result" ] || read -r p f <"$file.result"
        passed=$((passed + p)) failed=$((failed + f))
    done
    printf '%s %s\n' "$passed" "$failed"
}

# report_program FILE: what is to be shown of it; the line of its name when all that go by that name are done.
report_program() {
    local file same=() passed failed
    [ ! -e "$1.report" ] || cat "$1.report"
    for file in "${test_jobs[@]}"; do
        cmp -s "$file.name" "$1.name" || continue
        [ -e "$file.result" ] || return 0
        same+=("$file")
    done
    read -r passed failed < <(sum_results "${same[@]}")
    printf '%s: %s passed, %s failed\n' "$(cat "$1.name")" "$passed" "$failed"
}

run_programs() {
    local limit=$1 file load later status milliseconds test_name
    local -A count=([busy]=0 [waiting]=0) slots=([busy]=$(($(nproc) + 1)) [waiting]=$(($(nproc) * 2)))
    local pending=("${test_jobs[@]}") running=()
    while [ ${#pending[@]} -gt 0 ] || [ ${#running[@]} -gt 0 ]; do
        later=()
        for file in "${pending[@]}"; do
            load=$(cat "$file.load")
            if [ "${count[$load]}" -lt "${slots[$load]}" ]; then
                run_program "$file" "$limit" &
                running+=("$file")
                count[$load]=$((count[$load] + 1))
            else
                later+=("$file")
            fi
        done
        pending=("${later[@]}")
        status=0
        wait -n || status=$?
        later=()
        for file in "${running[@]}"; do
            # Without a child left there is no result to wait for.
            [ "$status" -ne 127 ] || [ -e "$file.result" ] || printf '0 1\n' >"$file.result"
            if [ -e "$file.result" ]; then
                load=$(cat "$file.load")
                count[$load]=$((count[$load] - 1))
                report_program "$file"
            else
                later+=("$file")
            fi
        done
        running=("${later[@]}")
    done
    printf 'The slowest:\n'
    find "$test_run" -name '*.times' -exec cat {} + | sort -rn | sed -n "1,${SLOWEST}p" |    # head would end sort by a signal
        while read -r milliseconds test_name; do printf '%8d ms  %s\n' "$milliseconds" "$test_name"; done
}

finish_test_run() {
    local status=$? passed=0 failed=1 file
    trap '' HUP INT TERM
    [ -z "$attended_pid" ] || kill -TERM -- "-$attended_pid" 2>/dev/null || true
    local jobs_left
    mapfile -t jobs_left < <(jobs -p)
    [ ${#jobs_left[@]} -eq 0 ] || kill -KILL "${jobs_left[@]}" 2>/dev/null || true
    wait 2>/dev/null
    end_marked '[0-9]*'
    if [ ${#test_jobs[@]} -gt 0 ]; then
        read -r passed failed < <(sum_results "${test_jobs[@]}")
        for file in "${test_jobs[@]}"; do
            [ -e "$file.result" ] || printf '%s was ended before it was done\n' "$(cat "$file.name")"
        done
    else
        [ "$status" -ne 0 ] || { failed=0 why_none=""; }
        printf 'No test was run%s.\n' "${why_none:+: $why_none}"
    fi
    rm -rf "$test_run" "${test_directory:-}"
    printf '%s passed, %s failed\n' "$passed" "$failed"
    [ "$status" -ne 0 ] || { [ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]; } || status=1
    exit "$status"
}
