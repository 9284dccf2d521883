#!/usr/bin/env bash
# Which share of the branches the tests of the preset `coverage` took, and where they took fewest; ends with 1 where that
# is less than it must be: coverage.sh BUILD_FOLDER. Edges that an exception takes are left out, and kernels for
# instruction sets that this processor lacks.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
missing=()
grep -q avx2 /proc/cpuinfo || missing+=(--exclude-directories '.*_avx2\.dir')
grep -q avx512f /proc/cpuinfo || missing+=(--exclude-directories '.*_avx512\.dir')

# share FOLDER LEAST
share() {
    local report=$build/coverage-$1.txt
    gcovr --root . --object-directory "$build" --exclude-throw-branches --exclude-unreachable-branches "${missing[@]}" \
        --filter "$1/" --branches --sort-uncovered --output "$report" --fail-under-branch "$2" -j "$(nproc)" 2>"$report.log" && return
    tail -n 3 "$report.log" >&2
    return 1
}

status=0
for goal in "src 98" "tool 88"; do
    read -r folder least <<<"$goal"
    share "$folder" "$least" || status=1
    printf '%s: %s of the branches, at least %s %% are needed; most are missing in\n' "$folder" \
        "$(awk '$1 == "TOTAL" { print $3 " of " $2 ", " $4 }' "$build/coverage-$folder.txt")" "$least"
    awk 'NF >= 4 && $1 ~ /\.(cpp|h)$/ && $4 != "100%" { print "    " $2 - $3 "  " $1 }' "$build/coverage-$folder.txt" | sort -rn | head -n 5
done
exit $status
