#!/usr/bin/env bash
# Lets the fuzz targets of build/fuzz search, one a core:
#
#   tools/fuzz.sh SECONDS                                        every target, for so long
#   tools/fuzz.sh --inputs N [--at-most SECONDS] [TARGET...]     those targets, or every one, so many inputs each
#
# A search begins with its seeds; what reaches more code goes to build/fuzz/found/, and stays there for the next search. The
# second form then tells how much is reached, and leaves the fewest inputs that reach it in build/fuzz/merged/TARGET/, from
# where new ones may become seeds. An input that breaks something is kept as build/fuzz/breaks-TARGET-..., and named;
# "build/fuzz/fuzz/TARGET FILE" repeats it.
set -euo pipefail
cd "$(dirname "$0")/.."

refuse() {
    printf '%s; see the head of %s\n' "$1" "$0" >&2
    exit 3
}
# is_number TEXT
is_number() { [[ $1 =~ ^[1-9][0-9]*$ ]]; }

inputs=0
seconds=0
names=()
while [ $# -gt 0 ]; do
    case $1 in
        --inputs)
            inputs=${2:-}
            is_number "$inputs" || refuse 'say how many inputs each target is to try'
            shift ;;
        --at-most)
            seconds=${2:-}
            is_number "$seconds" || refuse 'say for how many seconds each target may search'
            shift ;;
        fuzz_*) names+=("$1") ;;
        *)
            is_number "$1" || refuse 'say for how many seconds each target is to search'
            seconds=$1 ;;
    esac
    shift
done
[ "$inputs" != 0 ] || [ "$seconds" != 0 ] || refuse 'say for how many seconds each target is to search'
targets=(build/fuzz/fuzz/fuzz_*)
[ ${#names[@]} -eq 0 ] || targets=("${names[@]/#/build/fuzz/fuzz/}")
for target in "${targets[@]}"; do
    [ -x "$target" ] || { echo "there is no $target: cmake --preset fuzz && cmake --build build/fuzz" >&2; exit 3; }
done

# summarize NAME LOG: "fuzz_xml: 1000 inputs in 2 s, reach 310 edges, 1200 features by 80 inputs"
summarize() {
    local edges features kept tried took
    read -r edges features kept < <(sed -nE 's/.*(DONE|pulse|REDUCE|NEW) +cov: ([0-9]+) ft: ([0-9]+) corp: ([0-9]+).*/\2 \3 \4/p' "$2" | tail -n 1)
    read -r tried took < <(sed -nE 's/^Done ([0-9]+) runs in ([0-9]+) second.*/\1 \2/p' "$2" | tail -n 1)
    printf '%s: %s inputs in %s s, reach %s edges, %s features by %s inputs\n' \
        "$1" "$tried" "$took" "${edges:-0}" "${features:-0}" "${kept:-0}"
}

# search TARGET SECONDS INPUTS: its words are shown when something breaks.
search() {
    local name=${1##*/} log=build/fuzz/${1##*/}.log limits=()
    mkdir -p "build/fuzz/found/$name"
    [ "$2" = 0 ] || limits+=("-max_total_time=$2")
    [ "$3" = 0 ] || limits+=("-runs=$3")
    if ! "$1" "${limits[@]}" -timeout=10 -rss_limit_mb=2048 -close_fd_mask=1 \
        -artifact_prefix="build/fuzz/breaks-$name-" "build/fuzz/found/$name" "fuzz/corpus/$name" >"$log" 2>&1; then
        cat "$log"
        printf '%s has found what breaks it\n' "$name"
        return 1
    fi
    if [ "$3" = 0 ]; then
        printf '%s: %s\n' "$name" "$(tail -n 1 "$log")"
        return
    fi
    summarize "$name" "$log"
    rm -rf "build/fuzz/merged/$name"
    mkdir -p "build/fuzz/merged/$name"
    "$1" -merge=1 -rss_limit_mb=2048 -close_fd_mask=1 "build/fuzz/merged/$name" "fuzz/corpus/$name" \
        "build/fuzz/found/$name" >>"$log" 2>&1
    printf '%s: %s inputs are enough for that\n' "$name" "$(find "build/fuzz/merged/$name" -type f | wc -l)"
}
export -f search summarize
printf '%s\0' "${targets[@]}" | xargs -0 -P "$(nproc)" -I TARGET bash -c "search TARGET $seconds $inputs"
