#!/bin/sh
# exported_symbols.sh NM LIBRARY LIST DRIVER_LIST: the library exports the listed symbols, letter by letter, and no
# other: those of zerklsc.h without a symbol version, those of zerklsc_driver.h with theirs.
set -eu
export LC_ALL=C
names() { "$1" -D --defined-only "$2" | awk '$2 != "A" { print $3 }' | sort; }
names "$1" "$2" | grep -v @ | diff - "$3"
names "$1" "$2" | grep @ | diff - /dev/fd/3 3<<END
$(sed 's/$/@@ZERKLSC_DRIVER_1.0/' "$4")
END
