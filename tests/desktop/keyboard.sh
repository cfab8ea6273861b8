#!/usr/bin/env bash
# Without a pointer, from no configuration to a finished one: the first is made with the button of the hint, its place is
# chosen, its title is written with placeholders from the menu of the field, the preview is looked at.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

others() { xdotool search --onlyvisible --class '^imprinter$' 2>/dev/null | grep -vx "$window"; }
has_others() { [ -n "$(others)" ]; }
no_others() { [ -z "$(others)" ]; }
# Whether the first row of the list is marked as the selected one.
row_is_selected() {
    import -window root -crop 1x1+180+70 +repage -depth 8 txt:- 2>/dev/null | grep -qi '#308CC6'
}
# insert KEY...: the menu of the field, and the way to the item
insert() {
    keys alt+Down
    until_true "the menu of placeholders opens" has_others
    keys "$@" Return
    until_true "the menu closes" no_others
}

mkdir -p "$(dirname "$store")"
echo '{"format": "imprinter-configurations", "version": 1, "configurations": []}' >"$store"
start_program
screenshot keyboard-first
keys space
until_true "the new configuration is selected" row_is_selected

keys Tab Tab Tab Tab Right Right space # actions, deletion and the pages, then the places
screenshot keyboard-place
keys shift+Tab Right Tab ctrl+End # the other page, whose title comes first
xdotool type --delay 10 -- "RECEIVED page "
insert Down Down
xdotool type --delay 10 -- " of "
insert Down Down Down
screenshot keyboard-title

keys shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab space # back to the list, and around to the last button
until_true "the preview opens" has_others
screenshot keyboard-preview
keys Escape
until_true "the preview closes" no_others

# The action menu shows where the next key goes, from the first one on.
menu_mark() {
    local place
    place=$(xdotool getwindowgeometry --shell "$(others | head -n 1)" 2>/dev/null) || return
    eval "$place"
    import -window root -crop "1x$HEIGHT+$((X + WIDTH - 6))+$Y" +repage -depth 8 txt:- 2>/dev/null |
        grep -n -i -m 1 '#308CC6' | cut -d: -f1
}
is_marked() { [ -n "$(menu_mark)" ]; }
is_marked_below() { [ "$(menu_mark)" -gt "$1" ] 2>/dev/null; }
is_marked_at() { [ "$(menu_mark)" = "$1" ]; }
keys Tab Tab space
until_true "the action menu opens" has_others
until_true "its first command is marked" is_marked
first=$(menu_mark)
screenshot keyboard-actions
keys Down
until_true "the next one is marked" is_marked_below "$first"
keys Up
until_true "the first one is marked again" is_marked_at "$first"
keys Return
until_true "the menu closes" no_others

stop_program
[ "$program_status" = 0 ] || fail "the program ended with $program_status"
json_is "len(c)" 2 || fail "there are $(json "len(c)") configurations"
json_is "c[0]['position']" 2 || fail "the place is $(json "c[0]['position']")"
title=$(json "''.join(t if isinstance(t, str) else '[run]' for t in c[0]['titleTokens'])")
[ "$title" = "[run]RECEIVED page %pageNumber% of %recordPageCount%" ] || fail "the title is $title"
