#!/usr/bin/env bash
# Tries the choice of sources for static analysis on a small project, with a clang-tidy that only says what it is given.
set -euo pipefail
tools=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
tried=0
mkdir -p "$work/bin" "$work/tree/tools" "$work/tree/rvlib/a" "$work/tree/platform" "$work/tree/tests" "$work/tree/build/release"
cp "$tools/check_tidy.sh" "$work/tree/tools/"
cat >"$work/bin/clang-tidy" <<'SAYS'
#!/usr/bin/env bash
for argument; do
    case $argument in -* | build/*) ;; *) printf '%s\n' "$argument" >>"$TOLD" ;; esac
    [ "$argument" != "${BAD:-}" ] || exit 1
done
SAYS
chmod +x "$work/bin/clang-tidy"
export PATH=$work/bin:$PATH TOLD=$work/told
cd "$work/tree"
git init -q
git config user.name test
git config user.email test@localhost
touch build/release/compile_commands.json .clang-tidy
echo /build/ >.gitignore

# commit FILE...: changes these files.
commit() {
    local file
    for file; do
        [ -e "$file" ] || : >"$file"
        echo "// $RANDOM$RANDOM" >>"$file"
    done
    git add -A
    git commit -qm "$*"
}
echo '#include "rvlib/a/only.h"' >rvlib/a/deep.h
echo '#include "rvlib/a/deep.h"' >rvlib/a/user.cpp
commit rvlib/a/one.cpp rvlib/a/one.h rvlib/a/only.h rvlib/a/deep.h rvlib/a/user.cpp platform/two.cpp platform/gone.cpp
commit tests/one_test.cpp tests/help.h README.md

# expect STATUS WHAT ARGUMENTS [FILE...]: what these arguments have analysed.
expect() {
    local wanted=$1 what=$2 arguments status=0 told
    read -ra arguments <<<"$3"
    shift 3
    : >"$TOLD"
    tools/check_tidy.sh "${arguments[@]}" >"$work/output" 2>&1 || status=$?
    told=$(sort "$TOLD" | tr '\n' ' ')
    tried=$((tried + 1))
    if [ "$status" -ne "$wanted" ] || [ "$told" != "${*:+$* }" ]; then
        printf '%s: status %d, analysed: %s\n' "$what" "$status" "$told"
        cat "$work/output"
        failed=$((failed + 1))
    fi
}
every=(platform/gone.cpp platform/two.cpp rvlib/a/one.cpp rvlib/a/user.cpp)
expect 0 "without arguments all" "" "${every[@]}"
expect 0 "files that are named" "platform/two.cpp" platform/two.cpp
expect 0 "tests and documents are none of it" "--last 1"
expect 0 "more commits than there are" "--last 9" "${every[@]}"
commit platform/two.cpp
expect 0 "a touched source" "--last 1" platform/two.cpp
expect 0 "a touched source, and one commit more" "--last 2" platform/two.cpp
commit rvlib/a/one.h
expect 0 "a header by the source of its name" "--last 1" rvlib/a/one.cpp
commit rvlib/a/only.h
expect 0 "a header by the one that includes it, over another header" "--last 1" rvlib/a/user.cpp
expect 0 "no more than wanted, the newest first" "--last 3 --at-most 2" rvlib/a/one.cpp rvlib/a/user.cpp
git rm -q platform/gone.cpp
git commit -qm "gone"
expect 0 "what is gone" "--last 1"
echo "// more" >>rvlib/a/user.cpp
expect 0 "what isn't committed yet" "--last 1" rvlib/a/user.cpp
rm platform/two.cpp
expect 0 "what is gone and not committed yet" "--last 1" rvlib/a/user.cpp
git checkout -q platform/two.cpp
commit .clang-tidy
expect 0 "other rules: all" "--last 1" platform/two.cpp rvlib/a/one.cpp rvlib/a/user.cpp
expect 0 "fewer than allowed" "--last 1 --at-most 9" platform/two.cpp rvlib/a/one.cpp rvlib/a/user.cpp
expect 3 "a limit without a number" "--last 1 --at-most"
expect 3 "a limit by another name" "--last 1 --limit 3"
expect 3 "no number" "--last"
expect 3 "a number that is none" "--last few"
expect 3 "an unknown option" "--all"
expect 3 "a file that isn't there" "platform/none.cpp"
BAD=platform/two.cpp expect 123 "findings" "platform/two.cpp" platform/two.cpp

[ "$failed" -eq 0 ] || exit 1
printf 'the choice of sources is right in all %d cases\n' "$tried"
