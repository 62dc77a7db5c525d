# shellcheck shell=bash
# Sourced by check_install.sh and package_test.sh: checks with names, all of which are made, whatever becomes of the first.
#
#   check NAME COMMAND...   one line that says whether the command did well; if not, what it said
#   end_checks              fails if one did
#
#   has_data_rights DIRECTORY   what the program made there is open to owner and group: 0770 and 0660, but for the keys

checks_made=0
checks_failed=0

check() {
    local name=$1 output
    shift
    checks_made=$((checks_made + 1))
    if output=$("$@" 2>&1); then
        printf 'ok      %s\n' "$name"
    else
        checks_failed=$((checks_failed + 1))
        # The end of what it said: there it stands why.
        printf 'FAILED  %s\n%s\n' "$name" "$(tail -n 40 <<<"$output")" | sed '2,$s/^/        /'
    fi
}

end_checks() {
    printf '%d checks, %d failed\n' "$checks_made" "$checks_failed"
    [ "$checks_failed" -eq 0 ]
}

has_data_rights() {
    local wrong
    wrong=$(find "$1" \( -type d ! -perm 770 -o -type f ! -perm 660 \) -not -path '*/opcua*' -printf '%m %p\n')
    [ -z "$wrong" ] || { printf '%s\n' "$wrong"; return 1; }
}
