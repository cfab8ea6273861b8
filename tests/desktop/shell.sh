#!/usr/bin/env bash
# The window opens on supplied configurations, remembers which one was shown and what the check box says, and keeps both
# across a restart.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

start_program
until_true "originals are kept until their owner says otherwise" setting_is ImprinterDuplicateRecord YES
screenshot shell-opened

# The second row, with the mouse.
click 100 96
until_true "the host remembers the chosen configuration" eval '[ -n "$(setting ImprinterPrefLastSelected)" ]'
second=$(setting ImprinterPrefLastSelected)
# The third, with the keyboard.
xdotool key Down
until_true "the arrow key chooses the next one" eval '[ "$(setting ImprinterPrefLastSelected)" != "$second" ]'
third=$(setting ImprinterPrefLastSelected)

# The check box follows the default until it is clicked.
click 250 508
# The other page of the editor.
click 364 48
screenshot shell-appearance
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
json_is "[x['name'] for x in c]" "['Received', 'Page of Pages', 'Confidential']" || fail "the list was stored as $(json 'c')"
json_is "[x['duplicateRecord'] for x in c]" "[0, 0, 2]" || fail "the choice of the check box was stored as $(json "[x['duplicateRecord'] for x in c]")"

# Again: the third is shown and selected, its box is off.
start_program
until_true "the remembered one is still remembered" setting_is ImprinterPrefLastSelected "$third"
screenshot shell-restarted
click 250 508
stop_program
json_is "[x['duplicateRecord'] for x in c]" "[0, 0, 1]" || fail "the second run changed another configuration: $(json "[x['duplicateRecord'] for x in c]")"

# A damaged store is kept aside, and the program starts with the supplied configurations.
printf 'not json' >"$store"
start_program
until_true "a message tells of the damaged file" eval '[ "$(xdotool search --onlyvisible --name "^Imprinter$" 2>/dev/null | wc -l)" -ge 2 ]'
until_true "the damaged file is kept aside" eval 'ls "$XDG_DATA_HOME"/imprinter/configurations.damaged-*.json >/dev/null 2>&1'
screenshot shell-damaged-store
echo "shell story told"
