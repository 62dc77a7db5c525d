# shellcheck shell=bash
# Sourced by run, test and .ci/run: installs what is missing and builds. Everything it says goes to stderr.

say() { printf '%s\n' "$*" >&2; }

# install_packages FILE...: the Debian packages listed there, if any is missing.
install_packages() {
    local listed missing=() package
    mapfile -t listed < <(cat "$@" | grep -v '^#')
    for package in "${listed[@]}"; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -q '^installed$' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    say "Installing ${#missing[@]} packages: ${missing[*]}"
    local sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { say "Run this as root, or install sudo: packages are missing."; return 1; }
        sudo=(sudo)
    fi
    local log
    log=$(mktemp)
    if ! { "${sudo[@]}" apt-get update -qq &&
           DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"; } \
           >"$log" 2>&1; then
        cat "$log" >&2
        say "Installing the packages failed; they are listed in tools/packages.txt."
        return 1
    fi
    rm -f "$log"
}

# install_postgresql: the server that tests start by themselves, without the one that its package would set up.
install_postgresql() {
    local settings=/etc/postgresql-common/createcluster.d sudo=()
    if [ -z "$(find /usr/lib/postgresql/*/bin/initdb 2>/dev/null)" ]; then
        [ "$(id -u)" -eq 0 ] || sudo=(sudo)
        "${sudo[@]}" mkdir -p "$settings" &&
            echo 'create_main_cluster = false' | "${sudo[@]}" tee "$settings/rotor-trim-tests.conf" >/dev/null || return 1
    fi
    install_packages tools/packages-postgresql.txt
}

# install_node_modules runtime|all: what nc/ needs from npm to run, or also what looks at its sources; exactly as the lock
# file says, when that has changed.
install_node_modules() {
    local stamp=nc/node_modules/.installed-$1 everything=nc/node_modules/.installed-all omit=() log
    { cmp -s nc/package-lock.json "$stamp" || cmp -s nc/package-lock.json "$everything"; } && return 0
    [ "$1" = all ] || omit=(--omit=dev)
    if ! { command -v node && command -v npm; } >/dev/null; then
        install_packages tools/packages-node.txt || return 1
    fi
    say "Installing the npm packages of nc/"
    log=$(mktemp)
    if ! npm ci --prefix nc "${omit[@]}" --no-audit --no-fund >"$log" 2>&1; then
        cat "$log" >&2
        say "Installing the npm packages failed; they are listed in nc/package.json."
        return 1
    fi
    rm -f "$log"
    cp nc/package-lock.json "$stamp"
}

# build PRESET TARGET...: configures build/PRESET when new and builds; the compiler's words are shown when it fails.
build() {
    local preset=$1 log
    shift
    log=build/$preset.log
    mkdir -p build
    if [ ! -e "build/$preset/build.ninja" ]; then
        say "Configuring build/$preset"
        cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; return 1; }
        say "Building; the first time takes some minutes"
    fi
    cmake --build "build/$preset" --target "$@" >"$log" 2>&1 || { cat "$log" >&2; return 1; }
}
