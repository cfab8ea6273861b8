#!/usr/bin/env bash
# What was changed and not saved outlives the program, be it killed or left without a display: the next start offers it.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

journal() { compgen -G "$XDG_DATA_HOME/imprinter/.configurations.json.unsaved-*" >/dev/null; }
no_journal() { ! journal; }
duplicates() { json "[x['duplicateRecord'] for x in c]"; }

# start_and_be_asked: opens the window and its question; the window's id is in $window, the question's in $question
two_windows() { [ "$(xdotool search --onlyvisible --name '^Imprinter$' 2>/dev/null | wc -l)" -ge 2 ]; }
width() { xdotool getwindowgeometry --shell "$1" | sed -n 's/^WIDTH=//p'; }
start_and_be_asked() {
    "$IMPRINTER" >"$home/output" 2>&1 &
    program_pid=$!
    until_true "the window and the question come" two_windows
    local first second
    { read -r first && read -r second; } < <(xdotool search --onlyvisible --name '^Imprinter$')
    window=$first question=$second
    if [ "$(width "$first")" -lt "$(width "$second")" ]; then window=$second question=$first; fi
    screenshot "$1"
}

start_program
# The check box of the duplicate option, which changes the first configuration.
click 250 508
until_true "the change is in a journal a moment later" journal
[ ! -e "$store" ] || fail "the store changes only when it is saved"
kill -KILL "$program_pid"
wait "$program_pid" 2>/dev/null
program_pid=

# Told to end while it asks, it ends without an answer, and the next one asks again.
for signal in TERM INT HUP; do
    start_and_be_asked "keeping-asked-before-$signal"
    kill -"$signal" "$program_pid"
    until_true "the program ends while it asks" program_ended
    wait "$program_pid" || fail "it ends as when it is closed"
    program_pid=
    journal || fail "the journal stays"
done

start_and_be_asked keeping-after-a-kill
xdotool windowfocus --sync "$question" key Return
until_true "the question is answered" eval '! two_windows'
xdotool windowmove --sync "$window" 0 0 windowfocus --sync "$window"
screenshot keeping-taken-over
stop_program
[ "$(duplicates)" = "[2, 0, 0]" ] || fail "the change was lost: $(duplicates)"
no_journal || fail "a save leaves no journal"

# The display goes away, and the toolkit ends the program at once.
start_program
click 100 96
click 250 508
until_true "the change is in a journal a moment later" journal
kill -KILL "$xvfb_pid"
until_true "the program ends" program_ended
wait "$program_pid" 2>/dev/null
program_pid=
[ "$(duplicates)" = "[2, 0, 0]" ] || fail "the store changed by itself: $(duplicates)"
Xvfb -displayfd 7 -screen 0 1280x1024x24 -nolisten tcp 7>"$home/display2" 2>/dev/null &
xvfb_pid=$!
until_true "Xvfb starts again" test -s "$home/display2"
export DISPLAY=:$(cat "$home/display2")
start_and_be_asked keeping-after-the-display-was-gone
xdotool windowfocus --sync "$question" key Return
until_true "the question is answered" eval '! two_windows'
stop_program
[ "$(duplicates)" = "[2, 2, 0]" ] || fail "the change was lost: $(duplicates)"
echo "keeping story told"
