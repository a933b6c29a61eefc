#!/usr/bin/env bash
# The Wine prefix in which the tests of one build folder run.
#   test-prefix.sh begin FOLDER                      a fresh one, and its server
#   test-prefix.sh run FOLDER SECONDS PROGRAM ...    a program in it, ended after that many seconds
#   test-prefix.sh own FOLDER SECONDS PROGRAM ...    the same in a fresh copy of it, which is removed again
#   test-prefix.sh end FOLDER                        ends everything in it
set -euo pipefail
. "$(dirname "$0")/usage.sh"
. "$(dirname "$0")/wine.sh"

help_wanted "$@"
[ $# -ge 2 ] || wrong_usage "no action, or no folder"
action=$1 folder=$(realpath -m -- "$2") # Wine takes full paths alone
shift 2
case $action in
begin)
    wine_prefix_end "$folder"
    for made in "$folder" "$folder.pristine"; do # before there was a mark: known by the pristine one
        if [ -d "$folder.pristine" ] && [ -d "$made" ]; then wine_prefix_mark "$made"; fi
    done
    [ -d "$folder.pristine" ] || { wine_prefix_make "$folder.new" && mv "$folder.new" "$folder.pristine"; }
    wine_prefix_copy "$folder.pristine" "$folder"
    wine_prefix_start "$folder"
    ;;
run)
    wine_run "$folder" "$@"
    ;;
own)
    own=$(mktemp -d "$folder.own.XXXXXX")
    trap 'wine_prefix_end "$own"; rm -rf "$own"' EXIT
    wine_prefix_copy "$folder.pristine" "$own"
    wine_prefix_start "$own"
    wine_run "$own" "$@"
    ;;
end)
    wine_prefix_end "$folder"
    ;;
*)
    wrong_usage "no such action: $action"
    ;;
esac
