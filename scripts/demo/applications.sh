# Sourced by scripts/demo.sh: the sample application, a second one, and the act in which one replaces the other.

# install_application FOLDER PROGRAM: copies an application's files as its installer would.
install_application() {
    mkdir -p "$1"
    cp "$package"/bin/* "$1/"
    cp "$bin/viewer.exe" "$1/$2.exe"
}

install_viewer() {
    first="$prefix/drive_c/Program Files/Corvane Sample Viewer"
    install_application "$first" viewer
    in_wine 60 regedit /S samples/viewer/viewer.reg
}

install_second() {
    second="$prefix/drive_c/Program Files/Second Viewer"
    install_application "$second" second
    sed -e 's/Corvane Sample Viewer/Second Viewer/g; s/Sample Viewer/Second Viewer/g; s/viewer\.exe/second.exe/g' \
        samples/viewer/viewer.reg >"$demo/second.reg"
    in_wine 60 regedit /S "$demo/second.reg"
}

run_value() {
    in_wine 30 reg query 'HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Run' /v 'Corvane Kestrafetch' |
        tr -d '\r' | sed -n 's/.*REG_SZ *//p'
}

exit_code_of() {
    local code=0
    (cd "$1" && wine_in "$prefix" timeout --kill-after=10 60 wine kestraboot.exe "${@:2}" \
        </dev/null >"$demo/console.log" 2>&1) || code=$?
    echo $code
}

act_applications() {
    local programs='C:\Program Files'
    local arguments='module=kestrafetch params mode=direct devType=volume priDevId="E:"'

    title "Act 2: a second application becomes the default, and goes again"
    step "A second application is installed; it is made the default from the command line"
    install_second
    expect "-default with a name nobody has: exit code" 4 "$(exit_code_of "$second" -default 'Third Viewer' yes)"
    expect "  and on the console" ' !!! Invalid first argument value.' "$(sed -n 2p "$demo/console.log" | tr -d '\r')"
    expect "-default \"Second Viewer\" yes: exit code" 0 "$(exit_code_of "$second" -default 'Second Viewer' yes)"
    expect "the auto-run entry names its proxy" "\"$programs\\Second Viewer\\kestraboot.exe\"" "$(run_value)"

    step "A card is inserted"
    insert_card pictures
    expect_line "the second application is started" "\"$programs\\Second Viewer\\second.exe\" $arguments" 30
    expect_report "  and finds the picture" second 'picture: E:\DCIM\100TEST\IMG_0001.JPG' 30
    take_card_out

    step "The user logs on again: the second application's proxy is the one in control"
    end_boot_programs
    boot "$second"
    expect_line "the second proxy took control" '<KestraProxy><Took control of the situation>' 30
    expect "a further instance is refused: exit code" 3 "$(exit_code_of "$first")"

    step "The second application is uninstalled"
    in_wine 30 reg delete 'HKLM\SOFTWARE\Corvane\Second Viewer' /f >/dev/null
    expect "-uninstall: exit code" 0 "$(exit_code_of "$second" -uninstall)"
    expect_line "the first application takes over" \
        "<KestraBoot><Switching application to ...<Sample Viewer><$programs\\Corvane Sample Viewer\\kestraboot.exe> >" 30
    expect_line "  its proxy is in control" '<KestraProxy><Took control of the situation>' 30
    expect "the auto-run entry names its proxy" "\"$programs\\Corvane Sample Viewer\\kestraboot.exe\"" "$(run_value)"

    step "A card is inserted"
    forget_report viewer
    insert_card pictures
    expect_line "the first application is started" "\"$programs\\Corvane Sample Viewer\\viewer.exe\" $arguments" 30
    expect_report "  and finds the picture" viewer 'picture: E:\DCIM\100TEST\IMG_0001.JPG' 30
    take_card_out
}

# As at log-off.
end_boot_programs() {
    in_wine 30 taskkill /F /IM kestraboot.exe >/dev/null || true
}
