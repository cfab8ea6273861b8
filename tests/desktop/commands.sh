#!/usr/bin/env bash
# Configurations are created, renamed, duplicated, deleted and put in order; the file has them as the screen showed them.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

gear="40 508"
minus="87 508"
row_top=57 # of the first row of the list; a row is 28 high
row() { echo "100 $((row_top + 14 + 28 * $1))"; }

# Windows of the program beside the main one: menus and messages.
others() { xdotool search --onlyvisible --class '^imprinter$' 2>/dev/null | grep -vx "$window"; }
has_others() { [ -n "$(others)" ]; }
no_others() { [ -z "$(others)" ]; }
# delete_and KEY: the minus button, and the answer to its question
delete_and() {
    click $minus
    until_true "the question is asked" has_others
    xdotool windowfocus --sync "$(others | head -n 1)" key "$1"
    until_true "the question is answered" no_others
    xdotool windowfocus --sync "$window"
}
# with_menu CLICK KEY...
with_menu() {
    click $1
    until_true "the menu opens" has_others
    shift
    xdotool key "$@"
}
remembered_changed() { [ -n "$(setting ImprinterPrefLastSelected)" ] && ! setting_is ImprinterPrefLastSelected "$1"; }
# is_blue X Y: whether the screen has the colour of a selection there
is_blue() { [ "$(import -window root -crop "1x1+$1+$2" +repage -format '%[fx:b>0.6&&r<0.4]' info: 2>/dev/null)" = 1 ]; }

start_program

# A new configuration, with the button.
with_menu "$gear" Down Return
until_true "the new configuration is shown" remembered_changed ""
created=$(setting ImprinterPrefLastSelected)
screenshot commands-created

# Its name, in the list.
click $(row 3)
xdotool key F2
xdotool type "Approved"
xdotool key Return

# A copy of it, with the menu of the list.
with_menu "$(row 3) 3" Down Down Down Return
screenshot commands-duplicated

# Asked whether to delete it: no, and then yes.
delete_and Escape
setting_is ImprinterPrefLastSelected "$created" || fail "another configuration is shown though nothing was deleted"
delete_and Return

# The copy is dragged from the palette to the top of the list, where it stays selected.
xdotool key ctrl+shift+o
until_true "the palette opens" has_window '^Order'
palette=$(window_named '^Order')
xdotool windowmove --sync "$palette" 900 100 windowfocus --sync "$palette"
is_blue 150 $((row_top + 14)) && fail "the first row is selected before it should be"
xdotool mousemove --window "$palette" 60 60 mousedown 1 mousemove --window "$palette" 45 66 \
    mousemove 500 90 mousemove 120 $((row_top + 4)) mousemove 118 $((row_top + 3))
# The pointer goes on moving a little: what it did before the drag had begun is not told to the list.
drop_line_shows() {
    xdotool mousemove $((118 + (jiggle = 1 - ${jiggle:-0}))) $((row_top + 3))
    is_blue 190 $((row_top + 1))
}
until_true "a line shows where the row would go" drop_line_shows
screenshot commands-dragging
xdotool mouseup 1
until_true "the dragged configuration is selected at the top" is_blue 190 $((row_top + 14))
until_true "the copy is remembered as the one shown" remembered_changed "$created"

# The last row goes up by one, with the keys alone.
xdotool windowfocus --sync "$palette" key Down Down Down Down ctrl+Up
screenshot commands-ordered
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
wanted="['Approved copy', 'Received', 'Confidential', 'Page of Pages']"
json_is "[x['name'] for x in c]" "$wanted" || fail "the list was stored as $(json "[x['name'] for x in c]")"

# The order survives; and a command followed at once by leaving is harmless.
start_program
until_true "the remembered one is selected in its new place" is_blue 190 $((row_top + 14))
with_menu "$gear" Down Return ctrl+q
until_true "the program ends" program_ended
wait "$program_pid"
program_status=$?
program_pid=
[ "$program_status" -eq 0 ] || fail "leaving at once ended with status $program_status: $(cat "$home/output")"
json_is "[x['name'] for x in c]" "${wanted%]}, 'New Imprinter']" || fail "the second run stored $(json "[x['name'] for x in c]")"
! grep -E "exception|Exception|QObject|Segmentation" "$home/output" || fail "the program complained"
echo "commands story told"
