# Sourced by scripts that run programs under Wine: makes a prefix, starts its server, ends it. Only defines functions.
# Needs no display, and does not touch the user's own Wine prefix.

# wine_in FOLDER COMMAND ...: runs a command whose Wine programs use that prefix, without a display, add-ons, Wine's own
# messages, or a debugger on a crash. A twain_32.dll beside a program takes precedence over Wine's, as on Windows.
# Sets a locale if there is none, as on a bare system: Wine could not use file names beyond ASCII otherwise.
wine_in() {
    local folder=$1 locale=()
    shift
    [ "$(locale charmap 2>/dev/null)" = UTF-8 ] || locale=(LC_ALL=C.UTF-8)
    env -u DISPLAY -u WAYLAND_DISPLAY WINEPREFIX="$folder" WINEARCH=win64 WINEDEBUG="${WINEDEBUG:--all}" \
        WINEDLLOVERRIDES='winedbg.exe=d;mscoree=d;mshtml=d;twain_32=n,b' "${locale[@]}" "$@"
}

# wine_prefix_mark FOLDER: writes the file that marks a folder as one that may be removed.
wine_prefix_mark() { touch "$1/.kestraboot-prefix"; }

# wine_prefix_clear FOLDER: makes an empty folder with the mark. Refuses an existing folder without it.
wine_prefix_clear() {
    if [ -e "$1" ] && [ ! -e "$1/.kestraboot-prefix" ] && [ -n "$(ls -A "$1")" ]; then
        echo "wine: $1 was not made here, so it is left unchanged: choose another folder" >&2
        return 1
    fi
    mkdir -p "$1" && wine_prefix_mark "$1" || return 1
    # The mark stays throughout, so that the folder of an interrupted run can be cleared too.
    find "$1" -mindepth 1 -maxdepth 1 ! -name .kestraboot-prefix -exec rm -rf {} +
}

# wine_prefix_make FOLDER: makes a fresh prefix in which windows work without a display.
wine_prefix_make() {
    wine_prefix_clear "$1" || return 1
    wine_in "$1" timeout --kill-after=10 180 wine wineboot -i >/dev/null 2>&1 </dev/null || return 1
    wine_in "$1" timeout --kill-after=10 60 wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f \
        >/dev/null 2>&1 </dev/null || return 1
    wine_prefix_end "$1"
}

# wine_prefix_copy FROM TO: makes a copy of FROM, in a fraction of the time.
wine_prefix_copy() {
    wine_prefix_clear "$2" || return 1
    cp -a --reflink=auto "$1/." "$2"
}

# wine_prefix_start FOLDER: starts its server and services, which run until wine_prefix_end. About once in a thousand
# times Wine's own first programs do not start.
wine_prefix_start() {
    local attempt
    for attempt in 1 2 3; do
        if wine_in "$1" wineserver -p >/dev/null 2>&1 </dev/null &&
            wine_in "$1" timeout --kill-after=10 60 wine cmd /c exit >/dev/null 2>&1 </dev/null; then
            return 0
        fi
        echo "wine: $1 does not start, attempt $attempt of 3" >&2
        wine_prefix_end "$1"
    done
    return 1
}

# wine_run FOLDER SECONDS PROGRAM ...: runs a program, terminates it after that many seconds, and prints its output. The
# output goes through a file, because a service that Wine starts meanwhile inherits it and would keep a pipe open.
wine_run() {
    local folder=$1 seconds=$2 log status=0
    shift 2
    log=$(mktemp)
    wine_in "$folder" timeout --kill-after=10 "$seconds" wine "$@" >"$log" 2>&1 </dev/null || status=$?
    cat "$log"
    rm -f "$log"
    return $status
}

# wine_prefix_end FOLDER: terminates every process in it, and its server.
wine_prefix_end() {
    wine_in "$1" timeout --kill-after=10 30 wineserver -k >/dev/null 2>&1 </dev/null || true
    wine_in "$1" timeout --kill-after=10 30 wineserver -w >/dev/null 2>&1 </dev/null || true
}

# wine_log_off FOLDER: tells every program that the session ends, as at a log-off. If a program does not answer within a
# few seconds, Wine asks in a dialog, which nobody sees here. The message is then sent again, three times in all.
wine_log_off() {
    local attempt
    for attempt in 1 2 3; do
        if wine_run "$1" 60 wineboot -e -s; then return 0; fi
        echo "wine: the session in $1 does not end, attempt $attempt of 3" >&2
    done
    return 1
}

# wine_await SECONDS FILE TEXT [FILE ...]: waits until the file contains the text, or, if the text is empty, exists. If
# the time expires, prints a message and the contents of all the files, and fails.
wine_await() {
    local seconds=$1 file=$2 text=$3 end=$((SECONDS + $1)) each
    shift 3
    until [ -e "$file" ] && { [ -z "$text" ] || grep -qaF -- "$text" "$file"; }; do
        if [ $SECONDS -ge $end ]; then
            echo "wine: not within $seconds s: \"$text\" in $file. Until now:" >&2
            for each in "$file" "$@"; do
                echo "== $each"
                cat "$each" || true
            done >&2
            return 1
        fi
        sleep 0.1
    done
}
