#!/bin/sh
# all_listed.sh BENCH SYMBOLS...: the benchmark times each function of these lists of symbols once, and no other.
set -eu
bench=$1
shift
listed=$(mktemp)
trap 'rm -f "$listed"' EXIT
cat "$@" | c++filt | sort >"$listed"
# shellcheck disable=SC2016  # a pattern
"$bench" --rounds 0 --functions --brief | sed -n 's/^| `\(.*\)` | .*/\1/p' | sort | diff "$listed" -
