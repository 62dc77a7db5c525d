#!/usr/bin/env bash
# Proves that a help that can't be compiled, or only in part, fails the build in words, and leaves the former result.
# shellcheck disable=SC2317  # expect calls the functions below by their names
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
failed=0

compile() {
    cmake -D CHMCMD="$compiler" -D SOURCE="$place/help" -D LANGUAGE=en -D WORK="$place/work" \
        -D OUTPUT="$place/out/en.chm" -P "$root/cmake/CompileHelp.cmake" >"$place/said" 2>&1
}

# compiler TEXT: one that does that in place of the real one.
fake() {
    compiler=$place/compiler
    printf '#!/bin/sh\n%s\n' "$1" >"$compiler"
    chmod +x "$compiler"
}

# expect WORDS COMMAND: after that command compiling fails, says WORDS, and the former result is still there.
expect() {
    local words=$1
    shift
    rm -rf "${place:?}"/*
    mkdir -p "$place/out"
    cp -r "$root/help" "$place/help"
    echo former >"$place/out/en.chm"
    compiler=chmcmd
    "$@"
    if compile; then
        printf 'after "%s": it did not fail\n' "$*"
        failed=1
    elif ! tr -s '\n ' '  ' <"$place/said" | grep -qF "$words"; then
        printf 'after "%s": it did not say "%s" but:\n' "$*" "$words"
        cat "$place/said"
        failed=1
    elif [ "$(cat "$place/out/en.chm")" != former ]; then
        printf 'after "%s": the former result is gone\n' "$*"
        failed=1
    fi
}

no_contents() { rm "$place/help/en/contents.hhc"; }
expect "help/en/contents.hhc is missing" no_contents
no_pages() { rm "$place"/help/en/*.htm; }
expect "no pages in" no_pages
expect "ended with 217, its result has 0 bytes. It said: no such file" fake 'echo no such file; exit 217'
expect "ended with 0, its result has 0 bytes" fake ': >result.chm'
expect "It said: Note: 1 Warning: File x.htm does not exist" \
    fake 'echo "Note: 1"; echo "Warning: File x.htm does not exist"; echo content >result.chm'
no_compiler() { compiler=$place/none; }
expect "The help of language en was not compiled" no_compiler

rm -rf "${place:?}"/*
cp -r "$root/help" "$place/help"
compiler=chmcmd
if ! compile || [ "$(head -c 4 "$place/out/en.chm")" != ITSF ]; then
    echo "a help in order was not compiled:"
    cat "$place/said"
    failed=1
fi
exit "$failed"
