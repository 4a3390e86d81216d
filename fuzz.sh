#!/usr/bin/env bash
# Feeds the readers of everything that comes from outside with ever new input, two targets at a time.
# usage: ./fuzz.sh [--smoke] [SECONDS] [TARGET...]
#   SECONDS  for each target; default: 30
#   TARGET   only these, such as CatalogueFile (fuzz/CatalogueFile.cpp); default: all
#   --smoke  with the same inputs every time, so that a change is judged by itself: the corpora of the repository, and what
#            a fixed seed makes of them within the seconds, at most a fixed number
# exit code: 1 when there is a finding. Findings are left in build/fuzz/findings, new inputs in build/fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")"
. cmake/setup.sh

seconds=30
is_smoke=
targets=()
for argument in "$@"; do
    case $argument in
        --smoke) is_smoke=1 ;;
        -*)
            sed -n '3,8s/^# //p' "$0" >&2
            exit 2
            ;;
        *[!0-9]*) targets+=("$argument") ;;
        *) seconds=$argument ;;
    esac
done
all=(RecordJson CatalogueFile CatalogueOperations DocumentFile RepairedDocumentFile ClassStream ValueText CsvImport)
[ "${#targets[@]}" -gt 0 ] || targets=("${all[@]}")
for target in "${targets[@]}"; do
    zax_require_known "$target" "${all[@]}"
done

# shellcheck disable=SC2086
zax_install $zax_packages $zax_asan_packages
zax_build asan "${targets[@]/#/fuzz_}"

out=build/fuzz
mkdir -p "$out/findings" "$out/log"
export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:allocator_may_return_null=1:quarantine_size_mb=64
export UBSAN_OPTIONS=print_stacktrace=1

# How many inputs each target gets with --smoke: what a machine of two cores manages in half a minute.
declare -A inputs=([RecordJson]=60000 [CatalogueFile]=40000 [CatalogueOperations]=1500 [DocumentFile]=5000
    [RepairedDocumentFile]=10000 [ClassStream]=20000 [ValueText]=12000 [CsvImport]=20000)

# fuzz TARGET: becomes one target that starts from its corpora.
fuzz() {
    local name=$1
    local dictionary=fuzz/dictionaries/$name.dict
    local options=("-max_total_time=$seconds" -timeout=20 -rss_limit_mb=2048 -malloc_limit_mb=512 -print_final_stats=1)
    [ -f "$dictionary" ] && options+=("-dict=$dictionary")
    # Long sequences from the start.
    [ "$name" = CatalogueOperations ] && options+=(-len_control=0 -max_len=1000)
    local corpus=$out/corpus/$name
    if [ -n "$is_smoke" ]; then
        corpus=$out/smoke/$name
        rm -rf "$corpus"
        options+=(-seed=1 "-runs=${inputs[$name]}")
    fi
    mkdir -p "$corpus"
    exec build/asan/bin/"fuzz_$name" "${options[@]}" "-artifact_prefix=$out/findings/$name-" \
        "$corpus" "fuzz/corpus/$name" >"$out/log/$name.txt" 2>&1
}

# report TARGET CODE: what came of it, in a line; of a finding, what the target said.
report() {
    local log=$out/log/$1.txt
    if [ "$2" -eq 0 ]; then
        printf '%-22s %9s inputs, %6s a second\n' "$1" \
            "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" \
            "$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")"
        return
    fi
    printf '%-22s FINDING, code %s; in full: %s\n' "$1" "$2" "$log"
    grep -E -m 16 'Does not hold|ERROR|runtime error|^ +#[0-9]|Test unit written|^Base64:' "$log" || tail -n 30 "$log"
}

code=0
jobs=()
# Whoever ends the script ends the targets.
trap '[ "${#jobs[@]}" -eq 0 ] || kill "${jobs[@]}" 2>/dev/null || true' EXIT
while [ "${#targets[@]}" -gt 0 ]; do
    pair=("${targets[@]:0:2}")
    targets=("${targets[@]:2}")
    for name in "${pair[@]}"; do
        fuzz "$name" &
        jobs+=($!)
    done
    for i in "${!pair[@]}"; do
        result=0
        wait "${jobs[$i]}" || result=$?
        report "${pair[$i]}" "$result"
        [ "$result" -eq 0 ] || code=1
    done
    jobs=()
done
exit "$code"
