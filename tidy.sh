#!/usr/bin/env bash
# Checks the layout (.clang-format) and the code (.clang-tidy) of the sources that differ from a commit.
# usage: ./tidy.sh [--change|COMMIT|FILE...]
#   COMMIT    such as origin/main; default: HEAD, so that what is not committed yet is checked
#   --change  what differs from where origin/main was left, or on that branch from the commit before, as far as the history
#             is there; and the layout of all sources
#   FILE      these sources instead, whether they changed or not
# exit code: 1 when there is something to mend
set -euo pipefail
cd "$(dirname "$0")"
. cmake/setup.sh

# change_base: the commit that the change at hand set out from; HEAD where the history does not reach that far.
change_base() {
    local base
    base=$(git merge-base origin/main HEAD 2>/dev/null) || base=
    if [ -z "$base" ] || [ "$base" = "$(git rev-parse HEAD)" ]; then
        base=$(git rev-parse --verify --quiet HEAD~1) || base=HEAD
    fi
    git rev-parse --short "$base"
}

commit=HEAD
files=()
laid_out=()
for argument in "$@"; do
    case $argument in
        --change)
            commit=$(change_base)
            mapfile -t laid_out < <(git ls-files -- '*.cpp' '*.h')
            ;;
        -*)
            sed -n '3,8s/^# //p' "$0" >&2
            exit 2
            ;;
        *.cpp | *.h) files+=("$argument") ;;
        *) commit=$argument ;;
    esac
done
if [ "${#files[@]}" -eq 0 ]; then
    command -v git >/dev/null || { echo "git is missing. As root: apt-get install git" >&2 && exit 2; }
    if ! git rev-parse --verify --quiet "$commit^{commit}" >/dev/null; then
        echo "There is no commit $commit here. Name another one, or the files: ./tidy.sh FILE..." >&2
        exit 2
    fi
    mapfile -t files < <({
        git diff --name-only --diff-filter=d "$commit" -- '*.cpp' '*.h'
        git ls-files --others --exclude-standard -- '*.cpp' '*.h'
    } | sort -u)
fi
laid_out+=("${files[@]}")
[ "${#laid_out[@]}" -gt 0 ] || exit 0

# shellcheck disable=SC2086
zax_install $zax_packages $zax_tidy_packages

code=0
clang-format-14 --dry-run -Werror "${laid_out[@]}" || code=1

# It does not know all flags of g++, so it is given those of a build by clang, of which nothing needs to be built. The code
# of tests is left to the tests.
sources=()
for file in "${files[@]}"; do
    case $file in
        material/*.cpp | host/*.cpp | tools/*.cpp) sources+=("$file") ;;
        # Headers are checked with their source.
        material/*.h | host/*.h | tools/*.h) [ -f "${file%.h}.cpp" ] && sources+=("${file%.h}.cpp") ;;
        # Those of the host's interface have none, but these include most of them.
        hostapi/*.h) sources+=(host/feature/ZAXFeatObject.cpp material/ZAXMatMaterial.cpp material/ZAXMatPackaging.cpp) ;;
    esac
done
if [ "${#sources[@]}" -gt 0 ]; then
    zax_configure tidy
    mapfile -t sources < <(printf '%s\n' "${sources[@]}" | sort -u)
    printf '%s\0' "${sources[@]}" |
        xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 -p build/tidy --quiet --warnings-as-errors='*' 2>/dev/null || code=1
fi
echo "Checked: the layout of ${#laid_out[@]} files, the code of ${#sources[@]}" >&2
exit "$code"
