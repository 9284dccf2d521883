#!/usr/bin/env bash
# Runs every fuzz target for a while, as many at once as there are processors, and prints what each tried, how much of the
# code it reached and what it found: run.sh BUILD_FOLDER SECONDS [TARGET...]. What a target found new goes into the build
# folder, and a case that fails into fuzz/corpus, where every test run replays it. Ends with 1 after a failure.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "$1")
seconds=$2
shift 2
[ $# != 0 ] || set -- fuzz/corpus/*/
export build seconds

run() {
    local name corpus log failures
    name=$(basename "$1")
    corpus=fuzz/corpus/$name
    log=$build/fuzz-$name.log
    mkdir -p "$build/reached/$name"
    "$build/fuzz/fuzz_$name" -max_total_time="$seconds" -print_final_stats=1 -artifact_prefix="$corpus/found-" \
        "$build/reached/$name" "$corpus" >"$log" 2>&1 || true
    failures=$(grep -c '^Test unit written' "$log" || true)
    printf '%-14s %12s executions, %6s edges, %s failures\n' "$name" \
        "$(awk '/^stat::number_of_executed_units/ { print $2 }' "$log")" \
        "$(grep -o ' cov: [0-9]*' "$log" | tail -n 1 | tr -dc 0-9)" "$failures"
    [ "$failures" = 0 ]
}
export -f run

printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} bash -c 'run {}'
