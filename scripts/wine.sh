# Sourced by the scripts that run something under Wine: a prefix of one's own, its server, its end.
# No display is needed; nothing of the user's own Wine is touched.

export WINEDEBUG=${WINEDEBUG:--all}                                 # Wine's own messages are not ours
# No debugger on a crash, no add-ons; a twain_32.dll beside a program goes before Wine's own, as on Windows.
export WINEDLLOVERRIDES='winedbg.exe=d;mscoree=d;mshtml=d;twain_32=n,b'
export WINEARCH=win64
unset DISPLAY WAYLAND_DISPLAY

# wine_prefix_make FOLDER: a fresh prefix in which windows work without a display.
wine_prefix_make() {
    rm -rf "$1"
    mkdir -p "$1"
    WINEPREFIX=$1 timeout 180 wine wineboot -i >/dev/null 2>&1 </dev/null || return 1
    WINEPREFIX=$1 timeout 60 wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f \
        >/dev/null 2>&1 </dev/null || return 1
    wine_prefix_end "$1"
}

# wine_prefix_copy FROM TO: a prefix as fresh as FROM, in a fraction of the time.
wine_prefix_copy() {
    rm -rf "$2"
    cp -a --reflink=auto "$1" "$2"
}

# wine_prefix_start FOLDER: its server and services, which stay until wine_prefix_end. Once in some thousand
# times Wine's own first programs do not come up.
wine_prefix_start() {
    local attempt
    for attempt in 1 2 3; do
        if WINEPREFIX=$1 wineserver -p >/dev/null 2>&1 </dev/null &&
            WINEPREFIX=$1 timeout 60 wine cmd /c exit >/dev/null 2>&1 </dev/null; then
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
    WINEPREFIX=$folder timeout --kill-after=10 "$seconds" wine "$@" >"$log" 2>&1 </dev/null || status=$?
    cat "$log"
    rm -f "$log"
    return $status
}

# wine_prefix_end FOLDER: ends every process in it, and its server.
wine_prefix_end() {
    WINEPREFIX=$1 timeout 30 wineserver -k >/dev/null 2>&1 </dev/null || true
    WINEPREFIX=$1 timeout 30 wineserver -w >/dev/null 2>&1 </dev/null || true
}
