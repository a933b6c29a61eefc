#!/usr/bin/env bash
# Installs, upgrades, repairs and removes two products with Wine's msiexec, silently. After each step it checks the
# versions of the files, the boot program that runs, the auto-run entry, the defaults, and the application that a card
# starts. After the last removal the registry and the files are the same as before. Writes a table of all steps to
# table.md.
#   orders.sh BUILD-FOLDER SOURCE-FOLDER WINE-PREFIX WORK-FOLDER ORDER ...
# ORDER is the name of a function below, without "order_".
set -euo pipefail
build=$(realpath "$1") source=$(realpath "$2") prefix=$(realpath -m "$3") work=$(realpath -m "$4")
shift 4
. "$source/scripts/wine.sh"
. "$source/tests/installer/machine.sh"

row() { printf '| %s | %s | %s | %s | %s | %s |\n' "$@" | tee -a "$work/table.md"; }

# seen WHAT EXPECTED: one row. EXPECTED is "versions / boot program / auto-run / defaults / card".
seen() {
    local there
    there="$(versions) / $(boots) / $(auto_run) / $(defaults) / $(card)"
    row "$1" "$(cut -d/ -f1 <<<"$there")" "$(cut -d/ -f2 <<<"$there")" "$(cut -d/ -f3 <<<"$there")" \
        "$(cut -d/ -f4 <<<"$there")" "$(cut -d/ -f5 <<<"$there")"
    [ "$there" = "$2" ] || fail "$1: expected $2"
    own_library || fail "$1: the boot program has not loaded its own library"
}

# step WHAT EXPECTED ANSWER ARGUMENT ...: runs msiexec once, and checks the state after it.
count=0
step() {
    local what=$1 expected=$2 exit_code=$3
    shift 3
    count=$((count + 1))
    installer "$(printf '%02d' $count)" "$@"
    [ "$answer" = "$exit_code" ] || fail "$what: msiexec answered $answer, not $exit_code (last eight bits)"
    seen "$what" "$expected"
}

msi() { echo "Z:${work//\//\\}\\$1.msi"; }
install() { step "install ${1^}" "$2" 0 /i "$(msi "$1")" BOOTSTART=always "${@:3}"; }
upgrade() { step "upgrade to ${1^}" "$2" 0 /i "$(msi "$1")" BOOTSTART=always; }
repair() { step "repair ${1^}" "$2" 0 /i "$(msi "$1")" REINSTALL=ALL REINSTALLMODE=omus BOOTSTART=always; }
remove() { step "remove ${1^}" "$2" 0 /x "$(msi "$1")"; }
refused() { step "$1" "$2" 67 "${@:3}"; } # 1603
log_on() { # WHAT EXPECTED: starts the auto-run entry's program, as a log-on does
    local program
    program=$(wine_run "$own" 60 reg query 'HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Run' \
        /v 'Corvane Kestrafetch' | tr -d '\r' | sed -n 's/.*REG_SZ *"\(.*\)"/\1/p')
    wine_in "$own" timeout 600 wine "$program" </dev/null >/dev/null 2>&1 &
    within 60 runs || fail "$1: nothing was started"
    settle "$1"
    seen "$1" "$2"
}
runs() { [ -n "$(boot_processes)" ]; }

# ---- Both products, in every order that differs
# Both upgrades keep the default and the boot program in control.
order_both_upgraded_first_removed_first() {
    install a1.0 'A1.0 / A / A / A / A direct' MAKEDEFAULT=yes
    install b1.0 'A1.0 B1.0 / A / B / A / A direct'
    upgrade a1.1 'A1.1 B1.0 / A / A / A / A direct'
    upgrade b1.1 'A1.1 B1.1 / A / A / A / A direct'
    remove a1.1 'B1.1 / B / B / - / B direct'
    remove b1.1 '- / - / - / - / -'
}
order_both_upgraded_second_removed_first() {
    install a1.0 'A1.0 / A / A / - / A direct'
    install b1.0 'A1.0 B1.0 / A / B / B / B direct' MAKEDEFAULT=yes
    upgrade b1.1 'A1.0 B1.1 / A / A / B / B direct'
    upgrade a1.1 'A1.1 B1.1 / A / A / B / B direct'
    remove b1.1 'A1.1 / A / A / - / A direct'
    remove a1.1 '- / - / - / - / -'
}
order_none_upgraded() {
    install b1.0 'B1.0 / B / B / - / B direct'
    install a1.0 'A1.0 B1.0 / B / A / - / A select'
    remove b1.0 'A1.0 / A / A / - / A direct'
    remove a1.0 '- / - / - / - / -'
}
order_upgraded_between() {
    install a1.0 'A1.0 / A / A / - / A direct'
    upgrade a1.1 'A1.1 / A / A / - / A direct'
    install b1.0 'A1.1 B1.0 / A / B / - / A select'
    remove a1.1 'B1.0 / B / B / - / B direct'
    upgrade b1.1 'B1.1 / B / B / - / B direct'
    remove b1.1 '- / - / - / - / -'
}
order_first_comes_back() {
    install a1.0 'A1.0 / A / A / - / A direct'
    install b1.0 'A1.0 B1.0 / A / B / - / A select'
    remove a1.0 'B1.0 / B / B / - / B direct'
    install a1.1 'A1.1 B1.0 / B / A / - / A select'
    remove b1.0 'A1.1 / A / A / - / A direct'
    remove a1.1 '- / - / - / - / -'
}

# ---- One product
order_repaired() {
    install a1.0 'A1.0 / A / A / A / A direct' MAKEDEFAULT=yes
    rm "$programs/Corvane Sample Viewer/viewer.exe"
    wine_run "$own" 60 reg delete 'HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Run' /v 'Corvane Kestrafetch' /f >/dev/null
    repair a1.0 'A1.0 / A / A / A / A direct'
    remove a1.0 '- / - / - / - / -'
}
# Wine's programs have all privileges of the account, so the installer leaves the start to the log-on.
order_started_at_log_on() {
    step "install A1.0, elevated" 'A1.0 / - / A / - / -' 0 /i "$(msi a1.0)"
    grep -q 'not started: the next log-on starts it (BOOTSTART=user)' "$logs/$(printf '%02d' $count).log" ||
        fail "the log does not report that nothing was started"
    log_on "log on" 'A1.0 / A / A / - / A direct'
    remove a1.0 '- / - / - / - / -'
}

# Files of others in the product's folder stay, because the product does not own them.
order_files_of_others() {
    local folder="$programs/Corvane Sample Viewer"
    install a1.0 'A1.0 / A / A / - / A direct'
    mkdir "$folder/moxplugins" "$folder/OEM"
    cp "$build/bin/sample_plugin.mox" "$folder/moxplugins/nokiamanager.mox"
    printf '[KestraProxyStopInstall]\r\n0\r\n' >"$folder/OEM/album.ini"
    upgrade a1.1 'A1.1 / A / A / - / A direct'
    remove a1.1 'A? / - / - / - / -'
    [ "$(cd "$folder" && find . -type f | sort | tr '\n' ' ')" = './OEM/album.ini ./moxplugins/nokiamanager.mox ' ] ||
        fail "the folder holds $(ls -R "$folder")"
    rm -rf "$folder"
}

# ---- Bad cases
order_refused() {
    install a1.1 'A1.1 / A / A / - / A direct'
    refused "an older version, A1.0" 'A1.1 / A / A / - / A direct' /i "$(msi a1.0)"
    cp "$work/b1.0.msi" "$work/limited.msi" # Wine grants every privilege, so a first action clears the property
    msibuild "$work/limited.msi" -q "INSERT INTO \`CustomAction\` (\`Action\`,\`Type\`,\`Source\`,\`Target\`) \
        VALUES ('Limit', 51, 'Privileged', '')"
    msibuild "$work/limited.msi" -q "INSERT INTO \`InstallExecuteSequence\` (\`Action\`,\`Condition\`,\`Sequence\`) \
        VALUES ('Limit', '', 10)"
    refused "install B1.0 without privileges" 'A1.1 / A / A / - / A direct' /i "$(msi limited)"
    remove a1.1 '- / - / - / - / -'
}
order_failed_installation() {
    install a1.0 'A1.0 / A / A / A / A direct' MAKEDEFAULT=yes
    with_failure b1.0 failing 5900 ''
    step "install B1.0, fails in the middle" 'A1.0 / A / A / A / A direct' 91 /i "$(msi failing)" MAKEDEFAULT=yes # 1627
    remove a1.0 '- / - / - / - / -'
}
order_failed_removal() {
    install b1.0 'B1.0 / B / B / - / B direct'
    with_failure a1.0 failing 2650 'REMOVE="ALL" AND FAILS'
    step "install A1.0" 'A1.0 B1.0 / B / A / - / A select' 0 /i "$(msi failing)"
    # The card has made B's boot program the one that starts at log-on.
    step "remove A1.0, fails in the middle" 'A1.0 B1.0 / B / B / - / A select' 91 /x "$(msi failing)" FAILS=1
    remove b1.0 'A1.0 / A / A / - / A direct'
    step "remove A1.0" '- / - / - / - / -' 0 /x "$(msi failing)"
}
# Wine's rollback removes the files that the newer version shares with the older, and keeps no copy. Windows Installer
# does.
order_failed_upgrade() {
    install a1.0 'A1.0 / A / A / - / A direct'
    with_failure a1.1 failing 5900 ''
    step "upgrade to A1.1, fails in the middle (Wine)" '- / - / A / - / -' 91 /i "$(msi failing)" BOOTSTART=always
    repair a1.0 'A1.0 / A / A / - / A direct'
    remove a1.0 '- / - / - / - / -'
}
# A program that the installer does not know holds the library. The new boot program does not start with the old
# library.
order_in_use() {
    local folder="$programs/Corvane Sample Viewer"
    step "install A1.0" 'A1.0 / - / A / - / -' 0 /i "$(msi a1.0)" BOOTSTART=never # so that the other one has control
    cp "$folder/kestraboot.exe" "$folder/holder.exe"
    wine_in "$own" timeout 600 wine "$folder/holder.exe" </dev/null >/dev/null 2>&1 &
    within 60 held || fail "the holder does not run"
    step "upgrade to A1.1, kestraboot.dll in use" 'A? / - / A / - / -' 194 /i "$(msi a1.1)" BOOTSTART=always # 3010
    wine_run "$own" 60 taskkill /F /IM holder.exe >/dev/null
    rm "$folder/holder.exe"
    wine_run "$own" 120 wineboot >/dev/null # the restart: pending renames, and the auto-run entry
    settle "restart"
    seen "restart" 'A1.1 / A / A / - / A direct'
    remove a1.1 '- / - / - / - / -'
}
held() { pgrep -f 'holder\.exe' | sed 's|.*|/proc/&/maps|' | xargs -r grep -qs "$programs/Corvane Sample Viewer/kestraboot.dll"; }

rm -rf "$work"
mkdir -p "$logs"
trap machine_end EXIT
make_files
for version in 1.0 1.1; do
    make_msi a$version viewer $version.0
    make_msi b$version second $version.0
    tables a$version $version.0
done
machine_begin
row "step" "products" "boot program" "auto-run" "defaults" "a card starts"
row --- --- --- --- --- ---
for order; do
    row "**${order//_/ }**" "" "" "" "" ""
    contents before
    "order_$order"
    contents after
    for what in registry files; do
        diff "$work/before.$what" "$work/after.$what" >"$work/differs" && continue
        head -20 "$work/differs"
        fail "$order: the $what differ"
    done
done
echo "$count steps, $failed failures, $SECONDS s"
[ $failed = 0 ]
