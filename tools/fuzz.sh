#!/usr/bin/env bash
# Lets every fuzz target of build/fuzz search for so many seconds, one a core: "tools/fuzz.sh 60". It begins with its seeds;
# what reaches more code goes to build/fuzz/found/, and stays there for the next search. An input that breaks something is
# kept as build/fuzz/breaks-TARGET-..., and named; "build/fuzz/fuzz/TARGET FILE" repeats it.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-}
if ! [[ $seconds =~ ^[1-9][0-9]*$ ]]; then
    printf 'say for how many seconds each target is to search; see the head of %s\n' "$0" >&2
    exit 3
fi
targets=(build/fuzz/fuzz/fuzz_*)
if [ ! -x "${targets[0]}" ]; then
    echo "there are no targets: cmake --preset fuzz && cmake --build build/fuzz" >&2
    exit 3
fi

# search TARGET: its words are shown when something breaks.
search() {
    local name=${1##*/} log=build/fuzz/${1##*/}.log
    mkdir -p "build/fuzz/found/$name"
    if "$1" -max_total_time="$2" -timeout=10 -rss_limit_mb=2048 -artifact_prefix="build/fuzz/breaks-$name-" \
        "build/fuzz/found/$name" "fuzz/corpus/$name" >"$log" 2>&1; then
        printf '%s: %s\n' "$name" "$(tail -n 1 "$log")"
    else
        cat "$log"
        printf '%s has found what breaks it\n' "$name"
        return 1
    fi
}
export -f search
printf '%s\0' "${targets[@]}" | xargs -0 -P "$(nproc)" -I TARGET bash -c 'search TARGET '"$seconds"
