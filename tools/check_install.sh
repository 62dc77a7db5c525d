#!/usr/bin/env bash
# Installs what is built into a directory of its own and tries it from there: nothing may lead back into the build. What
# takes long, the package on a clean system, is package_test.sh's.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/prepare.sh
. tools/checks.sh

build release console simulator rtr_trim help_files
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
DESTDIR=$work cmake --install build/release --prefix /usr >"$work/install.log"
installed=$work/usr
# From elsewhere, with nothing of this shell's.
run() { (cd "$work" && env -i PATH="$PATH" HOME="$work" LANG=C.UTF-8 "$installed/bin/rotor-trim" "$@"); }
says() {
    local wanted=$1
    shift
    "$@" | tee "$work/said" | grep -q -e "$wanted" || { cat "$work/said"; return 1; }
}
version=$(sed -n 's/^project(\w* VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)

nothing_leads_back() { ! grep -rlF "$PWD" "$installed"; }
links_hold() { ! find "$installed" -xtype l | grep .; }
nothing_is_open_to_others() { ! find "$installed" ! -type l -perm /022 | grep .; }
no_development() { ! find "$installed" -path '*/@types' -o -path '*/eslint' -o -name '*.ts' -o -name '*.map' | grep .; }
# Each says in one way or other what its users may do.
licences_are_there() {
    local package
    find "$installed"/share/rotor-trim/nc/node_modules -name package.json \
        \( -path '*/node_modules/*/package.json' -o -path '*/node_modules/@*/*/package.json' \) |
        grep -E '/node_modules/(@[^/]+/)?[^/@]+/package\.json$' | while read -r package; do
        find "${package%/*}" -maxdepth 1 \( -iname 'licen[cs]e*' -o -iname 'copying*' -o -iname 'readme*' \) | grep -q . ||
            { printf 'none in %s\n' "${package%/*}"; exit 1; }
    done
}
help_is_found() {
    run --headless --config-dir "$work/root" >/dev/null
    cmp "$installed/share/rotor-trim/help/en_Falconet.chm" "$work/root/ctrl/help/en_Falconet.chm"
}

check "the installed files don't know where they were built" nothing_leads_back
check "every link leads somewhere" links_hold
check "nothing can be written by others" nothing_is_open_to_others
check "npm packages for development stay behind" no_development
check "each npm package has its licence" licences_are_there
check "the version is told" says " $version\$" run --version
check "the help calls the program by its name" says "Usage: rotor-trim backup " run backup --help
check "a run ends within its target" says "^Within target" run --headless
check "the help is found and handed on" help_is_found
check "the run that was kept is listed" says "within" run archive list --config-dir "$work/root" --language en
check "what the program made is its owner's and group's" has_data_rights "$work/root"
check "the simulator is found" says "^simulator $version\$" run simulator --version
check "the NC simulator is found" says "^nc-simulator $version\$" run nc --version
check "the gateway is found" says "^opc-gateway $version\$" "$installed/lib/rotor-trim/bin/opc-gateway" --version
end_checks
