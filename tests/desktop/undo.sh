#!/usr/bin/env bash
# What was done to configurations is undone and done again: an edit, and a deletion with its place in the list and in a
# combined configuration. What is undone is neither in the journal nor in the store.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

minus="87 508"
row() { echo "100 $((71 + 28 * $1))"; }
unsaved() { compgen -G "$XDG_DATA_HOME/imprinter/.configurations.json.unsaved-*" >/dev/null; }
nothing_unsaved() { ! unsaved; }
names() { json "[x['name'] for x in c]"; }
# delete_selected: with its key, and the answer to the question
delete_selected() {
    keys Delete
    until_true "the question is asked" other_window_is_there
    xdotool windowfocus --sync "$(other_window)" key Return
    until_true "the question is answered" other_window_is_gone
    xdotool windowfocus --sync "$window"
}
# with_menu KEY: of the Edit menu
with_menu() {
    keys alt+e
    until_true "the menu opens" other_window_is_there
    screenshot "undo-5-menu-$1"
    keys "$1"
    until_true "the menu closes" other_window_is_gone
}

start_program
fill 605 88 40 Return
until_true "the edit is in a journal" unsaved
screenshot undo-1-edited
keys Tab ctrl+z # in a field with nothing of its own to undo
until_true "there is nothing to keep once the edit is undone" nothing_unsaved
screenshot undo-2-undone
keys ctrl+shift+z
until_true "the edit is there again" unsaved
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
json_is "[float(n) for n in c[0]['offset']]" "[40.0, 0.0]" || fail "the offset was stored as $(json "c[0]['offset']")"

# A combined configuration has the second one for a member, which is then deleted.
python3 - "$store" <<'END'
import json, sys
whole = json.load(open(sys.argv[1]))
members = [whole['configurations'][1]['uniqueID'], whole['configurations'][0]['uniqueID']]
whole['configurations'].append({'uniqueID': '11111111-2222-4333-8444-555555555555', 'name': 'Both',
                                'combinedConfiguration': True, 'members': members})
json.dump(whole, open(sys.argv[1], 'w'))
END
all="['Received', 'Page of Pages', 'Confidential', 'Both']"
start_program
click $(row 1)
delete_selected
until_true "the deletion is in a journal" unsaved
screenshot undo-3-deleted
keys ctrl+z
until_true "there is nothing to keep once the deletion is undone" nothing_unsaved
screenshot undo-4-back
stop_program
[ "$(names)" = "$all" ] || fail "after undoing the deletion the store has $(names)"
json_is "c[3]['members'] == [c[1]['uniqueID'], c[0]['uniqueID']]" True ||
    fail "the members came back as $(json "c[3]['members']")"

# Deleted, undone by the menu, done again by the menu: it is gone.
start_program
click $(row 0) # the other one was selected last, and a click on it would rename it
click $(row 1)
delete_selected
until_true "the deletion is in a journal" unsaved
with_menu u
until_true "there is nothing to keep once the deletion is undone" nothing_unsaved
with_menu r
until_true "the deletion is in a journal again" unsaved
stop_program
[ "$(names)" = "['Received', 'Confidential', 'Both']" ] || fail "after doing the deletion again the store has $(names)"
json_is "c[2]['members'] == [c[0]['uniqueID']]" True || fail "the one that is gone is still a member"
! grep -E "exception|Exception|QObject|Segmentation" "$home/output" || fail "the program complained"
echo "undo story told"
