#!/usr/bin/env bash
# A font chosen by typing a family's first letters and then by its face, and a title whose font the machine lacks. What
# was stored is looked at after each run.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

appearance="364 48" families="500 172" faces="720 172"
list_is_there() { [ "$(xdotool search --onlyvisible --class imprinter 2>/dev/null | wc -l)" -gt 1 ]; }
list_is_gone() { ! list_is_there; }
# choose X Y TEXT SHOT: opens the list there, types and takes the line found
choose() {
    click "$1" "$2"
    until_true "the list opens" list_is_there
    xdotool type --delay 20 -- "$3"
    screenshot "$4"
    xdotool key Return
    until_true "the list closes" list_is_gone
}
first_run='[t for t in c[0]["titleTokens"] if isinstance(t, dict)][0]["fullFontName"]'

start_program
click $appearance
choose $families "dejavu ser" fonts-families
choose $faces "bold i" fonts-faces
screenshot fonts-chosen
# The wheel over a closed button changes nothing.
xdotool mousemove --sync --window "$window" $families click 5 click 5
stop_program
json_is "$first_run" "DejaVuSerif-BoldItalic" || fail "the font was stored as $(json "$first_run")"

sed -i 's/DejaVuSerif-BoldItalic/FromAnotherMachine-Bold/' "$store"
start_program
click $appearance
screenshot fonts-missing
stop_program
json_is "$first_run" "FromAnotherMachine-Bold" || fail "the missing font was stored as $(json "$first_run")"
