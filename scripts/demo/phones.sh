# Sourced by scripts/demo.sh: the act in which a phone arrives through a device plugin.

act_phone() {
    local viewer='C:\Program Files\Corvane Sample Viewer\viewer.exe'
    local start="\"$viewer\" module=kestrafetch params mode=direct devType=mobile priDevId=\"Phone 1\""

    title "Act 4: a phone arrives through a device plugin"
    expect "without the phone manager the plugin host waits" yes \
        "$(grep -qF '<***DeviceConnect***><NOKIA Devices will not be detected.>' "$demo/trace.log" && echo yes || echo no)"

    step "The phone manager is installed; the plugin host looks for it once a minute"
    mkdir -p "$first/moxplugins"
    cp "$simulators/nokiamanager.mox" "$first/moxplugins/"
    expect_line "it is found, and listens" '<***DeviceConnect***><Phones><Devices will be detected.>' 90

    step "A phone arrives that is not ready yet"
    in_wine 60 "$simulators/phone.exe" not-ready "Phone 1"
    step "It becomes ready"
    in_wine 60 "$simulators/phone.exe" ready "Phone 1"
    expect_line "a phone that is ready is reported" "$start" 30
    expect "and was reported only then" 1 "$(trace_text <"$demo/trace.log" | grep -cxF -- "$start")"
    expect_report "the application was started for it" viewer 'device: mobile Phone 1' 30
}
