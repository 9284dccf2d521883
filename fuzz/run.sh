#!/usr/bin/env bash
# Runs every fuzz target for a while, as many at once as there are processors, and prints what each tried, how much of the
# code it reached, what it found, and the time of a processor that it had: run.sh ENGINE BUILD_FOLDER SECONDS [TARGET...].
# ENGINE is libfuzzer or afl, for which the folder was built. What a target found new goes into the build folder, and a
# case that fails into fuzz/corpus, where every test run replays it. Ends with 1 after a failure.
set -euo pipefail
cd "$(dirname "$0")/.."
engine=$1
build=$(realpath "$2")
seconds=$3
shift 3
[ $# != 0 ] || set -- fuzz/corpus/*/
export engine build seconds

# Each engine sets executions, edges and failures. No limit of time is so short that a busy machine exceeds it.
run_libfuzzer() {
    local found=$build/reached/$name
    mkdir -p "$found"
    "$build/fuzz/fuzz_$name" -max_total_time="$seconds" -close_fd_mask=1 -print_final_stats=1 -report_slow_units=100 \
        -artifact_prefix="$corpus/found-" "$found" "$corpus" >"$log" 2>&1 || true
    failures=$(grep -c 'Test unit written to ' "$log" || true)
    executions=$(awk '/^stat::number_of_executed_units/ { print $2 }' "$log")
    edges=$(grep -o ' cov: [0-9]*' "$log" | tail -n 1 | tr -dc 0-9)
}

# A process ends after a thousand cases: what the last one had is not counted, because it is killed.
run_afl() {
    local found=$build/reached/$name
    rm -rf "$found"
    mkdir -p "$found"
    AFL_SKIP_CPUFREQ=1 AFL_NO_AFFINITY=1 AFL_NO_UI=1 AFL_I_DONT_CARE_ABOUT_MISSING_CRASHES=1 \
        afl-fuzz -i "$corpus" -o "$found" -V "$seconds" -t 20000 -m none \
        -- "$build/fuzz/fuzz_$name" -1000 >"$log" 2>&1 || true
    for case in "$found"/default/{crashes,hangs}/id*; do
        [ ! -e "$case" ] || cp "$case" "$corpus/found-$(sha1sum <"$case" | cut -c 1-40)"
    done
    statistic() { awk -v name="$1" '$1 == name { print $3 }' "$found/default/fuzzer_stats"; }
    failures=$(($(statistic saved_crashes) + $(statistic saved_hangs)))
    executions=$(statistic execs_done)
    edges=$(statistic edges_found)
}

run() {
    local name corpus log executions edges failures cost TIMEFORMAT='%U %S'
    name=$(basename "$1")
    corpus=fuzz/corpus/$name
    log=$build/fuzz-$name.log
    { time "run_$engine" 2>&3; } 3>&2 2>"$log.time"
    cost=$(awk '{ printf "%.0f", $1 + $2 }' "$log.time")
    printf '%-16s %12s executions, %6s edges, %s failures, %s s\n' "$name" "$executions" "$edges" "$failures" "$cost"
    [ "$failures" = 0 ] && [ "${executions:-0}" != 0 ]
}
export -f run run_libfuzzer run_afl

printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} bash -c 'run {}'
