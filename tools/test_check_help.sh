#!/usr/bin/env bash
# Proves that check_help.sh finds what it looks for, by planting each fault in a small help of two languages, and that
# this project's own help has none.
# shellcheck disable=SC2317  # expect calls the functions below by their names
set -euo pipefail
tools=$(cd "$(dirname "$0")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failed=0
tried=0

# page FILE TEXT: a page that is in order but for what TEXT brings along.
page() {
    cat >"$tree/help/$1" <<EOF
<html><head><meta http-equiv="Content-Type" content="text/html; charset=utf-8">
<title>A title</title><link rel="stylesheet" type="text/css" href="style.css"></head>
<body><h1>A title</h1><p>A text that is long enough to be the help of something, Größe.</p>$2</body></html>
EOF
}

# map FILE PAGE...: contents or index with a line for each page.
map() {
    local file=$1 entry
    shift
    for entry in "$@"; do
        printf '<object><param name="Name" value="x"><param name="Local" value="%s"></object>\n' "$entry"
    done >"$tree/help/$file"
}

# A help without a fault.
plant() {
    local language
    rm -rf "${tree:?}"/*
    mkdir -p "$tree"/{contract,platform,texts,help/images}
    printf '%s\n' 'inline constexpr std::array A = {"_PB001", "PB_004", "RUN_STEP_01"};' >"$tree/contract/helptopics.h"
    printf '%s\n' 'constexpr const char* A = "PB_004";' >"$tree/platform/a.cpp"
    touch "$tree/help/style.css" "$tree/help/images/a.png"
    for language in en de; do
        mkdir "$tree/help/$language"
        printf '<message id="ONLINE_HELP_PREFIX">\n<translation>%s</translation>\n' "$language" >"$tree/texts/t_$language.ts"
        page "$language/_PB001.htm" '<a href="PB_004.htm#x">a</a> <img src="a.png" alt="A">'
        page "$language/PB_004.htm" '<a id="x">here</a> <a href="#x">there</a>'
        page "$language/RUN_STEP_01.htm" ''
        map "$language/contents.hhc" _PB001.htm PB_004.htm RUN_STEP_01.htm
        map "$language/index.hhk" RUN_STEP_01.htm PB_004.htm#x _PB001.htm
    done
}

# expect LINE COMMAND...: after that command on a good help the check finds LINE alone; "clean": nothing.
expect() {
    local line=$1 output status=0
    shift
    plant
    (cd "$tree/help" && "$@")
    output=$("$tools/check_help.sh" "$tree") || status=$?
    tried=$((tried + 1))
    if [ "$line" = clean ]; then
        [ "$status" -eq 0 ] && [ -z "$output" ] && return
    else
        [ "$status" -ne 0 ] && [ "$output" = "$line" ] && return
    fi
    printf 'after "%s": expected "%s", got status %s:\n%s\n' "$*" "$line" "$status" "$output"
    failed=1
}

unlist() { sed -i "/$2/d" "$1"; }

expect clean true

# Topics and pages.
no_page() { rm de/RUN_STEP_01.htm; unlist de/contents.hhc RUN_STEP_01; unlist de/index.hhk RUN_STEP_01; }
expect "help/de/RUN_STEP_01.htm: is missing: the topic RUN_STEP_01 has no text in this language" no_page
no_text() { sed -i 's/A text that[^<]*//' en/RUN_STEP_01.htm; }
expect "help/en/RUN_STEP_01.htm: has no text" no_text
no_title() { sed -i 's/<title>A title/<title>/' en/RUN_STEP_01.htm; }
expect "help/en/RUN_STEP_01.htm: has no title" no_title
no_topic() { sed -i 's/, "RUN_STEP_01"//' ../contract/helptopics.h; rm de/RUN_STEP_01.htm; unlist de/contents.hhc RUN_STEP_01; unlist de/index.hhk RUN_STEP_01; }
expect "help/en/RUN_STEP_01.htm: no topic leads here: RUN_STEP_01 isn't in contract/helptopics.h" no_topic
unknown_topic() { printf '%s\n' 'Show("PB_014");' >../platform/b.h; }
expect "platform/b.h: the topic PB_014 isn't in contract/helptopics.h" unknown_topic
no_list() { rm ../contract/helptopics.h; }
expect "contract/helptopics.h: is missing" no_list

# Languages.
no_help() { sed 's/>de</>fr</' ../texts/t_de.ts >../texts/t_fr.ts; }
expect "texts/t_fr.ts: there is no help for this language, help/fr" no_help
no_prefix() { echo >../texts/t_de.ts; }
expect "texts/t_de.ts: does not say which help is its own (ONLINE_HELP_PREFIX)" no_prefix
no_encoding() { iconv -f UTF-8 -t ISO-8859-1 -o x.htm de/RUN_STEP_01.htm; mv x.htm de/RUN_STEP_01.htm; }
expect "help/de/RUN_STEP_01.htm: is not in UTF-8, or does not say so" no_encoding

# Links.
dead_link() { page en/RUN_STEP_01.htm '<a href="PB_999.htm">x</a>'; }
expect "help/en/RUN_STEP_01.htm: the link to PB_999.htm leads nowhere" dead_link
dead_anchor() { page en/RUN_STEP_01.htm '<a href="PB_004.htm#y">x</a>'; }
expect "help/en/RUN_STEP_01.htm: the link to PB_004.htm#y leads to no such place of that page" dead_anchor
outside() { page en/RUN_STEP_01.htm '<a href="http://example.org/">x</a>'; }
expect "help/en/RUN_STEP_01.htm: the link to http://example.org/ leads out of the help" outside
elsewhere() { page en/RUN_STEP_01.htm '<a href="../de/PB_004.htm">x</a>'; }
expect "help/en/RUN_STEP_01.htm: the link to ../de/PB_004.htm leads out of the help" elsewhere

# Pictures and style.
dead_picture() { page en/RUN_STEP_01.htm '<img src="b.png" alt="B">'; }
expect "help/en/RUN_STEP_01.htm: the picture b.png isn't in help/images" dead_picture
unseen_picture() { touch images/b.png; }
expect "help/images/b.png: no page shows it" unseen_picture
no_alt() { page en/RUN_STEP_01.htm '<img src="a.png">'; }
expect "help/en/RUN_STEP_01.htm: a picture has no words for those who can not see it (alt)" no_alt
no_style() { sed -i 's/ type="text.css"//' en/RUN_STEP_01.htm; }
expect "help/en/RUN_STEP_01.htm: has no style sheet that the viewer takes: type=\"text/css\" href=\"style.css\"" no_style
no_sheet() { rm style.css; }
expect "help/style.css: is missing" no_sheet

# Contents and index.
dead_line() { map en/contents.hhc _PB001.htm PB_004.htm RUN_STEP_01.htm PB_999.htm; }
expect "help/en/contents.hhc: the line to PB_999.htm leads nowhere" dead_line
not_listed() { map en/index.hhk _PB001.htm PB_004.htm; }
expect "help/en/index.hhk: RUN_STEP_01.htm isn't in it" not_listed
no_contents() { rm en/contents.hhc; }
expect "help/en/contents.hhc: is missing" no_contents

if ! "$tools/check_help.sh"; then
    echo "The project's own help has faults."
    failed=1
fi
[ "$tried" -gt 20 ] || { echo "Only $tried cases were tried."; failed=1; }
exit "$failed"
