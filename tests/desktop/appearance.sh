#!/usr/bin/env bash
# Font, border and fill: a run's size, colour and outline, a border's style, thickness and colour, and a fill with its
# opacity, with the mouse and with the keyboard; then a combined configuration and its preview. What was stored is looked
# at after each run.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# pick X Y SHOT COLUMN ROW: opens the panel of the colour well, picks the basic colour at this place, and closes it
pick() {
    click "$1" "$2"
    until_true "the panel of colours opens" other_window_is_there
    local panel
    panel=$(other_window)
    xdotool windowfocus --sync "$panel"
    xdotool mousemove --sync --window "$panel" "$4" "$5" click 1
    screenshot "$3"
    keys Escape
    until_true "the panel of colours goes" other_window_is_gone
    xdotool windowfocus --sync "$window"
}
# shows_text X Y: whether there is more than one colour around the place
shows_text() {
    [ "$(import -window root png:- | convert - -crop "60x10+$1+$(($2 - 5))" -unique-colors txt:- | wc -l)" -gt 2 ]
}

appearance="364 48"
size="376 203" outline="606 203" thickness="734 203" font_colour="497 203"
border_box="319 253" border_style="407 253" border_thickness="592 253" border_colour="712 253"
fill_box="319 289" fill_colour="396 289" opacity="517 289"

start_program
click $appearance
screenshot appearance-start
# The run of the first configuration: larger, blue, outlined.
fill $size 20.5 Return
click $outline
fill $thickness 2 Tab
pick $font_colour appearance-colour 30 60
# A double line, thicker, in another colour.
click $border_style
until_true "the styles open" other_window_is_there
screenshot appearance-styles
keys Down Down Down Return
until_true "the styles close" other_window_is_gone
fill $border_thickness 3.5 Tab
pick $border_colour appearance-border-colour 60 85
# A fill, half transparent.
click $fill_box
pick $fill_colour appearance-fill-colour 90 60
fill $opacity 40 Return
screenshot appearance-end
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
stored() { json_is "$1" "$2" || fail "$1 was stored as $(json "$1") instead of $2"; }
run="[t for t in c[0]['titleTokens'] if isinstance(t, dict)][0]"
stored "float($run['fontSize'])" 20.5
stored "$run['outline']" True
stored "float($run['strokeWidth'])" 2.0
stored "$run['colour']['sRGB'][0] < 0.1 and $run['colour']['sRGB'][2] > 0.4" True
stored "c[0]['borderStyle']" 4
stored "float(c[0]['borderThickness'])" 3.5
stored "c[0]['borderColour'] != $run['colour']" True
stored "c[0]['fillEnabled']" True
stored "float(c[0]['fillOpacity'])" 0.4

# A combined configuration of the first two; Preview shows both stamps although nothing else was touched.
start_program
click 40 508
until_true "the menu opens" other_window_is_there
keys Down Down Return
until_true "the menu goes" other_window_is_gone
candidate="300 71" add="543 247" remove="543 277" member="650 71"
until_true "the candidates are listed" shows_text 250 71
click $candidate
xdotool keydown shift
click 300 99
xdotool keyup shift
click $add
screenshot appearance-combined
click 804 508
until_true "the preview opens" other_window_is_there
screenshot appearance-combined-preview
keys Escape
until_true "the preview closes" other_window_is_gone
click $member
click $remove
stop_program
stored "len(c[3]['members'])" 1
stored "c[3]['members'][0] == c[1]['uniqueID']" True
echo "appearance story told"
