#!/usr/bin/env bash
# The preview opens above or beside its button, is magnified with the wheel and with keys, closes by Escape and by a
# click outside, is torn off into a window that stays and follows the choice of a configuration, and leaves no files.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# What may be looked at: everything on the screen where the preview's window is.
preview_is_open() { has_window '^Preview$'; }
preview_is_closed() { has_no_window '^Preview$'; }
preview_id() { window_named '^Preview$'; }
preview_is_bare() { xwininfo -id "$(preview_id)" 2>/dev/null | grep -q 'Override Redirect State: yes'; }
preview_has_frame() { xwininfo -id "$(preview_id)" 2>/dev/null | grep -q 'Override Redirect State: no'; }
place_of() { xdotool getwindowgeometry --shell "$1"; }
picture() {
    eval "$(place_of "$(preview_id)")"
    import -window root -crop "$((WIDTH - 80))x$((HEIGHT - 80))+$((X + 40))+$((Y + 40))" rgb:- 2>/dev/null | md5sum
}
picture_is() { [ "$(picture)" = "$1" ]; }
picture_is_not() { [ "$(picture)" != "$1" ]; }
page_is_drawn() {
    eval "$(place_of "$(preview_id)")"
    [ "$(import -window root -crop "${WIDTH}x$HEIGHT+$X+$Y" miff:- 2>/dev/null | identify -format %k -)" -gt 100 ]
}
middle_of_preview() {
    eval "$(place_of "$(preview_id)")"
    middle_x=$((X + WIDTH / 2)) middle_y=$((Y + HEIGHT / 2))
}
rendered() { ls "$XDG_RUNTIME_DIR"/imprinter-*/preview-*.bmp >/dev/null 2>&1; }
press_preview() { click 805 508; }
open_preview() {
    press_preview
    until_true "the preview opens" preview_is_open
    until_true "the page is drawn" page_is_drawn
}

start_program
until_true "the sample page is stamped" rendered
open_preview
preview_is_bare || fail "an attached preview has a window frame"
screenshot preview-attached
whole=$(picture)

# Magnified with Ctrl and the wheel, then with keys, and back to the whole page.
middle_of_preview
xdotool mousemove --sync "$middle_x" "$middle_y" keydown ctrl click 4 click 4 keyup ctrl
until_true "Ctrl and the wheel magnify" picture_is_not "$whole"
larger=$(picture)
xdotool key ctrl+plus
until_true "Ctrl and plus magnify" picture_is_not "$larger"
screenshot preview-magnified
xdotool key ctrl+0
until_true "Ctrl and 0 show the whole page again" picture_is "$whole"
xdotool key ctrl+minus
until_true "Ctrl and minus make it smaller" picture_is_not "$whole"

# Escape closes it; the next one starts with the whole page.
xdotool key Escape
until_true "Escape closes the preview" preview_is_closed
open_preview
until_true "closing has reset the magnification" picture_is "$whole"

# A click outside closes it and chooses the row that was clicked.
click 100 96
until_true "a click outside closes the preview" preview_is_closed
until_true "the click chooses the second row" test -n "$(setting ImprinterPrefLastSelected)"
open_preview
second=$(picture)
[ "$second" != "$whole" ] || fail "the second configuration looks like the first"

# Torn off it is a window, is not closed by Escape or by a click elsewhere, and follows the chosen configuration.
middle_of_preview
from_x=$X
xdotool mousemove --sync "$middle_x" "$middle_y" mousedown 1
for step in 1 2 3 4 5 6; do
    xdotool mousemove --sync $((middle_x + step * 60)) $((middle_y + step * 10))
done
xdotool mouseup 1
until_true "dragging makes a window of the preview" preview_has_frame
until_true "the page is drawn in the window" page_is_drawn
eval "$(place_of "$(preview_id)")"
[ "$X" -gt $((from_x + 200)) ] || fail "the window did not follow the pointer: $from_x to $X"
screenshot preview-detached
detached=$(preview_id)
before=$(picture)
xdotool windowfocus --sync "$detached" key Escape key ctrl+plus
until_true "the window takes the keys" picture_is_not "$before"
xdotool key ctrl+0
until_true "the window goes back to the whole page" picture_is "$before"
xdotool windowfocus --sync "$window"
click 100 68
until_true "the window follows the chosen configuration" picture_is_not "$before"
[ "$(preview_id)" = "$detached" ] || fail "Escape or a click elsewhere closed the window"

# The button brings it to the front.
top_window_is() { xwininfo -root -children | grep -oE '0x[0-9a-f]+ "(Imprinter|Preview)[^"]*": \("' | head -n 1 | grep -q "$1"; }
xdotool windowraise "$window"
until_true "the main window is in front" top_window_is Imprinter
press_preview
until_true "the button brings the preview to the front" top_window_is Preview

# Its window closes; the next preview is attached again.
xdotool windowfocus --sync "$detached" key ctrl+w
until_true "the window closes" preview_is_closed
xdotool windowfocus --sync "$window"
open_preview
preview_is_bare || fail "after closing its window the preview is not attached"
xdotool key Escape
until_true "Escape closes the preview" preview_is_closed

# No file stays behind, also after the program was killed and started again.
folders() { find "$XDG_RUNTIME_DIR" -maxdepth 1 -name 'imprinter-*' | sort; }
[ "$(folders | wc -l)" -eq 1 ] || fail "there is more than one folder for previews"
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
[ -z "$(folders)" ] || fail "the folder for previews is left: $(folders)"
start_program
until_true "the sample page is stamped" rendered
left=$(folders)
kill -KILL "$program_pid"
wait "$program_pid" 2>/dev/null
[ -d "$left" ] || fail "a killed program should leave its folder"
until_true "the window of the killed program goes" has_no_window '^Imprinter$'
start_program
until_true "the next start removes what was left" eval '[ ! -e "$left" ] && rendered'
stop_program
[ -z "$(folders)" ] || fail "the folder for previews is left: $(folders)"
echo "preview story told"
