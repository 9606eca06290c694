#!/usr/bin/env bash
# Checks that the sources are laid out as .clang-format says.
cd "$(dirname "$0")/.." || exit 1
git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format --dry-run --Werror
