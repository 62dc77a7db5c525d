#!/usr/bin/env bash
# Looks over all scripts of the project: whatever begins with the name of a shell, or says that it is sourced by one.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t scripts < <(git grep -lIE -e '^#!.*\b(ba|da)?sh$' -e '^# shellcheck shell=' -- ':!*.md')
git ls-files '*.sh' | while IFS= read -r file; do
    case " ${scripts[*]} " in
        *" $file "*) ;;
        *) printf '%s: says nowhere which shell it is for\n' "$file" && exit 1 ;;
    esac
done
shellcheck --external-sources "${scripts[@]}"
