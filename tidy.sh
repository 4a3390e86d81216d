#!/usr/bin/env bash
# Checks the layout (.clang-format) and the code (.clang-tidy) of the sources that differ from a commit.
# usage: ./tidy.sh [COMMIT|FILE...]
#   COMMIT  such as origin/main; default: HEAD, so that what is not committed yet is checked
#   FILE    these sources instead, whether they changed or not
# exit code: 1 when there is something to mend
set -euo pipefail
cd "$(dirname "$0")"
. cmake/setup.sh

commit=HEAD
files=()
for argument in "$@"; do
    case $argument in
        -*)
            sed -n '3,6s/^# //p' "$0" >&2
            exit 2
            ;;
        *.cpp | *.h) files+=("$argument") ;;
        *) commit=$argument ;;
    esac
done
if [ "${#files[@]}" -eq 0 ]; then
    mapfile -t files < <({
        git diff --name-only --diff-filter=d "$commit" -- '*.cpp' '*.h'
        git ls-files --others --exclude-standard -- '*.cpp' '*.h'
    } | sort -u)
fi
[ "${#files[@]}" -gt 0 ] || exit 0

# shellcheck disable=SC2086
zax_install $zax_packages $zax_tidy_packages

code=0
clang-format-14 --dry-run -Werror "${files[@]}" || code=1

# It does not know all flags of g++, so it is given those of a build by clang, of which nothing needs to be built. The code
# of tests is left to the tests.
sources=()
for file in "${files[@]}"; do
    case $file in
        material/*.cpp | host/*.cpp | tools/*.cpp) sources+=("$file") ;;
        # Headers are checked with their source.
        material/*.h | host/*.h | tools/*.h) [ -f "${file%.h}.cpp" ] && sources+=("${file%.h}.cpp") ;;
    esac
done
if [ "${#sources[@]}" -gt 0 ]; then
    [ -f build/tidy/build.ninja ] || cmake --preset tidy >&2
    mapfile -t sources < <(printf '%s\n' "${sources[@]}" | sort -u)
    printf '%s\0' "${sources[@]}" |
        xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 -p build/tidy --quiet --warnings-as-errors='*' 2>/dev/null || code=1
fi
exit "$code"
