# Sourced by scripts/demo.sh: the act in which cameras and scanners arrive.

class='{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}'
twain_scanner="$class\\0001"
wia_camera="$class\\0002"
wia_scanner="$class\\0003"

# Installs this act's still imaging and TWAIN source manager beside the boot program: no device yet, one TWAIN source.
install_still_imaging() {
    cp "$simulators/sti.dll" "$simulators/twain_32.dll" "$first/"
    : >"$first/sti_devices.txt"
    echo 'source Corvane Flatbed' >"$first/twain_sources.txt"
    in_wine 30 reg add "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Class\\$twain_scanner\\DeviceData" \
        /v TwainDS /d 'Corvane Flatbed' /f >/dev/null
}

# Installs a WIA service in the prefix, which runs in a process of its own.
install_wia_service() {
    mkdir -p "$demo/wia"
    cp "$simulators"/wia_* "$demo/wia/"
    : >"$demo/wia/wia_devices.txt"
    in_wine 60 "$demo/wia/wia_service.exe" register
}

# connect_wia KIND ID: connects a WIA device.
connect_wia() {
    echo "$1 $2" >>"$demo/wia/wia_devices.txt"
    in_wine 30 "$demo/wia/wia_connect.exe" "$2"
}

act_imaging() {
    local viewer='C:\Program Files\Corvane Sample Viewer\viewer.exe'
    local start="\"$viewer\" module=kestrafetch params mode=direct"

    title "Act 3: cameras and scanners"
    step "A camera is connected; WIA fires its event"
    connect_wia camera "$wia_camera"
    expect_line "WIA camera: detected" "<***DeviceConnect***><WiaTracker><WIA DEVICE><C|$wia_camera>." 30
    expect_line "WIA camera: application started" "$start devType=camera priDevId=\"$wia_camera\"" 30
    expect_report "the application was started for it" viewer "device: camera $wia_camera" 30

    step "A scanner is connected over WIA"
    connect_wia scanner "$wia_scanner"
    expect_line "WIA scanner: detected" "<***DeviceConnect***><WiaTracker><WIA DEVICE><S|$wia_scanner>." 30
    expect_line "WIA scanner: application started" "$start devType=scanner priDevId=\"$wia_scanner\"" 30

    step "A scanner with a TWAIN source is plugged in; its device node changes"
    echo "scanner $twain_scanner" >"$first/sti_devices.txt"
    in_wine 30 "$simulators/device_change.exe"
    expect_line "TWAIN scanner: detected" '<***DeviceConnect***><StiTracker><TWAIN DEVICE><S|"Corvane Flatbed">' 30
    expect_line "TWAIN scanner: application started" "$start devType=scanner priDevId=\"Corvane Flatbed\"" 30
    expect_report "the application was started for it" viewer 'device: scanner Corvane Flatbed' 30
}
