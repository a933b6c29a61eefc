#!/usr/bin/env bash
# Builds the product a second time, from a copy of the sources in a folder with another name, as another user if this
# user may become one. Compares the archives of both builds byte by byte.
#   reproducible.sh BUILD-FOLDER SOURCE-FOLDER
set -euo pipefail
build=$1 source=$2
preset=$(basename "$build")
work=$(mktemp -d) # not below the sources, which the other user may be unable to enter
trap 'rm -rf "$work"' EXIT
copy=$work/elsewhere
quietly() { "$@" >"$work/log" 2>&1 </dev/null || { cat "$work/log"; echo "failed: $*"; exit 1; }; }

# The current sources, with the history from which the commit is read.
quietly git clone -q --no-hardlinks --no-checkout "$source" "$copy"
git -C "$copy" reset -q
(cd "$source" && git ls-files -z --cached --others --exclude-standard --deduplicate |
    xargs -0 -r sh -c 'for file; do [ ! -e "$file" ] || printf "%s\0" "$file"; done' sh |
    tar -c --null --files-from=-) | tar -x -C "$copy"

as_other=()
if [ "$(id -u)" = 0 ]; then # with another group and another umask too
    chmod 755 "$work"
    chown -R nobody:nogroup "$work"
    as_other=(setpriv --reuid=nobody --regid=nogroup --clear-groups env HOME="$work")
fi
again() { quietly "${as_other[@]}" env -u SOURCE_DATE_EPOCH GIT_CONFIG_COUNT=1 GIT_CONFIG_KEY_0=safe.directory \
    GIT_CONFIG_VALUE_0='*' "$@"; }
cd "$copy"
umask 027
again cmake --preset "$preset" -DKESTRABOOT_TESTS=OFF
again cmake --build "build/$preset" --target all
again cpack --config "build/$preset/CPackConfig.cmake" -B "$work/second"
quietly cpack --config "$build/CPackConfig.cmake" -B "$work/first"

differing=0 compared=0
for archive in "$work"/first/*.zip; do
    name=$(basename "$archive")
    sha256sum "$work/first/$name" "$work/second/$name" | sed "s|$work/||"
    compared=$((compared + 1))
    cmp -s "$archive" "$work/second/$name" && continue
    differing=$((differing + 1))
    for one in first second; do
        mkdir -p "$work/unpacked/$one"
        (cd "$work/unpacked/$one" && cmake -E tar xf "$work/$one/$name")
    done
    diff -rq "$work/unpacked/first" "$work/unpacked/second" | sed "s|$work/unpacked/||g" || true
done
echo "$compared archives, $differing differ"
[ $compared -gt 0 ] && [ $differing = 0 ]
