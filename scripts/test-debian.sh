#!/usr/bin/env bash
# Runs both commands of README as a newcomer does: in a bare Debian of that release, from a clone of the committed
# sources. Makes the system in build/debian-RELEASE and removes it at the end. Shows the failures; the outputs remain in
# build/debian-RELEASE.*. Takes half an hour and 7 GB; needs root, debootstrap and the network. scripts/test.sh does not
# run it.
#   test-debian.sh 12 | 13
set -euo pipefail
. "$(dirname "$0")/usage.sh"
help_wanted "$@"
case $# in 1) ;; *) wrong_usage "one release, please" ;; esac
case $1 in
12) name=bookworm ;;
13) name=trixie ;;
*) wrong_usage "no such release: $1" ;;
esac
cd "$(dirname "$0")/.."

out=$PWD/build/debian-$1
root=$out
[ "$(id -u)" = 0 ] || { echo "test-debian.sh: only root can install a system in a folder" >&2 && exit 1; }
command -v debootstrap >/dev/null || { echo "test-debian.sh: apt-get install debootstrap" >&2 && exit 1; }

# inside COMMAND: replaces this shell, so call it in a subshell. The command's processes and mounts belong to the new
# system and end with the command, however it ends. So nothing of this machine is mounted below the folder when it is
# removed.
inside() {
    # shellcheck disable=SC2016 # expanded there
    exec unshare --mount --propagation private --pid --fork --kill-child --mount-proc="$root/proc" bash -c '
        mount --rbind /dev "$1/dev" && mount --rbind /sys "$1/sys" || exit 1
        exec chroot "$1" env -i HOME=/root TERM=dumb LANG=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin \
            bash -c "cd /root && $2"' inside "$root" "$1" </dev/null
}

remove() {
    if grep -qF " $root/" /proc/mounts; then
        echo "test-debian.sh: something is mounted below $root, so the folder is not removed" >&2
        return 1
    fi
    rm -rf --one-file-system "$root"
}

running=
# shellcheck disable=SC2317 # called by the trap
finish() {
    [ -z "$running" ] || { kill -KILL "$running" && wait "$running"; } 2>/dev/null || true
    remove
}
trap finish EXIT
trap 'exit 1' INT TERM

size() { du --summarize --one-file-system --block-size=1M "$root" | cut -f1; }
failed=0 summary=()

# try SCRIPT: runs it in the clone, shows and saves its output, and collects the failures.
try() {
    local log=$out.$1.log start=$SECONDS before status=0 verdict=passed
    before=$(size)
    printf '\n== %s on a bare Debian %s\n' "$1" "$release"
    : >"$log"
    inside "cd kestraboot && scripts/$1" >"$log" 2>&1 &
    running=$!
    tail -n +1 -f --pid=$running "$log" &
    shown=$!
    wait $running || status=$? # a signal interrupts this wait alone
    running=
    wait $shown
    [ $status = 0 ] || { verdict="FAILED with $status" && failed=1; }
    summary+=("scripts/$1: $verdict, $((SECONDS - start)) s, $(($(size) - before)) MB more")
    [ $status = 0 ] || summary+=("$(grep -E 'DIFFERS|not seen within|\*\*\*|\(Failed\)|\(Timeout\)|[Ee]rror:|\[  FAILED' "$log" |
        tail -n 60 | sed 's/^/    /')")
}

release=$1
echo "== A bare Debian $release"
remove
mkdir -p build
unshare --mount --propagation private \
    debootstrap --variant=minbase "$name" "$root" http://deb.debian.org/debian >"$out.debootstrap.log" 2>&1 ||
    { cat "$out.debootstrap.log" && exit 1; }
git clone --quiet --no-hardlinks . "$root/root/kestraboot"
summary+=("Debian $(cat "$root/etc/debian_version"), $(size) MB; sources: $(git rev-parse --short HEAD), $(date +%F)")

try demo.sh
try test.sh

printf '\n== In short\n'
printf '%s\n' "${summary[@]}"
(inside 'for each in x86_64-w64-mingw32-g++-posix clang cmake wine; do echo $each: $($each --version 2>/dev/null | head -1); done')
exit $failed
