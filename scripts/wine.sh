# Sourced by whoever runs something under Wine: a prefix of one's own, its server, its end. Defines functions, and
# changes nothing else in the shell. No display is needed; nothing of the user's own Wine is touched.

# wine_in FOLDER COMMAND ...: a command whose Wine programs run in that prefix, without a display, a debugger on a
# crash and add-ons, and without Wine's own messages. A twain_32.dll beside a program goes before Wine's, as on Windows.
# Without a locale, as on a bare system, Wine could name no file beyond ASCII.
wine_in() {
    local folder=$1 locale=()
    shift
    [ "$(locale charmap 2>/dev/null)" = UTF-8 ] || locale=(LC_ALL=C.UTF-8)
    env -u DISPLAY -u WAYLAND_DISPLAY WINEPREFIX="$folder" WINEARCH=win64 WINEDEBUG="${WINEDEBUG:--all}" \
        WINEDLLOVERRIDES='winedbg.exe=d;mscoree=d;mshtml=d;twain_32=n,b' "${locale[@]}" "$@"
}

# wine_prefix_mark FOLDER: by this file a folder is known as one that may be removed again.
wine_prefix_mark() { touch "$1/.kestraboot-prefix"; }

# wine_prefix_clear FOLDER: an empty folder with the mark. What is there and has no mark is left alone, and refused.
wine_prefix_clear() {
    if [ -e "$1" ] && [ ! -e "$1/.kestraboot-prefix" ] && [ -n "$(ls -A "$1")" ]; then
        echo "wine: $1 was not made here, so it stays as it is: take another folder" >&2
        return 1
    fi
    mkdir -p "$1" && wine_prefix_mark "$1" || return 1
    # The mark stays all the while, so that what an interrupted run leaves can be cleared too.
    find "$1" -mindepth 1 -maxdepth 1 ! -name .kestraboot-prefix -exec rm -rf {} +
}

# wine_prefix_make FOLDER: a fresh prefix in which windows work without a display.
wine_prefix_make() {
    wine_prefix_clear "$1" || return 1
    wine_in "$1" timeout --kill-after=10 180 wine wineboot -i >/dev/null 2>&1 </dev/null || return 1
    wine_in "$1" timeout --kill-after=10 60 wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f \
        >/dev/null 2>&1 </dev/null || return 1
    wine_prefix_end "$1"
}

# wine_prefix_copy FROM TO: a prefix as fresh as FROM, in a fraction of the time.
wine_prefix_copy() {
    wine_prefix_clear "$2" || return 1
    cp -a --reflink=auto "$1/." "$2"
}

# wine_prefix_start FOLDER: its server and services, which stay until wine_prefix_end. Once in some thousand
# times Wine's own first programs do not come up.
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

# wine_run FOLDER SECONDS PROGRAM ...: a program, ended after that many seconds; its output at the end.
# Through a file, not a pipe: a service that Wine starts on the way inherits it and would keep a pipe open.
wine_run() {
    local folder=$1 seconds=$2 log status=0
    shift 2
    log=$(mktemp)
    wine_in "$folder" timeout --kill-after=10 "$seconds" wine "$@" >"$log" 2>&1 </dev/null || status=$?
    cat "$log"
    rm -f "$log"
    return $status
}

# wine_prefix_end FOLDER: ends every process in it, and its server.
wine_prefix_end() {
    wine_in "$1" timeout --kill-after=10 30 wineserver -k >/dev/null 2>&1 </dev/null || true
    wine_in "$1" timeout --kill-after=10 30 wineserver -w >/dev/null 2>&1 </dev/null || true
}

# wine_await SECONDS FILE TEXT [FILE ...]: until the file holds that text, or is there where the text is empty. If it
# does not within that time, says so, shows what was written meanwhile, there and into the further files, and fails.
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
