#!/usr/bin/env bash
# The main job: takes materials of the example catalogue into a document, saves it, and compares what was saved.
# usage: ./run.sh [DOCUMENT]    (default: build/release/example.zaxdoc, made anew)
set -euo pipefail
cd "$(dirname "$0")"
. cmake/setup.sh

case ${1-} in
    -*)
        sed -n '3s/^# //p' "$0" >&2
        exit 2
        ;;
esac

# shellcheck disable=SC2086
zax_install $zax_packages
zax_build release zaxmat

document=${1:-build/release/example.zaxdoc}
[ $# -gt 0 ] || rm -f "$document"
export ZAXMAT_CATALOGUE=$PWD/examples/catalogue
zaxmat=build/release/bin/zaxmat

"$zaxmat" list | tail -n 1
echo
"$zaxmat" use --document "$document" S235JR --thickness "2 mm"
echo
"$zaxmat" use --document "$document" "EN AW-5754 H22" --thickness "3 mm"
echo
"$zaxmat" use --document "$document" 1.4301 --thickness "1.5 mm"
