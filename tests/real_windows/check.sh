#!/usr/bin/env bash
# Makes the archive, unpacks it without access to the rest of this machine, and runs it as a person does: some of its
# programs, or all; and then programs with planted faults, to see each fault reported.
#   check.sh BUILD-FOLDER SOURCE-FOLDER WINE-PREFIX STRIP [PROGRAM ...]
set -euo pipefail
build=$1 source=$2 prefix=$3 strip=$4
shift 4
. "$source/scripts/wine.sh"

work=$build/tests/real_windows/check
rm -rf "$work"
mkdir -p "$work"
name=kestraboot-tests
cmake -DNAME=$name -DSOURCE="$source" -DLISTS="$build/tests/real_windows" -DSTRIP="$strip" -DPACKED="$work" \
    -P "$source/tests/real_windows/archive.cmake" 2>&1
(cd "$work" && sha256sum --check --quiet $name.zip.sha256)

# ---- A machine without the build: no drive shows it. The folder's name has blanks, characters that cmd treats
# specially, and letters of two scripts, which no single code page has. An application is installed.
own=$work/wine
trap 'wine_prefix_end "$own"; rm -rf "$own"' EXIT
wine_prefix_copy "$prefix.pristine" "$own"
rm -f "$own/dosdevices/z:"
home="$own/drive_c/Pr$(printf '\303\274')fung & $(printf '\320\242\320\265\321\201\321\202') (1)"
mkdir "$home"
(cd "$home" && cmake -E tar xf "$work/$name.zip")
folder=$home/$name
mkdir "$own/drive_c/Mine"
cp "$build/bin/kestraboot.exe" "$build"/bin/*.dll "$own/drive_c/Mine"
cat >"$own/drive_c/installed.reg" <<'REG'
REGEDIT4

[HKEY_LOCAL_MACHINE\SOFTWARE\Corvane\Mine\Corvane Kestrafetch]
"Name"="Mine"
"ProxyPath"="C:\\Mine\\kestraboot.exe"
"CmdLine"="C:\\Mine\\kestraboot.exe"

[HKEY_LOCAL_MACHINE\SOFTWARE\Corvane\Mine\Corvane Kestrafetch\File Formats]
"Image"="jpg"

[HKEY_CURRENT_USER\SOFTWARE\Corvane\Mine]
"kestralaunchstatus"=dword:00000001

[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Run]
"Corvane Kestrafetch"="C:\\Mine\\kestraboot.exe"
REG
cd "$folder"           # the building machine's folders do not exist there
export LC_ALL=C.UTF-8 # because of it Wine treats the names of files as Unicode
wine_prefix_start "$own"
wine_run "$own" 60 regedit /S 'C:\installed.reg'

# run SECONDS ARGUMENT ...: as by a double click; stores the screen in $screen, the exit code in $status
screen=$work/screen.txt
run() {
    local seconds=$1
    shift
    status=0
    wine_run "$own" "$seconds" cmd /c run-tests.cmd "$@" >"$screen" || status=$?
    cat "$screen"
}
fail() { echo "failed: $*"; exit 1; }

# ---- The tests
only=()
for program in "$@"; do only+=(--only "$program"); done
wine_run "$own" 60 cmd /c exit # so that Wine has finished its writes at its start
sleep 1.1                      # registry times are whole seconds
begin=$(date +%s)
touch "$work/begin"
run 3000 "${only[@]}" # without --no-pause: nobody can press a key, but it exits nevertheless
[ $status = 0 ] || { grep -a -A30 '^Failed' "$folder/kestraboot-tests.txt"; fail "exit code $status"; }
grep -aq 'HKEY_CURRENT_USER\\Software\\KestrabootTests' "$screen" || fail "it does not name the keys that it changes"
grep -aq '^Real  *no: Wine' "$folder/kestraboot-tests.txt" || fail "the report does not name Wine"
"$source/tests/real_windows/report_check.py" "$folder" $#

# ---- The traces of the run: in its folder, and nowhere else
[ ! -e "$folder/scratch" ] || fail "its scratch folder is left"
wine_prefix_end "$own"
left=$(find "$own/drive_c" -newer "$work/begin" -type f -not -path "$home/*")
[ -z "$left" ] || fail "files outside its folder: $left"
# Keys whose time is that of the tests. Wine stores the settings of a console that was created.
keys=$(awk -v begin="$begin" '/^\[.*\] [0-9]+$/ && $NF >= begin && !/^\[Console\]/' "$own/system.reg" "$own/user.reg")
[ -z "$keys" ] || fail "registry keys outside its own: $keys"
! grep -q KestrabootTests "$own/user.reg" || fail "its own registry key is left"
grep -q 'Corvane\\\\Mine' "$own/system.reg" && grep -q 'Corvane\\\\Mine' "$own/user.reg" || fail "an application is gone"
wine_prefix_start "$own"

# ---- Arguments that it does not understand, and an archive that was not unpacked
run 60 --no-pause --wrong
[ $status = 2 ] || fail "exit code $status for a wrong argument"
run 60 --no-pause --only nothing_tests
[ $status = 2 ] || fail "exit code $status for a missing program"
mv "$folder/bin" "$folder/elsewhere"
run 60 --no-pause
[ $status = 2 ] && grep -aq 'unpack the whole archive' "$screen" || fail "exit code $status without its programs"
mv "$folder/elsewhere" "$folder/bin"

# ---- The boot program of a user who works here
wine_in "$own" wine 'C:\Mine\kestraboot.exe' >/dev/null 2>&1 </dev/null &
for try in 1 2 3 4 5 6 7 8 9 10; do
    run 60 --no-pause --only plugin_kit_tests
    [ $status = 0 ] || break # its window exists
done
[ $status = 2 ] && grep -aq 'boot program is running' "$screen" || fail "exit code $status beside a boot program"
wine_prefix_end "$own"
wine_prefix_start "$own"

# ---- Programs with planted faults
planted=$build/tests/real_windows/planted
mkdir "$folder/bin/bare"
cp "$planted"/*.exe "$source"/tests/real_windows/planted/*.txt "$folder/bin"
cp "$planted/planted_tests.exe" "$folder/bin/bare"
run 300 --no-pause --longest-test 4
"$source/tests/real_windows/planted/expect.py" "$folder" "$screen" $status
for process in /proc/[0-9]*; do
    if grep -aqs planted_hang_tests "$process/cmdline" && grep -aqsF "WINEPREFIX=$own" "$process/environ"; then
        fail "a child of a program that hung still runs: ${process##*/}"
    fi
done
