#!/usr/bin/env bash
# Builds everything and runs all tests, each under the C locale and under one with a decimal comma.
# usage: ./test.sh [--full] [PRESET]
#   PRESET  release, debug, asan or tsan; default: release
#   --full  runs the exhaustive and random tests in their full size, which takes an hour rather than minutes
set -euo pipefail
cd "$(dirname "$0")"
. cmake/setup.sh

preset=release
timeout=600
for argument in "$@"; do
    case $argument in
        --full)
            export ZAX_FULL_TESTS=1
            timeout=7200
            ;;
        release | debug | asan | tsan) preset=$argument ;;
        *)
            sed -n '3,5s/^# //p' "$0" >&2
            exit 2
            ;;
    esac
done

# shellcheck disable=SC2086
zax_install $zax_packages $zax_test_packages
zax_need_locale
zax_build "$preset"
ctest --preset "$preset" --parallel "$(nproc)" --timeout "$timeout"
