#!/usr/bin/env bash
# Builds everything and runs all tests, each under the C locale and under one with a decimal comma.
# usage: ./test.sh [PRESET]    (release, debug, asan or tsan; default: release)
set -euo pipefail
cd "$(dirname "$0")"
. cmake/setup.sh

preset=${1:-release}
# shellcheck disable=SC2086
zax_install $zax_packages $zax_test_packages
zax_need_locale
zax_build "$preset"
ctest --preset "$preset" --parallel "$(nproc)"
