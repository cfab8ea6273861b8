#!/usr/bin/env bash
# Where the stamp goes and on which pages: an anchor, an offset typed and emptied, a rotation, and custom pages with both
# guards of their list, with the mouse and with the keyboard. What was stored is looked at after each run.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# dismiss SHOT: waits for the alert, takes its picture and presses its button
dismiss() {
    until_true "the alert about the page list appears" other_window_is_there
    xdotool windowfocus --sync "$(other_window)"
    screenshot "$1"
    keys Return
    until_true "the alert goes" other_window_is_gone
    xdotool windowfocus --sync "$window"
}
stored() { json_is "c[0]['$1']" "$2" || fail "$1 was stored as $(json "c[0]['$1']") instead of $2"; }

x_offset="605 88" y_offset="605 118" rotation="605 148"
custom="344 379" custom_field="470 404" appearance="364 48"

start_program
# The first configuration stands at the top right on the first page. The button in the middle of the left edge with the
# mouse, and from there with the keyboard to the middle of the bottom edge, which Space chooses.
click 369 177
keys Down Right
screenshot location-keyboard
keys space
fill $x_offset 12.5 Tab
fill $y_offset -7.25 Return
fill $x_offset "" Return
# A text that is no number is refused and marked; Escape brings the number back.
fill $y_offset down Return
screenshot location-refused
keys Escape
# The rotation: typed, and three steps up.
fill $rotation 27 Return
for _ in 1 2 3; do click 645 143; done

# Custom pages, and no list: the tab is refused to the mouse, then to the keyboard.
click $custom
click $appearance
dismiss location-asked
keys ctrl+Tab
dismiss location-asked-again
# The field has the focus, so the list can be typed at once.
xdotool type --delay 20 -- "0, 1, 2 ,4"
screenshot location-listed
keys ctrl+Tab
screenshot location-left
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
stored position 7
json_is "[float(n) for n in c[0]['offset']]" "[0.0, -7.25]" || fail "the offset was stored as $(json "c[0]['offset']")"
json_is "float(c[0]['rotation'])" "30.0" || fail "the rotation was stored as $(json "c[0]['rotation']")"
stored occurance 4
stored customOccurance 1,2,4

# Again: the list is shown and has the focus. Emptied, it falls back to every page when the program is left by keyboard.
start_program
click $custom_field
keys ctrl+a BackSpace
screenshot location-emptied
stop_program
stored occurance 0
stored customOccurance ""

# And when it is left by mouse, through the menu.
start_program
click $custom
xdotool type --delay 20 -- "7,8"
keys ctrl+a Delete
click 20 8
until_true "the menu opens" other_window_is_there
screenshot location-menu
# The last item of the menu is the one that ends the program.
height=$(xdotool getwindowgeometry --shell "$(other_window)" | sed -n 's/^HEIGHT=//p')
xdotool mousemove --sync --window "$(other_window)" 20 $((height - 12)) click 1
until_true "the program ends" program_ended
wait "$program_pid"
program_pid=
stored occurance 0
echo "location story told"
