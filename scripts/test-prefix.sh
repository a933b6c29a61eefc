#!/usr/bin/env bash
# The Wine prefix in which the tests of one build folder run.
#   test-prefix.sh begin FOLDER                      a fresh one, and its server
#   test-prefix.sh run FOLDER SECONDS PROGRAM ...    a program in it, ended after that many seconds
#   test-prefix.sh own FOLDER SECONDS PROGRAM ...    the same in a fresh copy of it, which is removed again
#   test-prefix.sh end FOLDER                        ends everything in it
set -euo pipefail
. "$(dirname "$0")/wine.sh"

# run_test FOLDER SECONDS PROGRAM ...: a test executable. Seen of Wine 8: a program that starts while the services of
# its prefix come up is now and then lost, hanging or ended, before its first instruction. GoogleTest prints its first
# line at once, so a run that prints nothing never was one: it is started again, and three such runs are a failure.
run_test() {
    local folder=$1 seconds=$2 attempt log pid waited status
    shift 2
    log=$(mktemp)
    for attempt in 1 2 3; do
        WINEPREFIX=$folder timeout --kill-after=10 "$seconds" wine "$@" >"$log" 2>&1 </dev/null &
        pid=$!
        for ((waited = 0; waited < 200; waited++)); do
            if [ -s "$log" ] || ! kill -0 $pid 2>/dev/null; then break; fi
            sleep 0.1
        done
        [ -s "$log" ] || kill $pid 2>/dev/null || true
        status=0
        wait $pid || status=$?
        [ -s "$log" ] && break
        status=1
        echo "attempt $attempt: the program did not start"
    done
    cat "$log"
    rm -f "$log"
    return $status
}

action=$1 folder=$2
shift 2
case $action in
begin)
    wine_prefix_end "$folder"
    [ -d "$folder.pristine" ] || { wine_prefix_make "$folder.new" && mv "$folder.new" "$folder.pristine"; }
    wine_prefix_copy "$folder.pristine" "$folder"
    wine_prefix_start "$folder"
    ;;
run)
    run_test "$folder" "$@"
    ;;
own)
    own=$(mktemp -d "$folder.own.XXXXXX")
    trap 'wine_prefix_end "$own"; rm -rf "$own"' EXIT
    wine_prefix_copy "$folder.pristine" "$own"
    wine_prefix_start "$own"
    run_test "$own" "$@"
    ;;
end)
    wine_prefix_end "$folder"
    ;;
*)
    echo "test-prefix.sh: no such action: $action" >&2
    exit 2
    ;;
esac
