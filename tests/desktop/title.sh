#!/usr/bin/env bash
# A title is typed, its placeholders and font runs are inserted from the menu, a run is dragged behind another one, one is
# cut and pasted; the file has what the rules say. Then all of that again, and all of it undone: the file is as it was.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

others() { xdotool search --onlyvisible --class '^imprinter$' 2>/dev/null | grep -vx "$window"; }
has_others() { [ -n "$(others)" ]; }
no_others() { [ -z "$(others)" ]; }
# insert KEY...: the menu of the button in the field, and the way to the item
insert() {
    xdotool mousemove 600 400 # the pointer has to come from elsewhere
    click 813 96
    until_true "the menu of placeholders opens" has_others
    keys "$@" Return
    until_true "the menu closes" no_others
}
# Where the tokens of the first line end: behind each row of columns in which there is something of a token's colour.
token_ends() {
    import -window root -crop 480x12+314+88 +repage txt:- 2>/dev/null | python3 -c '
import re, sys
shaded = set()
for line in sys.stdin:
    pixel = re.match(r"(\d+),\d+: \((\d+),(\d+),(\d+)", line)
    if pixel and int(pixel[4]) - int(pixel[2]) > 12:
        shaded.add(int(pixel[1]))
print(*(314 + x for x in sorted(shaded) if x + 1 not in shaded))'
}
has_tokens() { ends=($(token_ends)) && [ "${#ends[@]}" -ge "$1" ]; }
# The tokens of the first title in one line.
written() { json "' '.join(t if isinstance(t, str) else 'run' for t in c[0]['titleTokens'])"; }
is_written() { [ "$(written)" = "$1" ] || fail "the title was stored as $(written) instead of $1"; }

beside_the_text="500 130"
appearance="364 48"

# From any title to a new one: two runs around a letter, text, and one of each placeholder.
edit_title() {
    click $beside_the_text
    keys ctrl+a BackSpace
    xdotool type --delay 10 -- "100% of "
    insert Down Down
    insert Down Down Down
    insert Down Down Down Down Right
    insert Down Down Down Down Right Down
    insert Down Down Down Down Down Right
    insert Down Down Down Down Down Right Down
    screenshot title-placeholders
    keys ctrl+Home
    insert Down
    xdotool type --delay 10 -- "A"
    insert Down
    screenshot title-runs
}

# The first run goes behind the second one: the letter between them then stands at the front.
drag_first_run_behind_second() {
    until_true "the runs stand in the first line" has_tokens 3
    local from=$((ends[0] - 20)) to=$((ends[1] - 3)) former=${ends[0]}
    xdotool mousemove $from 97 mousedown 1 mousemove $((from + 6)) 98 mousemove $((from + 14)) 99 \
        mousemove $((to - 3)) 98 mousemove $to 97
    # The pointer goes on moving a little: what it did before the drag had begun is not told to the field.
    is_marked() {
        xdotool mousemove $((to + (jiggle = 1 - ${jiggle:-0}))) 97
        is_dark $((ends[1] + 2)) 96
    }
    until_true "a line shows where the run would go" is_marked
    screenshot title-dragging
    xdotool mouseup 1
    moved() { has_tokens 3 && [ "${ends[0]}" -ne "$former" ]; }
    until_true "the run has moved" moved
    screenshot title-dragged
}
# is_dark X Y: whether the caret, or the mark of a drop, is within two points of there
is_dark() { [ "$(import -window root -crop "5x1+$(($1 - 2))+$2" +repage -format '%[fx:minima<0.3]' info: 2>/dev/null)" = 1 ]; }
cut_first_run_and_paste_it_at_the_end() {
    click $((ends[0] - 20)) 97
    screenshot title-selected
    keys ctrl+x ctrl+End ctrl+v
}

placeholders="%pageNumber% %recordPageCount% %date% %time% %recordName% %user%"
start_program
click $appearance
edit_title
drag_first_run_behind_second
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
is_written "A run run 100 of  $placeholders"

# A run that was cut and pasted is taken out again.
start_program
click $appearance
until_true "the title is shown" has_tokens 3
cut_first_run_and_paste_it_at_the_end
stop_program
is_written "A run 100 of  $placeholders"

# Everything again, and everything undone.
start_program
click $appearance
edit_title
drag_first_run_behind_second
cut_first_run_and_paste_it_at_the_end
keys $(printf 'ctrl+z %.0s' {1..50})
screenshot title-undone
stop_program
is_written "A run 100 of  $placeholders"
echo "title story told"
