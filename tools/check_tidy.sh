#!/usr/bin/env bash
# clang-tidy over the product's sources, by .clang-tidy, on all cores.
#
#   tools/check_tidy.sh             all sources
#   tools/check_tidy.sh --last N [--at-most M]
#                                   those that the last N commits, or changes not yet committed, have touched, the newest
#                                   first and no more than M; for a header the source of its name, or else one that includes
#                                   it. All, if .clang-tidy was touched. Leaves one check to the other two ways that takes
#                                   as long as the rest together.
#   tools/check_tidy.sh FILE...     these
set -euo pipefail
cd "$(dirname "$0")/.."

fail() {
    printf '%s\n' "$*" >&2
    exit 3
}

sources() { git ls-files 'platform/*.cpp' 'rvlib/*.cpp' 'rvdlm/*.cpp' 'archive/*.cpp' 'simulator/*.cpp' 'console/*.cpp'; }

# each_once: the lines of the input in their order, none twice.
each_once() { awk '!seen[$0]++'; }

# touched COUNT: files of what isn't committed yet and of the last COUNT commits, the newest first.
touched() {
    git diff --name-only HEAD
    git log -n "$1" --name-only --format=
}

# source_of HEADER: the source by which a header is looked at: its own, or one that includes it, be it by other headers.
source_of() {
    local pending=("$1") header includer
    local -A seen=()
    while [ ${#pending[@]} -gt 0 ]; do
        header=${pending[0]}
        pending=("${pending[@]:1}")
        [ -z "${seen[$header]:-}" ] || continue
        seen[$header]=yes
        if [ -e "${header%.h}.cpp" ]; then
            printf '%s\n' "${header%.h}.cpp"
            return
        fi
        while IFS= read -r includer; do
            case $includer in
                *.cpp)
                    printf '%s\n' "$includer"
                    return
                    ;;
                *) pending+=("$includer") ;;
            esac
        done < <(git grep -lF "#include \"$header\"" -- contract platform rvlib rvdlm simulator console | sort -t . -k 2)
    done
}

# chosen COUNT: the sources to look at for the last COUNT commits.
chosen() {
    local file
    touched "$1" | each_once | while IFS= read -r file; do
        case $file in
            .clang-tidy) sources ;;
            tests/* | bench/* | fuzz/*) ;;
            *.cpp) [ ! -e "$file" ] || sources | grep -xF "$file" || true ;;
            *.h) [ ! -e "$file" ] || source_of "$file" ;;
        esac
    done | each_once
}

files=()
checks=()
case ${1:-} in
    "") mapfile -t files < <(sources) ;;
    --last)
        [[ ${2:-} =~ ^[1-9][0-9]*$ ]] || fail "--last takes a number of commits; see the head of $0"
        [[ $# -eq 2 || ($3 = --at-most && ${4:-} =~ ^[1-9][0-9]*$ && $# -eq 4) ]] ||
            fail "behind --last N there may be --at-most and a number of sources; see the head of $0"
        mapfile -t files < <(chosen "$2")
        if [ ${#files[@]} -gt "${4:-${#files[@]}}" ]; then
            echo "the $4 touched last, of ${#files[@]} sources"
            files=("${files[@]:0:$4}")
        fi
        checks=(--checks=-performance-unnecessary-value-param)
        ;;
    -*) fail "unknown option $1; see the head of $0" ;;
    *) files=("$@") ;;
esac
for file in "${files[@]}"; do
    [ -e "$file" ] || fail "there is no $file"
done
if [ ${#files[@]} -eq 0 ]; then
    echo "no source was touched"
    exit 0
fi

[ -e build/release/compile_commands.json ] || cmake --preset release >/dev/null
# One file a process: beside others the analyzer forgets how va_start is called, and takes its lists for uninitialized.
printf '%s\0' "${files[@]}" |
    xargs -0 -P "$(nproc)" -n 1 clang-tidy --quiet "${checks[@]}" -p build/release --extra-arg=-Wno-unknown-warning-option
