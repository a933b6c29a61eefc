# Sourced by scripts/demo.sh: cards, and the act in which they are inserted and removed.

# A real JPEG: a gradient of 64 by 48 pixels.
make_picture() {
    mkdir -p "$(dirname "$1")"
    awk 'BEGIN { print "P3 64 48 255"
                 for (y = 0; y < 48; y++) for (x = 0; x < 64; x++) print x * 4, y * 5, 255 - x * 4 }' |
        cjpeg -quality 90 >"$1"
}

make_cards() {
    make_picture "$demo/cards/pictures/DCIM/100TEST/IMG_0001.JPG"
    mkdir -p "$demo/cards/documents/NOTES"
    echo 'no picture' >"$demo/cards/documents/NOTES/README.TXT"
    make_picture "$demo/cards/deep/BACKUP/2026/IMG_0002.JPG"
}

insert_card() { in_wine 30 "$simulators/card_reader.exe" insert E "$demo/cards/$1"; }
remove_card() { in_wine 30 "$simulators/card_reader.exe" remove E; }

take_card_out() {
    step "The card is removed"
    remove_card
    expect_line "card removed: nothing left to poll" '<***DeviceConnect***><VolumeTracker><Exiting from polling mode.>' 30
}

act_cards() {
    local sample='C:\Program Files\Corvane Sample Viewer'
    local key='HKCU\SOFTWARE\Corvane\Sample Viewer\1.0\Corvane Kestrafetch'
    local start="\"$sample\\viewer.exe\" module=kestrafetch params mode=direct devType=volume priDevId=\"E:\""

    title "Act 1: a card in a reader starts the default application"
    step "kestraboot.exe starts, as on Windows Vista"
    boot "$first"
    expect_line "the volume tracker runs" '<***DeviceConnect***><VolumeTracker><Volumes will be detected.>' 30

    step "A card with DCIM/100TEST/IMG_0001.JPG is inserted"
    insert_card pictures
    expect_line "card with a picture: detected" '<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>' 30
    expect_line "card with a picture: application started" "$start" 30
    expect_report "the application's own command line" viewer "command line: $start" 30
    expect_report "the application found the picture" viewer 'picture: E:\DCIM\100TEST\IMG_0001.JPG' 30
    take_card_out

    step "A card without pictures is inserted"
    insert_card documents
    expect_line "card without pictures: refused" '<***DeviceConnect***><VolumeTracker><Launch not possible>.' 30
    take_card_out

    step "\"SniffDepth\" is set to 2, and a card with a picture on the third level is inserted"
    in_wine 30 reg add "$key" /v SniffDepth /t REG_DWORD /d 2 /f >/dev/null
    insert_card deep
    expect_line "picture too deep: refused" '<***DeviceConnect***><VolumeTracker><Launch not possible>.' 30
    take_card_out

    step "\"SniffDepth\" is set to 3, and the same card is inserted again"
    in_wine 30 reg add "$key" /v SniffDepth /t REG_DWORD /d 3 /f >/dev/null
    forget_report viewer
    insert_card deep
    expect_report "picture within reach: application started" viewer 'picture: E:\BACKUP\2026\IMG_0002.JPG' 30
    take_card_out
}
