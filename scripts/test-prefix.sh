#!/usr/bin/env bash
# Manages the Wine prefix in which the tests of one build folder run.
#   test-prefix.sh begin FOLDER                      makes a fresh prefix, and starts its server
#   test-prefix.sh run FOLDER SECONDS PROGRAM ...    runs a program in it, and terminates it after that many seconds
#   test-prefix.sh own FOLDER SECONDS PROGRAM ...    the same in a fresh copy of the prefix, which it then removes
#   test-prefix.sh end FOLDER                        terminates every process in it
set -euo pipefail
. "$(dirname "$0")/usage.sh"
. "$(dirname "$0")/wine.sh"

help_wanted "$@"
[ $# -ge 2 ] || wrong_usage "no action, or no folder"
action=$1 folder=$(realpath -m -- "$2") # Wine accepts only full paths
shift 2
case $action in
begin)
    wine_prefix_end "$folder"
    for made in "$folder" "$folder.pristine"; do # prefixes from before the mark existed: the pristine copy identifies them
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
