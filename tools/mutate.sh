#!/usr/bin/env bash
# Breaks the code in the usual ways, one place at a time, and lists what no test notices: a condition turned, a call or
# an assignment left out, a constant off by one, an operator changed (mutations.pl knows them all).
#
#   tools/mutate.sh PATH...                          every breakage of these files, or of all files in these folders
#   tools/mutate.sh --sample N [--seed S] PATH...    a random sample of them; the seed is told, and gives it once more
#   tools/mutate.sh --list ...                       says which breakages it would try, and tries none
#   tools/mutate.sh --nearest ...                    asks the nearest program only, which takes a fraction of the time;
#                                                    what that leaves alive another one may notice
#
# The tests that cover a file are found by convention: first those of its layer's program, and of them first those in the
# folder under tests/ that mirrors its own; what they leave alive goes to the next program in the table below. The first
# failure ends it: a breakage that a test notices is killed. One that doesn't compile isn't counted. One that makes the
# tests take ten times as long, and a minute more, counts as killed too.
#
# A survivor is a test that is missing, or a breakage that changes nothing: look at each.
#
# Works on a copy of the tree with a build of its own, in build/mutate/; the tree itself is never changed. Exit status:
# 0 nothing survived, 1 something did, 3 wrong arguments, or tests that fail before anything is broken.
set -euo pipefail
cd "$(dirname "$0")/.."

# programs FILE: the test programs that cover it, the nearest first.
programs() {
    case "$1" in
        platform/*) echo platform_tests rtr_trim_tests ;;
        rvlib/*) echo rvlib_tests rtr_trim_tests ;;
        rvdlm/*) echo rtr_trim_tests picture_tests system_tests ;;
        simulator/*) echo simulator_tests system_tests ;;
        console/*) echo console_tests system_tests ;;
        *) return 1 ;;
    esac
}

work=build/mutate
copy=$work/tree
build=$copy/build/release
log=$work/log

fail() {
    printf '%s\n' "$*" >&2
    exit 3
}

sample='' seed='' list=false nearest=false paths=()
while [ $# -gt 0 ]; do
    case "$1" in
        --sample) sample=${2:-} && shift ;;
        --seed) seed=${2:-} && shift ;;
        --list) list=true ;;
        --nearest) nearest=true ;;
        -*) fail "unknown option $1; see the head of $0" ;;
        *) paths+=("$1") ;;
    esac
    shift || fail "an option lacks its value"
done
[ ${#paths[@]} -gt 0 ] || fail "say which files or folders to break; see the head of $0"
[[ "$sample" =~ ^[0-9]*$ && "$seed" =~ ^[0-9]*$ ]] || fail "--sample and --seed take numbers"
[ -z "$seed" ] || [ -n "$sample" ] || fail "--seed belongs to --sample"

files=()
while IFS= read -r file; do
    programs "$file" >/dev/null || fail "no tests are known for $file; see the table in $0"
    files+=("$file")
done < <(git ls-files -co --exclude-standard -- "${paths[@]}" | grep -E '\.(h|cpp)$' | sort -u)
[ ${#files[@]} -gt 0 ] || fail "no source file there: ${paths[*]}"

choice=()
if [ -n "$sample" ]; then
    seed=${seed:-$RANDOM}
    choice=(--sample "$sample" --seed "$seed")
    printf 'a sample of %s, seed %s\n' "$sample" "$seed"
fi
mutations=()
while IFS= read -r line; do mutations+=("$line"); done < <(tools/mutations.pl "${choice[@]}" "${files[@]}")
if "$list"; then
    printf '%s\n' "${mutations[@]}" | awk -F '\t' '{ print $1 ":" $2 ": " $6 }'
    exit 0
fi

mkdir -p "$work"
exec 9>"$work/lock"
flock -n 9 || fail "another one is running in $work"

# The copy: what git knows and what is new. A file is written only when its text differs, with the date of now, so that
# what has changed is built again and nothing else: an old date of the tree may be older than what was built meanwhile.
# Its build stays.
mkdir -p "$copy"
git ls-files -co --exclude-standard | while IFS= read -r file; do
    [ ! -e "$file" ] || printf '%s\n' "$file"
done | LC_ALL=C sort >"$work/files"
(cd "$copy" && find . -path ./build -prune -o ! -type d -print | sed 's|^\./||' | LC_ALL=C sort) | LC_ALL=C comm -23 - "$work/files" |
    while IFS= read -r file; do rm -f "$copy/$file"; done
while IFS= read -r file; do
    cmp -s "$file" "$copy/$file" && continue
    mkdir -p "$copy/$(dirname "$file")"
    cp "$file" "$copy/$file"
done <"$work/files"

# Built as ./test builds, in the same place of the copy, so that all that isn't broken comes from the compiler cache.
[ -e "$build/build.ninja" ] || (cd "$copy" && cmake --preset release) >"$log" 2>&1 ||
    { cat "$log" >&2; fail "the copy can't be configured"; }

# What is broken isn't kept in that cache, and a warning doesn't keep it from being built.
quiet=$PWD/$work/quiet
printf '#!/bin/sh\nexec "$@" -w\n' >"$quiet"
chmod +x "$quiet"

# build_program NAME
build_program() { cmake --build "$build" --target "$1" 9>&- >"$log" 2>&1; }

# run_program NAME FILTER SECONDS: nonzero if a test fails, or the program hangs. Its processes end with it.
run_program() {
    timeout -k 5 "$3" "$build/tests/$1" --gtest_brief=1 --gtest_fail_fast --gtest_filter="$2" >"$log" 2>&1 9>&-
}

# own_suites FILE: a filter for the suites in the folder of tests that mirrors the file's; empty without any.
own_suites() {
    local folder
    folder=tests/$(dirname "$1")
    [ -d "$folder" ] || return 0
    find "$folder" -maxdepth 1 -name '*_test.cpp' -exec cat {} + |
        sed -nE 's/^(TYPED_)?TEST(_[FP])?\(([A-Za-z0-9_]+).*/\3/p' | sort -u |
        awk '{ printf "%s%s.*:*/%s.*:%s/*.*", sep, $1, $1, $1; sep = ":" }'
}

declare -A limits=() own=()
# prepare NAME: builds the program of the unbroken copy, runs it and takes its time.
prepare() {
    local began
    printf 'building and running %s as it is\n' "$1"
    build_program "$1" || { cat "$log" >&2; fail "$1 doesn't build before anything is broken"; }
    began=$SECONDS
    run_program "$1" '*' 3600 || { cat "$log" >&2; fail "$1 fails before anything is broken"; }
    limits[$1]=$(((SECONDS - began) * 10 + 60))
}

# try PROGRAM FILE: what becomes of the broken file.
try() {
    local limit=${limits[$1]} suites=${own[$2]}
    if ! build_program "$1"; then
        echo "doesn't compile"
    elif [ -n "$suites" ] && ! { run_program "$1" "$suites" "$limit" && run_program "$1" "-$suites" "$limit"; } ||
        [ -z "$suites" ] && ! run_program "$1" '*' "$limit"; then
        echo killed
    else
        echo "left alive"
    fi
}

for file in "${files[@]}"; do own[$file]=$(own_suites "$file"); done

killed=0 invalid=0 survivors=() pending=("${mutations[@]}")
for ((round = 0; ${#pending[@]} > 0; ++round)); do
    alive=() number=0
    for line in "${pending[@]}"; do
        IFS=$'\t' read -r file at offset length what replacement <<<"$line"
        number=$((number + 1))
        read -r -a chain <<<"$(programs "$file")"
        ! "$nearest" || chain=("${chain[0]}")
        if [ "$round" -ge ${#chain[@]} ]; then
            survivors+=("$file:$at: $what")
            continue
        fi
        program=${chain[$round]}
        [ -n "${limits[$program]:-}" ] || prepare "$program"
        cat "$copy/$file" >"$work/unbroken"
        tools/mutations.pl --apply "$copy/$file" "$offset" "$length" "$replacement"
        result=$(CCACHE_READONLY=1 CCACHE_PREFIX=$quiet try "$program" "$file")
        # Written anew, not with its old date: what was built of it must be built again.
        cat "$work/unbroken" >"$copy/$file"
        case "$result" in
            killed) killed=$((killed + 1)) ;;
            "left alive") alive+=("$line") ;;
            *) invalid=$((invalid + 1)) ;;
        esac
        printf '%s %s/%s %s %s:%s: %s\n' "$program" "$number" "${#pending[@]}" "$result" "$file" "$at" "$what"
    done
    pending=("${alive[@]}")
done

[ ${#survivors[@]} -eq 0 ] || printf 'survived: %s\n' "${survivors[@]}"
printf '%s killed, %s survived, %s not compiled%s\n' "$killed" "${#survivors[@]}" "$invalid" "${seed:+, seed $seed}"
[ ${#survivors[@]} -eq 0 ]
