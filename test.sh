#!/usr/bin/env bash
# Builds everything and runs all tests, each under the C locale and under one with a decimal comma.
# usage: ./test.sh [--full|--short] [PRESET]
#   PRESET   release, debug, asan or tsan; default: release
#   --full   runs the exhaustive and random tests in their full size, which takes an hour rather than minutes
#   --short  under the C locale alone, and without the tests of what gets installed
set -euo pipefail
cd "$(dirname "$0")"
. cmake/setup.sh

preset=release
timeout=600
selection=()
for argument in "$@"; do
    case $argument in
        --full)
            export ZAX_FULL_TESTS=1
            timeout=7200
            ;;
        --short) selection=(--tests-regex '^tst_.*\.c$' --exclude-regex '^tst_Consumer') ;;
        release | debug | asan | tsan) preset=$argument ;;
        *)
            sed -n '3,6s/^# //p' "$0" >&2
            exit 2
            ;;
    esac
done

# shellcheck disable=SC2086
zax_install $zax_packages $zax_test_packages
# shellcheck disable=SC2086
[ "$preset" != asan ] || zax_install $zax_asan_packages
zax_need_locale
zax_build "$preset"
# One more than there are cores: some wait for others.
ctest --preset "$preset" --parallel "$(($(nproc) + 1))" --timeout "$timeout" "${selection[@]}"
