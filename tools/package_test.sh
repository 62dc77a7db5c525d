#!/usr/bin/env bash
# Installs the package in a clean Debian 12 and balances the simulated rotor there without a network; upgrades from the package
# of the last tag, removes and purges it. Runs as root. All that is mounted belongs to processes that end with this one.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/prepare.sh
. tools/checks.sh
. tools/usbadapter.sh

suite=bookworm
tests=$PWD/build/package-test
root=$tests/root
home=/home/panel
data=$home/.local/share/corvane

install_packages tools/packages-package-test.txt
remove_root() { rm -rf --one-file-system "$root" "$tests/previous"; }
remove_root
trap remove_root EXIT
trap 'exit 1' HUP INT TERM
mkdir -p "$tests/previous"

# --- Packages: the one that is tried, and one from before.

package=$(tools/package.sh | tail -1)
version=$(dpkg-deb -f "$package" Version)

# pack_tag: makes the package of the last tag, if there is one that can.
pack_tag() {
    local tag
    tag=$(git describe --tags --abbrev=0 2>/dev/null) || return 1
    git cat-file -e "$tag:tools/package.sh" 2>/dev/null || return 1
    mkdir -p "$tests/tag"
    git archive "$tag" | tar -x -C "$tests/tag"
    (cd "$tests/tag" && git init -q . && git -c user.name=x -c user.email=x@localhost commit -q --allow-empty -m x && tools/package.sh) >&2
    cp "$tests"/tag/build/package/*.deb "$tests/previous/"
    dpkg --compare-versions "$(dpkg-deb -f "$tests"/previous/*.deb Version)" lt "$version" || { rm "$tests"/previous/*.deb; return 1; }
}
# pack_lower: what is tried, under a lower version.
pack_lower() {
    local contents=$tests/previous/contents
    dpkg-deb -R "$package" "$contents"
    sed -i "s/^Version: .*/Version: $version~before/" "$contents/DEBIAN/control"
    dpkg-deb -Znone --root-owner-group -b "$contents" "$tests/previous/rotor-trim_before.deb" >/dev/null
    rm -r "$contents"
}
pack_tag || pack_lower
previous=$(ls "$tests"/previous/*.deb)
previous_version=$(dpkg-deb -f "$previous" Version)

# --- A clean system, from where this machine has its packages.

base=$tests/$suite.tar
if [ -z "$(find "$base" -mtime -7 2>/dev/null)" ]; then
    say "Making a clean $suite"
    shopt -s nullglob
    sources=(/etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources)
    shopt -u nullglob
    for i in "${!sources[@]}"; do [ -s "${sources[i]}" ] || unset "sources[i]"; done
    # What every panel has: a system manager, device names, manual pages.
    mmdebstrap --quiet --variant=apt --include=systemd,udev,man-db "$suite" "$base.new" "${sources[@]}"
    mv "$base.new" "$base"
fi
mkdir -p "$root"
tar -x -C "$root" -f "$base"
cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
cp "$package" "$root/root/new.deb"
cp "$previous" "$root/root/previous.deb"

# in_root COMMAND...: there, with processes of its own, and the network of this machine; offline without any.
in_root() {
    unshare --mount --pid --fork --kill-child --mount-proc="$root/proc" \
        chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}
offline() {
    unshare --net --mount --pid --fork --kill-child --mount-proc="$root/proc" sh -c 'ip link set lo up && exec chroot "$@"' sh \
        "$root" env -i PATH=/usr/bin:/bin HOME="$home" LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}
# as_panel COMMAND...: offline, by the panel's user, in its home.
as_panel() { offline env -C "$home" setpriv --reuid=panel --regid=panel --init-groups "$@"; }
# has_line PATTERN COMMAND...
has_line() {
    local wanted=$1 output status=0
    shift
    output=$("$@" 2>&1) || status=$?
    printf '%s\n' "$output"
    [ "$status" -eq 0 ] && grep -q -e "$wanted" <<<"$output"
}
installed_version() { [ "$(in_root dpkg-query -W rotor-trim)" = "rotor-trim"$'\t'"$1" ]; }
files_of_package() { in_root dpkg -L rotor-trim; }

# --- The package by itself.

lintian_is_content() {
    local said status=0
    said=$(lintian --allow-root "$package") || status=$?
    printf '%s\n' "$said"
    [ "$status" -eq 0 ] && [ -z "$said" ]
}
draws_icon() { rsvg-convert -w 48 -h 48 packaging/rotor-trim.svg -o "$tests/icon.png" && [ -s "$tests/icon.png" ]; }
check "lintian has nothing to say" lintian_is_content
check "the desktop entry is valid" desktop-file-validate packaging/rotor-trim.desktop
check "the icon can be drawn" draws_icon

# --- Installation and a run, with the version from before.

in_root apt-get update -qq
check "the package of before is installed with what it needs" in_root apt-get install -qq --no-install-recommends /root/previous.deb
check "it is version $previous_version" installed_version "$previous_version"
in_root useradd --create-home --shell /bin/sh panel
in_root usermod --append --groups dialout panel
check "a rotor is balanced without a network" has_line "^Within target: .* saved" as_panel \
    rotor-trim --headless --config-dir "$data" --rotor-name "Spindle 7" --language en

# --- Upgrade.

check "it is upgraded without a network" offline apt-get install -qq --no-install-recommends /root/new.deb
check "it is version $version" installed_version "$version"
check "the program tells it" has_line " ${version%-*}\$" as_panel rotor-trim --version
check "the run from before is there" has_line "Spindle 7" as_panel rotor-trim archive list --language en
check "its calibration is there" has_line "^Within target: .* saved" as_panel \
    rotor-trim --headless --config-dir "$data" --procedure rebalance --language en

# --- All that comes along.

driven_by_nc() { has_line "^Within target" as_panel rotor-trim --headless --nc opcua --language en; }
two_planes() {
    has_line "^Within target" as_panel rotor-trim --headless --mode two-plane --method weights,screws --language en \
        --rotor /usr/share/rotor-trim/rotors/two-plane.json
}
german_report() {
    as_panel rotor-trim --headless --language de --report report.pdf && as_panel sh -c 'head -c 5 report.pdf | grep -q %PDF-'
}
manual_pages() {
    local command
    for command in rotor-trim $(as_panel rotor-trim --help | awk '/^Further commands/ { is = 1 } /^$/ { is = 0 } is && /^  / { print $1 "-" $2 }'); do
        in_root man --where "$command" || return 1
    done
    has_line "^SYNOPSIS" in_root man rotor-trim
}
unit_is_valid() {
    local said
    said=$(in_root env XDG_RUNTIME_DIR=/run systemd-analyze verify --user --man=yes /usr/lib/systemd/user/rotor-trim-kiosk.service 2>&1) || true
    [ -z "$said" ] || { printf '%s\n' "$said"; return 1; }
}
unit_says() { grep -qx "$1" "$root/usr/lib/systemd/user/rotor-trim-kiosk.service"; }
# plug SERIAL PORT: what the rules make of such an adapter.
plug() {
    make_adapter "$root" "$@"
    in_root env SYSTEMD_DEVICE_VERIFY_SYSFS=0 udevadm test --action=add "$ADAPTER" 2>&1
    rm -rf "${root:?}"/sys/* "$root"/dev/rotor-trim* "$root/dev/serial"
}
# names SERIAL PORT NAME...: these are the names that it gets from the package, and no others.
names() {
    local said got
    said=$(plug "$1" "$2")
    shift 2
    got=$(sed -n 's/^DEVLINKS=//p' <<<"$said" | tr ' ' '\n' | grep rotor-trim | sort)
    printf '%s\n' "$said"
    [ "$got" = "$(printf '/dev/rotor-trim-%s\n' "$@" | sort)" ]
}
opens_port_to_group() {
    local said
    said=$(plug A50285BI 0)
    printf '%s\n' "$said"
    grep -q '70-rotor-trim.rules:[0-9]* GROUP 20$' <<<"$said" && grep -q '70-rotor-trim.rules:[0-9]* MODE 0660$' <<<"$said"
}
nothing_is_open_to_others() {
    local open
    open=$(files_of_package | (cd "$root" && while IFS= read -r file; do find ".$file" -maxdepth 0 ! -type l -perm /6022; done))
    [ -z "$open" ] || { printf '%s\n' "$open"; return 1; }
}
documents_are_there() {
    for file in README.md changelog.gz changelog.Debian.gz copyright docs/installation.md; do
        [ -s "$root/usr/share/doc/rotor-trim/$file" ] || { printf '%s is missing\n' "$file"; return 1; }
    done
}

check "the NC drives a run through the gateway, without a network" driven_by_nc
check "two planes are balanced, by a rotor file of the package" two_planes
check "a report is written in German" german_report
check "there is a manual page for each command" manual_pages
check "the unit for a kiosk is valid" unit_is_valid
check "it starts again whenever it ends" unit_says "Restart=always"
at="at-pci-0000_00_14_0-usb-0_2_1_0"
check "an adapter is named by its number and its socket" names A50285BI 0 A50285BI-if00 "$at"
check "so is each port of one with several" names A50285BI 2 A50285BI-if00-port2 "$at-port2"
check "an adapter without a number is named by its socket" names "" 0 "$at"
check "the port is open to the group dialout, and to nobody else" opens_port_to_group
check "documents are there" documents_are_there
check "no file is open to others, none runs with another's rights" nothing_is_open_to_others
check "what the program made is its owner's and group's" has_data_rights "$root$data"

# --- Removal.

has_data() { [ -s "$root$data/cnf/prebal.db" ] && [ -d "$root$data/log" ]; }
leaves_nothing() {
    local left
    left=$(find "$root" -xdev -path "$root/proc" -prune -o -path "$root$home" -prune -o -name '*rotor-trim*' \
        ! -path '*/var/lib/dpkg/*' ! -path '*/var/cache/*' ! -path '*/var/log/*' ! -path '*/root/*' -print)
    [ -z "$left" ] || { printf '%s\n' "$left"; return 1; }
}
check "it is removed" in_root apt-get remove -qq rotor-trim
check "nothing of the package is left" leaves_nothing
check "its data stays" has_data
check "it is installed again without a network" offline apt-get install -qq --no-install-recommends /root/new.deb
check "the runs are there as before" has_line "Spindle 7" as_panel rotor-trim archive list --language en
check "it is purged" in_root apt-get purge -qq rotor-trim
check "nothing of the package is left after that either" leaves_nothing
check "the data still stays" has_data
end_checks
