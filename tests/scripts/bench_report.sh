#!/usr/bin/env bash
# The exit code of the benchmarks' report, and the measurements that it shows.
set -euo pipefail
report=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/rows"
sources=$("$report" --sources)

# rows SOURCES SECOND: one row of two rounds, whose ratios are 1.00 and SECOND.
rows() {
    printf '%s\n' "sources,$1" launch,1,library,0,0,100 launch,1,floor,1.15,0,100 \
        launch,1,library,0,1,"$2"00 launch,1,floor,1.15,1,100 >"$folder/rows/launch-1.csv"
}

# expect STATUS TEXT COMMAND ...: the exit code, and a part of the output.
expect() {
    local status=0 wanted=$1 text=$2
    shift 2
    "$@" >"$folder/said" 2>&1 || status=$?
    if [ "$status" != "$wanted" ] || ! grep -qF "$text" "$folder/said"; then
        echo "$*: status $status instead of $wanted, or no \"$text\" in:" && cat "$folder/said"
        exit 1
    fi
}

rows "$sources" 1
expect 0 '| yes |' "$report" "$folder"
rows "$sources" 3
expect 1 'a row misses its goal' "$report" "$folder"
rows another 1
expect 1 'nothing was measured yet' "$report" "$folder"
expect 1 'from other sources: launch-1' "$report" "$folder"

# A time of the library's own, and a number of allocations.
printf '%s\n' "sources,$sources" own-walk,1000,library,50,0,49 >"$folder/rows/own-walk-1000.csv"
rm "$folder/rows/launch-1.csv"
expect 0 '| 50 ns | yes |' "$report" "$folder"
printf '%s\n' "sources,$sources" own-walk,1000,library,50,0,51 >"$folder/rows/own-walk-1000.csv"
expect 1 '| 50 ns | **no** |' "$report" "$folder"
rm "$folder/rows/own-walk-1000.csv"
printf '%s\n' "sources,$sources" 'allocations,"a launch",1,0' >"$folder/rows/allocations-1.csv"
expect 1 '| a launch | 1 | 0 | **no** |' "$report" "$folder"
echo "the report is as expected"
