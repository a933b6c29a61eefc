# Sourced by orders.sh: a machine of its own under Wine, the MSIs, and the checks after a step. It uses $build, $source,
# $prefix (the pristine one) and $work.

own=$work/wine
bin=$work/bin
logs=$work/logs
programs=$own/drive_c/Program\ Files
failed=0

fail() { echo "failed: $*"; failed=$((failed + 1)); }

# within SECONDS COMMAND ...: repeats the command until it succeeds.
within() { local end=$((SECONDS + $1)); shift; until "$@"; do [ $SECONDS -lt $end ] || return 1; sleep 0.1; done; }

# make_msi NAME PRODUCT VERSION: $work/NAME.msi of the files of that version.
make_msi() { "$source/samples/installer/make_msi.sh" "$source/samples/installer/$2.wxi" "$3" "$bin/$3" "$work/$1.msi"; }

# In version 1.1 the resources of the boot program and its library have a higher version, and the application has other
# bytes.
make_files() {
    local file
    mkdir -p "$bin/1.0.0"
    for file in kestraboot.exe kestraboot.dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll viewer.exe \
        boot_actions.dll; do
        cp "$build/bin/$file" "$bin/1.0.0/"
    done
    x86_64-w64-mingw32-strip "$bin"/1.0.0/lib*.dll
    cp "$bin/1.0.0/viewer.exe" "$bin/1.0.0/second.exe"
    cp -r "$bin/1.0.0" "$bin/1.1.0"
    python3 - "$bin/1.1.0" <<'PY'
import pathlib, struct, sys
folder = pathlib.Path(sys.argv[1])
for name in "kestraboot.exe", "kestraboot.dll":
    data = bytearray((folder / name).read_bytes())
    version = data.index(struct.pack("<I", 0xFEEF04BD)) + 8
    struct.pack_into("<I", data, version, struct.unpack_from("<I", data, version)[0] + 1)
    (folder / name).write_bytes(data)
for name in "viewer.exe", "second.exe":
    (folder / name).write_bytes((folder / name).read_bytes() + b"1.1")
PY
}

# has_row MSI TABLE TEXT: checks for a row of a table. Its cells have blanks between them.
has_row() { msiinfo export "$work/$1.msi" "$2" | tr -d '\r' | tr '\t' ' ' | grep -qE -- "$3" || fail "$1: $2 has no row $3"; }

# The table rows that Wine does not check. If the package states no version, Windows Installer keeps a file that has
# one, and it passes on no property that is not listed.
tables() {
    has_row "$1" File "^kestraboot.dll .* $2\.0 1033 "
    has_row "$1" File "^kestraboot.exe .* $2\.0 1033 "
    has_row "$1" Property '^SecureCustomProperties BOOTSTART;MAKEDEFAULT;'
    has_row "$1" CustomAction '^StartAgain 1281 '         # at a rollback, as the user
    has_row "$1" CustomAction '^EndAsAdministrator 3073 ' # in the script, not as the user
    has_row "$1" CustomAction '^EndAsUser 1025 '          # in the script, as the user
    has_row "$1" CustomAction '^HandOver 1042 '
}

# with_failure MSI RESULT SEQUENCE CONDITION: a copy of the MSI with an action that fails there, while the script runs.
with_failure() {
    cp "$work/$1.msi" "$work/$2.msi"
    msibuild "$work/$2.msi" -q "INSERT INTO \`CustomAction\` (\`Action\`,\`Type\`,\`Source\`,\`Target\`) \
        VALUES ('FailHere', 3090, 'kestraboot.exe', '/install')"
    msibuild "$work/$2.msi" -q "INSERT INTO \`InstallExecuteSequence\` (\`Action\`,\`Condition\`,\`Sequence\`) \
        VALUES ('FailHere', '$4', $3)"
}

product_code() { msiinfo export "$work/$1.msi" Property | tr -d '\r' | awk -F'\t' '$1 == "ProductCode" { print $2 }'; }

# ---- The machine
machine_begin() {
    wine_prefix_copy "$prefix.pristine" "$own"
    wine_prefix_start "$own"
    wine_run "$own" 60 reg add 'HKCU\Software\Wine\AppDefaults\kestraboot.exe' /v Version /d vista /f >/dev/null
    mkdir -p "$work/card/DCIM"
    echo picture >"$work/card/DCIM/IMG_0001.JPG"
    reports=$(echo "$own"/drive_c/users/*/AppData/Local)/'Corvane Sample Viewer'
    : >"$work/trace.txt"
    wine_in "$own" timeout 1800 wine "$build/bin/kestratrace.exe" --match VolumeTracker >"$work/trace.txt" 2>&1 </dev/null &
}

machine_end() { wine_prefix_end "$own"; rm -rf "$own"; }

# contents NAME: all files, and the registry except for the installer's own empty keys and Wine's counters.
contents() {
    wine_run "$own" 60 regedit /E "Z:${work//\//\\}\\registry.reg" >/dev/null
    iconv -f utf-16 -t utf-8 "$work/registry.reg" | tr -d '\r' | awk '
        /^\[/ { key = $0; next }
        /^$/ { next }
        key ~ /\\Wine\\|\\Control\\|\\Enum\\|\\WINEMGMT|\\Perflib|\\Hardware\\/ { next }
        { print key " " $0 }' | sort >"$work/$1.registry"
    iconv -f utf-16 -t utf-8 "$work/registry.reg" | tr -d '\r' | grep '^\[.*Corvane' >>"$work/$1.registry" || true
    (cd "$own/drive_c" && find . \( -path './users/*/Temp' -o -path './windows/temp' -o -path './windows/Installer' -empty \) -prune -o -print |
        sort) >"$work/$1.files"
}

# ---- The present state
# boot_processes: the boot programs that run, each as "PROCESS LETTER-OF-PRODUCT".
boot_processes() {
    local process line
    for process in $(pgrep -f 'kestraboot\.exe' || true); do
        line=$(tr '\0' ' ' 2>/dev/null <"/proc/$process/cmdline") || continue
        tr '\0' '\n' 2>/dev/null <"/proc/$process/environ" | grep -qxF "WINEPREFIX=$own" || continue
        case $line in
        C:*'Corvane Sample Viewer\kestraboot.exe'*) echo "$process A" ;;
        C:*'Second Viewer\kestraboot.exe'*) echo "$process B" ;;
        esac
    done
}
boots() { boot_processes | awk '{ found = found $2 } END { print found == "" ? "-" : found }'; }

# own_library: whether the boot program that runs has loaded only the library of its own folder.
own_library() {
    local process letter folder
    while read -r process letter; do
        folder='Corvane Sample Viewer'
        [ "$letter" = A ] || folder='Second Viewer'
        [ "$(grep -ao '[^/]*/kestraboot\.dll' "/proc/$process/maps" | sort -u)" = "$folder/kestraboot.dll" ] || return 1
    done < <(boot_processes)
}

auto_run() {
    case $(wine_run "$own" 60 reg query 'HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Run' /v 'Corvane Kestrafetch' 2>&1) in
    *Corvane?Sample?Viewer*) echo A ;;
    *Second?Viewer*) echo B ;;
    *) echo - ;;
    esac
}

# versions: the version of each product's files, or "?" if their versions differ.
versions() {
    local letter folder program version found=
    for letter in A B; do
        folder='Corvane Sample Viewer' program=viewer.exe
        [ $letter = A ] || { folder='Second Viewer' program=second.exe; }
        [ -e "$programs/$folder" ] || continue
        found+="${found:+ }$letter"
        for version in 1.0.0 1.1.0 '?'; do
            [ "$version" != '?' ] || break
            cmp -s "$bin/$version/kestraboot.dll" "$programs/$folder/kestraboot.dll" &&
                cmp -s "$bin/$version/kestraboot.exe" "$programs/$folder/kestraboot.exe" &&
                cmp -s "$bin/$version/$program" "$programs/$folder/$program" && break
        done
        found+=${version%.0}
    done
    echo "${found:--}"
}

# defaults: the user's default applications.
defaults() {
    local letter name found=
    for letter in A B; do
        name='Sample Viewer'
        [ $letter = A ] || name='Second Viewer'
        ! wine_run "$own" 60 reg query "HKCU\\SOFTWARE\\Corvane\\$name\\1.0\\Corvane Kestrafetch\\Preferences" \
            /v DefaultFlag 2>&1 | grep -q 0x1 || found+=$letter
    done
    echo "${found:--}"
}

picture_found() { grep -qs 'pictures: 1' "$reports"/*.txt; }

# card: inserts a card and removes it again. Prints the started application and the mode. Closes the application's
# window like a user, because an open one keeps its files in use.
card() {
    local try started=- program=
    if [ -z "$(boot_processes)" ]; then
        echo - # no boot program runs to detect it
        return
    fi
    rm -rf "$reports"
    for try in 1 2 3; do # the trackers do not report a card that is in the reader when they start
        wine_run "$own" 60 "$build/bin/card_reader.exe" insert E "$work/card" >/dev/null
        within 30 picture_found && break
        wine_run "$own" 60 "$build/bin/card_reader.exe" remove E >/dev/null
    done
    case $(basename "$(echo "$reports"/*.txt)") in
    viewer.txt) started=A program=viewer.exe ;;
    second.txt) started=B program=second.exe ;;
    esac
    echo "$started $(sed -n 's/^mode: //p' "$reports"/*.txt 2>/dev/null | sort -u | tr -d '\r\n')"
    wine_run "$own" 60 "$build/bin/card_reader.exe" remove E >/dev/null
    [ -z "$program" ] || wine_run "$own" 60 taskkill /im "$program" >/dev/null
    rm -rf "$reports"
}

# ---- The installer
# installer NAME ARGUMENT ...: msiexec, silently and with its log. Sets $answer to the last eight bits of its exit code.
installer() {
    local name=$1
    shift
    answer=0
    wine_run "$own" 180 msiexec "$@" /qn /l*v "Z:${logs//\//\\}\\$name.log" >"$logs/$name.output" 2>&1 || answer=$?
    settle "$name"
}

# settle NAME: waits until the started boot program has control and its trackers run. If another program is in control,
# the started one exits.
known_process= known_starts=0
settle() { within 60 settled || fail "$1: $(boots) run; $(starts) have started tracking, $known_starts of them before this step"; }
starts() { grep -ac 'Volumes will be detected' "$work/trace.txt" || true; }
settled() {
    local running
    running=$(boot_processes)
    [ -n "$running" ] || return 0
    [ "$(wc -l <<<"$running")" = 1 ] || return 1
    [ "${running% *}" != "$known_process" ] || return 0
    [ "$(starts)" -gt "$known_starts" ] || return 1
    known_process=${running% *} known_starts=$(starts)
}
