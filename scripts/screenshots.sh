#!/usr/bin/env bash
# Takes the pictures of the sample viewer's windows for the pages: docs/chooser.png, docs/contact-sheet.png. Builds the
# programs, and runs them in a Wine prefix of its own on a display of its own (Xvfb). Takes no arguments. Installs
# missing packages. The demo and the tests do not need it.
set -euo pipefail
. "$(dirname "$0")/usage.sh"
no_arguments "$@"
cd "$(dirname "$0")/.."
. scripts/wine.sh

scripts/setup.sh screenshots
cmake --preset release >/dev/null
cmake --build --preset release --target kestraboot_boot viewer

work=$PWD/build/screenshots
prefix=$work/wine
apps=$prefix/drive_c/Apps
rm -rf "$work"
mkdir -p "$work"

trap 'wine_prefix_end "$prefix"; [ -z "${screen-}" ] || kill "$screen"' EXIT
exec 3>"$work/display"
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
screen=$!
exec 3>&-
until [ -s "$work/display" ]; do kill -0 $screen && sleep 0.1; done
display=:$(cat "$work/display")

# on_screen SECONDS PROGRAM ...: runs a program with visible windows.
on_screen() { wine_in "$prefix" env DISPLAY="$display" timeout "$1" wine "${@:2}" </dev/null >>"$work/log" 2>&1; }

# Without a window manager Wine draws the frames itself.
wine_prefix_make "$prefix"
wine_run "$prefix" 60 reg delete 'HKCU\Software\Wine\Drivers' /v Graphics /f >/dev/null
wine_run "$prefix" 60 reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
wine_prefix_end "$prefix"
# The title bar's buttons are characters of this font, which Debian's Wine does not find by itself.
cp /usr/share/wine/fonts/marlett.ttf "$prefix/drive_c/windows/Fonts/"

# The card: landscapes, with dates as a camera writes them; one file is corrupt.
scripts/screenshots/card.py "$work/card/DCIM/100TEST"
ln -sfn "$work/card" "$prefix/dosdevices/e:"

# Three applications with different names, and the legacy organiser.
mkdir -p "$apps"
cp build/release/bin/{viewer.exe,kestraboot.exe,kestraboot.dll,libstdc++-6.dll,libgcc_s_seh-1.dll,libwinpthread-1.dll} "$apps/"
on_screen 60 regedit /S scripts/screenshots/applications.reg

# take FILE MODE: starts the viewer, waits until its window no longer changes, and saves the part without background.
take() {
    local before='' now=none
    printf '@C:\\Apps\\viewer.exe module=kestrafetch params mode=%s devType=volume priDevId="E:"\r\n' "$2" >"$work/start.bat"
    on_screen 120 cmd /c "Z:${work//\//\\}\\start.bat" &
    for _ in $(seq 60); do
        sleep 2
        before=$now
        import -display "$display" -window root "$work/shot.png"
        now=$(convert "$work/shot.png" -depth 8 rgb:- | sha256sum)
        [ "$now" != "$before" ] || [ "$(convert "$work/shot.png" -unique-colors -format %w info:)" -lt 8 ] || break
    done
    convert "$work/shot.png" -bordercolor "$(convert "$work/shot.png" -format '%[pixel:p{0,0}]' info:)" -border 1 -trim \
        +repage -strip -define png:compression-level=9 "$1"
    on_screen 60 taskkill /F /IM viewer.exe || true
    wait $! 2>/dev/null || true
}
take docs/chooser.png select
take docs/contact-sheet.png direct
ls -l docs/chooser.png docs/contact-sheet.png
