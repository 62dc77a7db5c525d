#!/usr/bin/env bash
# Makes what a package has besides: the manual pages, from what the program says itself by --help, and the changelogs.
#   make_documents.sh ROTOR-TRIM VERSION DIRECTORY     writes DIRECTORY/man/man1, DIRECTORY/doc and DIRECTORY/made
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
program=$1 version=$2 directory=$3
rm -rf "$directory"
mkdir -p "$directory/man/man1" "$directory/doc"
# The date of the changes, not of this moment: the same sources give the same pages.
seconds=${SOURCE_DATE_EPOCH:-$(git -C "$here" log -1 --format=%ct 2>/dev/null || stat -c %Y "$here/../CHANGELOG.md")}

# to_page LEVEL: help text to the sections of a manual page; LEVEL is SH, or SS for what stands within a section.
to_page() {
    awk -v level="$1" '
        function plain(text) { gsub(/\\/, "\\e", text); gsub(/-/, "\\-", text); sub(/^[.\x27]/, "\\\\&&", text); return text }
        function section(name) { print "." level " \"" plain(toupper(name)) "\"" }
        /^Usage: / { next }
        /^[A-Z][a-z]+:$/ { section(substr($0, 1, length($0) - 1)); next }
        /^(Exit status|Environment): / {
            colon = index($0, ":"); section(substr($0, 1, colon - 1)); print plain(substr($0, colon + 2)); next }
        /^Further commands/ { section("commands"); next }
        match($0, /^ +/) && RLENGTH <= 4 {
            sub(/^ +/, "")
            cut = match($0, /  +/)
            print ".TP\n.B " plain(cut ? substr($0, 1, cut - 1) : $0)
            if (cut) print plain(substr($0, cut + RLENGTH))
            next }
        /^ / { sub(/^ +/, ""); print plain($0); next }
        /^$/ { print ".PP"; next }
        { print plain($0) }' | awk '!(/^\.PP$/ && last ~ /^\.(PP|S[HS] .*)$/) { print } { last = $0 }'
}

# page NAME COMMAND...: the page of that name, of what the command says.
page() {
    local name=$1 help usage purpose sub
    shift
    help=$("$@" --help)
    purpose=$(sed -n '1{s/^[a-z-]*: //;s/^\(.\)/\l\1/;p}' <<<"$help")
    usage=$(sed -n 's/^Usage: //p' <<<"$help")
    : "${usage:="${*/#*\//} [OPTIONS]"}"
    {
        printf '.TH %s 1 "%s" "rotor\\-trim %s" "User Commands"\n' "${name^^}" "$(date -u -d "@$seconds" +%Y-%m-%d)" "$version"
        printf '.SH NAME\n%s \\- %s\n.SH SYNOPSIS\n.B %s\n' "${name//-/\\-}" "${purpose//-/\\-}" "${usage//-/\\-}"
        tail -n +2 <<<"$help" | grep -q '^Options:' || printf '.SH OPTIONS\n'
        tail -n +2 <<<"$help" | to_page SH
        # Commands of a command are told here, too.
        while read -r sub; do
            printf '.SH "%s"\n' "${sub^^}"
            "$@" "$sub" --help | to_page SS
        done < <(awk '/^[A-Z]/ { is = /^Subcommands:/ } is && /^  [a-z]/ { print $1 }' <<<"$help")
        [ "$name" != rotor-trim ] || cat "$here/manual.roff"
        printf '.SH SEE ALSO\n%s\n' "$([ "$name" = rotor-trim ] && printf '%s\n' "${commands[@]/#/.BR rotor\\-trim\\-}" |
            sed 's/$/ (1),/; s/\([a-z]\)-\([a-z]\)/\1\\-\2/g' || printf '.BR rotor\\-trim (1),\n')"
        printf '/usr/share/doc/rotor\\-trim/\n'
    } >"$directory/man/man1/$name.1"
}

mapfile -t commands < <("$program" --help | awk '/^Further commands/ { is = 1 } /^$/ { is = 0 } is && /^  / { print $2 }')
[ ${#commands[@]} -gt 0 ] || { printf 'The help of %s lists no further commands.\n' "$program" >&2; exit 1; }
page rotor-trim "$program"
for command in "${commands[@]}"; do
    page "rotor-trim-$command" "$program" "$command"
done
gzip -9n "$directory"/man/man1/*.1

gzip -9nc "$here/../CHANGELOG.md" >"$directory/doc/changelog.gz"
printf 'rotor-trim (%s-1) unstable; urgency=medium\n\n  * What has changed stands in changelog.gz.\n\n -- %s  %s\n' \
    "$version" "$(cat "$here/contact")" "$(LC_ALL=C date -u -R -d "@$seconds")" |
    gzip -9nc >"$directory/doc/changelog.Debian.gz"
chmod -R u=rwX,go=rX "$directory"
touch "$directory/made"
