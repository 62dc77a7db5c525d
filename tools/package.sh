#!/usr/bin/env bash
# Builds the Debian package for this machine's architecture, build/package/rotor-trim_VERSION_ARCHITECTURE.deb, and says its
# name.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/prepare.sh

install_packages tools/packages.txt tools/packages-package.txt
install_node_modules runtime
build release console simulator rtr_trim help_files package_documents
mkdir -p build/package
# The rights of what is packed are those of what was installed, not of who packs it.
umask 022
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
rm -f build/package/*.deb
log=build/package.log
cpack --config build/release/CPackConfig.cmake -B build/package >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
rm -rf build/package/_CPack_Packages
ls build/package/*.deb
