#!/usr/bin/env bash
# Unpacks the archive that pack.sh made, and builds and runs a host, an application and a plugin like a maker who has
# nothing else. A card and a camera arrive, and the application starts for each. The host of the second round is built
# without CMake, with the flags of pkg-config.
#   check.sh BUILD-FOLDER SOURCE-FOLDER WINE-PREFIX [TOOL ...]
set -euo pipefail
build=$1 source=$2 prefix=$3
shift 3
. "$source/scripts/wine.sh"

work=$build/package-check
packed=$work/packed
find "$work" -mindepth 1 -maxdepth 1 ! -path "$packed" -exec rm -rf {} +
log=$work/log
quietly() { "$@" >"$log" 2>&1 </dev/null || { cat "$log"; echo "failed: $*"; exit 1; }; }

# ---- The archive
mapfile -t archives < <(find "$packed" -maxdepth 1 -name '*.zip' ! -name '*-symbols.zip')
config=$(sed -n 's/^CMAKE_BUILD_TYPE:STRING=//p' "$build/CMakeCache.txt")
"$source/scripts/checks/package.py" "${archives[0]}" "$source/tests/package/listing.txt" "$source" "$build" \
    "$config" "$@"
(cd "$work" && cmake -E tar xf "${archives[0]}")
unpacked=$work/$(basename "${archives[0]}" .zip)
"$source/scripts/checks/links.py" "$unpacked"
"$source/scripts/checks/bill_of_materials.py" "$unpacked"

# Every program reports the same build as VERSION.txt.
version=$(sed '1s/^kestraboot //' "$unpacked/VERSION.txt")
simulators=$unpacked/samples/simulators/bin

# ---- The maker's project, in both build types, and the samples, from the archive alone
cp -r "$source/tests/package/integrator" "$work/integrator"
cp -r "$unpacked/samples" "$work/samples"
for project in integrator samples; do
    quietly cmake -S "$work/$project" -B "$work/$project-build" -G "Ninja Multi-Config" \
        -DCMAKE_CONFIGURATION_TYPES="Debug;Release" \
        -DCMAKE_TOOLCHAIN_FILE="$unpacked/lib/cmake/kestraboot/toolchain.cmake"
done
quietly cmake --build "$work/samples-build" --config Release
for built in boot/Release/kestraboot.exe viewer/Release/viewer.exe mox_plugin/Release/sample_plugin.mox \
    drop_folder_plugin/Release/drop_folder.mox installer/Release/boot_actions.dll \
    simulators/Release/{card_reader,device_change,phone,wia_connect,wia_service}.exe \
    simulators/Release/{nokiamanager.mox,sti.dll,twain_32.dll,wia_device_list.dll}; do
    [ -f "$work/samples-build/$built" ] || { echo "the samples did not build $built"; exit 1; }
done

# ---- The same host without CMake
compiler=$(sed -n 's/^set(CMAKE_CXX_COMPILER \(.*\))$/\1/p' "$unpacked/lib/cmake/kestraboot/toolchain.cmake")
export PKG_CONFIG_LIBDIR=$unpacked/lib/pkgconfig
quietly pkg-config --print-errors --exact-version="${version%%$'\n'*}" kestraboot
read -ra flags < <(pkg-config --cflags --libs kestraboot)
quietly "$compiler" -std=c++17 "$work/integrator/host.cpp" "${flags[@]}" -o "$work/host.exe"

# ---- The run, in a folder with nothing else
own=$work/wine
trap 'wine_prefix_end "$own"; rm -rf "$own"' EXIT
wine_prefix_copy "$prefix.pristine" "$own"
wine_prefix_start "$own"

# The boot program of the archive, in the unpacked folder. It refuses this argument with exit code 2.
status=0
wine_run "$own" 60 "$unpacked/bin/kestraboot.exe" /install || status=$?
[ $status = 2 ] || { echo "kestraboot.exe /install answered $status"; exit 1; }
for program in "$unpacked"/bin/kestra*.exe "$simulators"/*.exe; do
    name=$(basename "$program" .exe)
    said=$(wine_run "$own" 60 "$program" --version | tr -d '\r')
    [ "$said" = "$name $version" ] || { echo "$program --version answered: $said"; exit 1; }
done

card=$work/card
mkdir -p "$card/DCIM/100TEST"
echo picture >"$card/DCIM/100TEST/IMG_0001.JPG"

# within SECONDS COMMAND: repeats the command until it succeeds
within() { local end=$((SECONDS + $1)); shift; until "$@"; do [ $SECONDS -lt $end ] || return 1; sleep 0.1; done; }
says() { grep -qaF -- "$2" "$1" 2>/dev/null; }
lines() { [ "$(wc -l 2>/dev/null <"$1")" = "$2" ]; }

for type in Debug Release; do
    quietly cmake --build "$work/integrator-build" --config $type
    quietly cmake --install "$work/integrator-build" --config $type --prefix "$work/$type"
    installed=$work/$type
    [ $type = Debug ] || cp "$work/host.exe" "$installed/"
    # The plugins of other makers are loaded only if the phone manager is there, so the sample takes its place.
    cp "$work/samples-build/mox_plugin/Release/sample_plugin.mox" "$installed/moxplugins/nokiamanager.mox"
    windows=Z:${installed//\//\\\\}
    cat >"$work/maker.reg" <<REG
REGEDIT4

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Corvane\\Maker\\Corvane Kestrafetch]
"Name"="The maker's"
"ProxyPath"="$windows\\\\host.exe"
"CmdLine"="$windows\\\\application.exe"

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Corvane\\Maker\\Corvane Kestrafetch\\File Formats]
"Image"="jpg"

[HKEY_CURRENT_USER\\Software\\Wine\\AppDefaults\\host.exe]
"Version"="vista"
REG
    quietly wine_run "$own" 60 regedit /S "Z:${work//\//\\}\\maker.reg"

    said=$work/host.$type.txt
    wine_in "$own" timeout --kill-after=10 150 wine "$installed/host.exe" >"$said" 2>&1 </dev/null &
    host=$!
    within 60 says "$said" waiting || { echo "the host did not start:"; cat "$said"; exit 1; }
    # The tracker does not report a card that is in the reader when it starts. A card that was inserted too early is
    # inserted again.
    for try in 1 2 3 4 5; do
        wine_run "$own" 60 "$simulators/card_reader.exe" insert E "$card"
        within 10 says "$said" "arrived: volume E:" && break
        wine_run "$own" 60 "$simulators/card_reader.exe" remove E
    done
    status=0
    wait $host || status=$?
    wine_run "$own" 60 "$simulators/card_reader.exe" remove E
    echo "$type:"
    sed 's/^/    the host: /' "$said"
    [ $status = 0 ] || { echo "the host exited with $status"; exit 1; }
    says "$said" ": -install, 1 application(s)"

    started=$installed/started.txt
    within 60 lines "$started" 2 || { echo "the application was not started twice"; cat "$started"; exit 1; }
    sed 's/^/    the application: /' "$started"
    program=$(printf '%s' "$windows" | sed 's/\\\\/\\/g')
    begin="\"$program\\application.exe\" module=kestrafetch params mode=direct"
    says "$started" "$begin devType=volume priDevId=\"E:\""
    says "$started" "$begin devType=camera priDevId=\"The maker's \"own\" camera\""
done
