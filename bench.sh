#!/usr/bin/env bash
# Measures what the library and the tool cost against floors, into build/bench: summary.md, and a plot of cost against size.
# usage: ./bench.sh [--smoke] [NAME...]
#   NAME     only these, such as OpenCatalogue (benchmarks/OpenCatalogue.cpp); default: all, in less than ten minutes
#   --smoke  with tiny sizes, only to see that they run
# exit code: 0 within all limits, 1 above one
set -euo pipefail
cd "$(dirname "$0")"
. cmake/setup.sh

smoke=()
names=()
for argument in "$@"; do
    case $argument in
        --smoke) smoke=(--smoke) ;;
        -*)
            sed -n '3,6s/^# //p' "$0" >&2
            exit 2
            ;;
        *) names+=("$argument") ;;
    esac
done
all=(RecordValues GetMaterial FindMaterials OpenCatalogue CatalogueMemory CommitCatalogue SetProperty FindInRoot
    DocumentFile Tool Growth)
[ "${#names[@]}" -gt 0 ] || names=("${all[@]}")
for name in "${names[@]}"; do
    zax_require_known "$name" "${all[@]}"
done

# shellcheck disable=SC2086
zax_install $zax_packages $zax_benchmark_packages
zax_build bench "${names[@]/#/bench_}"

out=build/bench
mkdir -p "$out"
figures=$out/figures.tsv
: >"$figures"
code=0
printf '%-52s %9s %-6s %9s %7s %5s\n' name value unit floor ratio limit
for name in "${names[@]}"; do
    build/bench/bin/"bench_$name" "${smoke[@]}" --output "$figures" || code=1
done

{
    echo "| what | cost | floor | unit | ratio | limit | |"
    echo "|---|--:|--:|---|--:|--:|---|"
    awk -F '\t' '$1 == "figure" {
        print "| " $2 " | " $3 " | " $5 " | " $4 " | " $6 " | " $7 " | " $8 " |"
    }' "$figures"
} >"$out/summary.md"

if grep -q '^point' "$figures"; then
    for curve in open commit find save load; do
        awk -F '\t' -v curve="$curve" '$1 == "point" && $2 == curve { print $3, $4 }' "$figures" >"$out/$curve.dat"
    done
    gnuplot <<PLOT
set terminal svg size 800,560 dynamic background rgb "white"
set output "$out/growth.svg"
set logscale xy
set xlabel "materials, with three stock forms each"
set ylabel "seconds of processor time"
set key left top
set grid
plot for [curve in "open commit find save load"] "$out/".curve.".dat" with linespoints linewidth 2 title curve, \
     x * 1e-5 with lines dashtype 2 linecolor "gray" title "ten times the size, ten times the cost"
PLOT
fi
echo "Summary: $out/summary.md"
exit "$code"
