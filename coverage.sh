#!/usr/bin/env bash
# Counts which lines and branches of the library, and of what reads and writes document files, the tests run.
# usage: ./coverage.sh
# exit code: 1 when either is below 95 % of its lines or 85 % of its branches. The report, source by source, is left in
# build/coverage/report; what is not covered is listed at the end of its text form, summary.txt.
set -euo pipefail
cd "$(dirname "$0")"
. cmake/setup.sh

if [ $# -gt 0 ]; then
    sed -n '3,5s/^# //p' "$0" >&2
    exit 2
fi

# shellcheck disable=SC2086
zax_install $zax_packages $zax_test_packages $zax_coverage_packages
zax_need_locale
zax_build coverage
find build/coverage -name '*.gcda' -delete
# The tests of the installed packages run other builds.
ctest --preset coverage --parallel "$(nproc)" --tests-regex '^tst_' --exclude-regex '^tst_Consumer' --quiet ||
    echo "Some tests failed, which the tests themselves are to tell about: ./test.sh debug" >&2

report=build/coverage/report
mkdir -p "$report"
# Exceptions that pass through make a branch of nearly every call; nobody could take them all.
gcovr --root . --object-directory build/coverage --filter material/ --filter host/document/ \
    --exclude-directories '.*/CMakeFiles/[0-9.]+/' --exclude-throw-branches --exclude-unreachable-branches --json "$report/all.json" -j "$(nproc)" build/coverage

# measure TITLE FILTER...: the figures of the sources; fails below the limits.
measure() {
    local title=$1
    local filters=()
    shift
    local filter
    for filter in "$@"; do filters+=(--filter "$filter"); done
    echo "== $title"
    gcovr --root . --add-tracefile "$report/all.json" "${filters[@]}" --txt --print-summary --sort-percentage \
        --fail-under-line 95 --fail-under-branch 85
}

code=0
{
    measure "material" material/ || code=1
    measure "document files" host/document/ZAXHostDocumentCodec host/document/ZAXHostDocumentImager || code=1
    gcovr --root . --add-tracefile "$report/all.json" --txt --branches --sort-percentage || code=1
} >"$report/summary.txt" 2>&1
gcovr --root . --add-tracefile "$report/all.json" --html-details "$report/index.html"
grep -E '^(==|lines|branches|functions|failed)' "$report/summary.txt"
echo "Report: $report/index.html, $report/summary.txt"
exit "$code"
