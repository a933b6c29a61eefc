#!/usr/bin/env bash
# Measures the cost of the library and of Windows itself: builds, runs, and prints one table. The rows remain in
# build/bench as CSV.
#   --rounds N      at least N rounds of each row (15); quick rows make more
#   --rows REGEX    only the rows whose "name size" matches, such as 'walk 1000$' or '^dispatch'
#   --resume        skips rows that were already measured from the same sources
#   --record        also writes the table into docs/speed.md and draws docs/speed.svg; installs python3-matplotlib for
#                   that
#   --report        measures nothing: prints the table of the rows that were measured from the same sources
# Exits with 1 if a row fails or misses its goal.
set -euo pipefail
. "$(dirname "$0")/usage.sh"

rounds=15 wanted=. resume= record= report=
while [ $# -gt 0 ]; do
    case $1 in
    -h | --help) usage && exit 0 ;;
    --rounds | --rows)
        [ $# -ge 2 ] || wrong_usage "$1 of what?"
        [ "$1" = --rounds ] && rounds=$2 || wanted=$2
        shift
        ;;
    --resume) resume=1 ;;
    --record) record=--record ;;
    --report) report=1 ;;
    *) wrong_usage "no such option: $1" ;;
    esac
    shift
done
cd "$(dirname "$0")/.."
. scripts/wine.sh

# name, size, program, card
rows='own-walk 1000 bench_rooms
own-load 64 bench_rooms
own-poll 20 bench_rooms
walk 1000 bench_rooms walk
walk 10000 bench_rooms walk
walk 100000 bench_rooms walk
quiet-walk 1000 bench_rooms walk
quiet-walk 10000 bench_rooms walk
quiet-walk 100000 bench_rooms walk
search 10000 bench_rooms search
load-information 1+0 bench_rooms
load-information 10+0 bench_rooms
load-information 100+0 bench_rooms
load-information 1000+0 bench_rooms
load-information 1+10000 bench_rooms
load-information 10+10000 bench_rooms
load-information 100+10000 bench_rooms
load-information 1000+10000 bench_rooms
launch 1 bench_rooms
dispatch 1 bench_rooms
dispatch 8 bench_rooms
poll 1 bench_rooms search
poll 20 bench_rooms search
load needs bench_load
load alone bench_load
road 1 bench_rooms search
road-without-start 1 bench_rooms search
allocations 1 bench_rooms search
memory 0 bench_memory
memory 10 bench_memory'

out=build/bench
prefix=$PWD/$out/wine
bin=build/release/bin
mkdir -p $out/rows $out/cards

measure() {
    scripts/setup.sh
    echo "== Build"
    cmake --preset release >/dev/null
    cmake --build --preset release --target bench >$out/build.log 2>&1 || { cat $out/build.log && exit 1; }

    local chosen count=0 name size program card file arguments sources status=0
    sources=sources,$(bench/report.py --sources)
    chosen=$(awk -v wanted="$wanted" '($1 " " $2) ~ wanted' <<<"$rows")
    [ -n "$chosen" ] || { echo "no row matches $wanted" >&2 && exit 2; }
    # On one processor, together with Wine's server: between two, most of a call's time is the wake-up, which varies.
    taskset -cp 0 $$ >/dev/null
    scripts/test-prefix.sh begin "$prefix"
    trap 'scripts/test-prefix.sh end "$prefix"' EXIT
    while read -r name size program card; do
        count=$((count + 1))
        file=$out/rows/$name-$size.csv
        printf '== %d of %d: %s %s ' "$count" "$(wc -l <<<"$chosen")" "$name" "$size"
        if [ -n "$resume" ] && [ -s "$file" ] && [ "$(head -n 1 "$file")" = "$sources" ]; then
            echo "(measured before)"
            continue
        fi
        arguments=()
        if [ -n "$card" ]; then
            local files=$size
            [ "$card" = search ] && files=10000
            bench/cards.py "$out/cards/$card-$files" "$card" "$files"
            arguments=("$PWD/$out/cards/$card-$files")
        fi
        [ "$name" != dispatch ] || taskset -cp "0-$(($(nproc --all) - 1))" $$ >/dev/null # threads run in parallel
        local start=$SECONDS
        echo "$sources" >"$file.new"
        if wine_run "$prefix" 300 $bin/"$program".exe "$name" "$size" "$rounds" "${arguments[@]}" >>"$file.new"; then
            mv "$file.new" "$file"
            echo "($((SECONDS - start)) s)"
        else
            echo "FAILED" && cat "$file.new" && status=1
        fi
        taskset -cp 0 $$ >/dev/null
    done <<<"$chosen"
    return $status
}

[ -z "$record" ] || scripts/setup.sh curves
[ -n "$report" ] || measure
/usr/bin/python3 bench/report.py $record $out # Debian's own, because that package is for it
