#!/usr/bin/env bash
# Proves that mutations.pl breaks what it should in every way it knows, and nothing else, on a small file; and that
# mutate.sh finds out, on a small project, what the tests notice.
set -euo pipefail
tools=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
failed=0

# expect WHAT GOT WANTED
expect() {
    [ "$2" = "$3" ] && return
    printf '%s: expected\n%s\ngot\n%s\n' "$1" "$3" "$2"
    failed=1
}

cat >a.cpp <<'CPP'
#include "a 1 + 2.h"
// if (a == 1) { b(); }
template <typename T>
int f(std::vector<int>& rA, T&& rB) {
    static_assert(sizeof(int) >= 4);
    PB_FLOW("step %d", 1 + 2);
    RV_WARNING(g_pLog, "%d of 3", m_X - 1);
    const char* pText = "if (1 < 2) { c(); } // 3";
    if (m_A && m_B < 20'000) {
        m_pThing->Do(m_X + 0x10, "(;");
        m_X = -m_Y;
    }
    if (rA[0] == m_B) {
        return std::max(1.5, m_C * 2.0) > 0 ? 1 : 7;
    }
    while (!Done()) {
        ++m_N;
    }
    bool bFine = true;
    switch (bFine ? m_A : Get()) {
        case eFirst:
            Do();
            break;
    }
    return 0;
}
virtual int g() const = 0;
CPP
expect 'the breakages' "$("$tools/mutations.pl" a.cpp | cut -f 2,5)" "$(cat <<'LIST'
7	left out: RV_WARNING(g_pLog, "%d of 3", m_X - 1);
9	condition turned: (m_A && m_B < 20'000)
9	&& is now ||
9	< is now <=
9	20'000 is now 20001
10	left out: m_pThing->Do(m_X + 0x10, "(;");
10	+ is now -
10	0x10 is now (0x10 + 1)
11	left out: m_X = -m_Y;
11	sign left out
13	condition turned: (rA[0] == m_B)
13	0 is now 1
14	std::max is now std::min
14	1.5 is now (1.5 + 1)
14	* is now /
14	2.0 is now (2.0 + 1)
14	> is now >=
14	0 is now 1
14	condition of ?: turned
14	1 is now 0
14	7 is now 8
16	condition turned: (!Done())
19	true is now false
20	condition of ?: turned
22	left out: Do();
25	0 is now 1
LIST
)"

# Each of them made in turn: the line that it names is another one then, and no other line is.
while IFS=$'\t' read -r file line offset length what replacement; do
    cp "$file" broken.cpp
    "$tools/mutations.pl" --apply broken.cpp "$offset" "$length" "$replacement"
    changed=$(diff "$file" broken.cpp | sed -nE 's/^([0-9]+)c[0-9]+$/\1/p' || true)
    expect "the line of '$what'" "$changed" "$line"
done < <("$tools/mutations.pl" a.cpp)

sample() { "$tools/mutations.pl" --sample 5 --seed "$1" a.cpp; }
expect 'the size of a sample' "$(sample 1 | wc -l)" 5
expect 'a sample of the same seed' "$(sample 1)" "$(sample 1)"
[ "$(sample 1)" != "$(sample 2)" ] || expect 'a sample of another seed' 'the same' 'another one'
expect 'a sample of more than there is' "$("$tools/mutations.pl" --sample 999 --seed 1 a.cpp)" "$("$tools/mutations.pl" a.cpp)"

# A project of one file. The nearest tests know of Add, those of the next program of Twice, none of Nothing.
mkdir -p project/tools project/rvlib project/tests
cd project
cp "$tools/mutate.sh" "$tools/mutations.pl" tools/
cat >rvlib/a.cpp <<'CPP'
int Add(int a, int b) {
    return a + b;
}
int Twice(int a) {
    return a * 2;
}
void Nothing(int& a) {
    a = 7;
}
int Choose(const int* p) {
    return p ? 4 : 4;
}
CPP
echo 'int Add(int, int); int main() { return Add(2, 3) == 5 ? 0 : 1; }' >tests/near.cpp
echo 'int Twice(int); int main() { return Twice(4) == 8 ? 0 : 1; }' >tests/far.cpp
cat >CMakeLists.txt <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(small LANGUAGES CXX)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_executable(rvlib_tests tests/near.cpp rvlib/a.cpp)
add_executable(rtr_trim_tests tests/far.cpp rvlib/a.cpp)
CMAKE
cp "$tools/../CMakePresets.json" .
echo /build/ >.gitignore
git init -q .
git add .
before=$(git status --short; cat rvlib/a.cpp)
output=$(tools/mutate.sh rvlib 2>&1) && status=0 || status=$?
expect 'its answer' "$status" 1
expect 'what it says' "$(grep -v '^building' <<<"$output")" "$(cat <<'LIST'
rvlib_tests 1/8 killed rvlib/a.cpp:2: + is now -
rvlib_tests 2/8 left alive rvlib/a.cpp:5: * is now /
rvlib_tests 3/8 left alive rvlib/a.cpp:5: 2 is now 3
rvlib_tests 4/8 left alive rvlib/a.cpp:8: left out: a = 7;
rvlib_tests 5/8 left alive rvlib/a.cpp:8: 7 is now 8
rvlib_tests 6/8 doesn't compile rvlib/a.cpp:11: condition of ?: turned
rvlib_tests 7/8 left alive rvlib/a.cpp:11: 4 is now 5
rvlib_tests 8/8 left alive rvlib/a.cpp:11: 4 is now 5
rtr_trim_tests 1/6 killed rvlib/a.cpp:5: * is now /
rtr_trim_tests 2/6 killed rvlib/a.cpp:5: 2 is now 3
rtr_trim_tests 3/6 left alive rvlib/a.cpp:8: left out: a = 7;
rtr_trim_tests 4/6 left alive rvlib/a.cpp:8: 7 is now 8
rtr_trim_tests 5/6 left alive rvlib/a.cpp:11: 4 is now 5
rtr_trim_tests 6/6 left alive rvlib/a.cpp:11: 4 is now 5
survived: rvlib/a.cpp:8: left out: a = 7;
survived: rvlib/a.cpp:8: 7 is now 8
survived: rvlib/a.cpp:11: 4 is now 5
survived: rvlib/a.cpp:11: 4 is now 5
3 killed, 4 survived, 1 not compiled
LIST
)"
output=$(tools/mutate.sh --nearest rvlib 2>&1) && status=0 || status=$?
expect 'its answer with the nearest tests' "$status" 1
expect 'what the nearest tests leave alive' "$(tail -n 7 <<<"$output")" "$(cat <<'LIST'
survived: rvlib/a.cpp:5: * is now /
survived: rvlib/a.cpp:5: 2 is now 3
survived: rvlib/a.cpp:8: left out: a = 7;
survived: rvlib/a.cpp:8: 7 is now 8
survived: rvlib/a.cpp:11: 4 is now 5
survived: rvlib/a.cpp:11: 4 is now 5
1 killed, 6 survived, 1 not compiled
LIST
)"
expect 'the tree' "$(git status --short; cat rvlib/a.cpp)" "$before"
# What a run has broken last, and its tests have noticed, is whole again in the next run.
echo 'int Last(int a) { return a + 5; }' >rvlib/a.cpp
echo 'int Last(int); int main() { return Last(2) == 7 ? 0 : 1; }' >tests/near.cpp
for run in first next; do
    tools/mutate.sh --nearest rvlib >/dev/null 2>&1 && status=0 || status=$?
    expect "the $run run's answer where nothing survives" "$status" 0
done
echo 'int main() { return 1; }' >tests/near.cpp
tools/mutate.sh rvlib >/dev/null 2>&1 && status=0 || status=$?
expect 'its answer to tests that fail as they are' "$status" 3
tools/mutate.sh --seed 1 rvlib >/dev/null 2>&1 && status=0 || status=$?
expect 'its answer to a seed without a sample' "$status" 3

[ "$failed" -eq 0 ] && printf 'mutate.sh breaks what it should, and finds what is not noticed\n'
exit "$failed"
