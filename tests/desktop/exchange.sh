#!/usr/bin/env bash
# Configurations are exported to files and imported from them: one, all of them, one that is here already and says
# something else, and a file that is none. The store is left as it is where nothing is imported.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# file_command KEY: of the File menu
file_command() {
    xdotool windowfocus --sync "$window"
    keys alt+f
    until_true "the menu opens" other_window_is_there
    keys "$1"
}
# answer NAME TEXT: types into the dialog of that name, and Return
answer() {
    until_true "the dialog \"$1\" opens" has_window "^$1"
    xdotool windowfocus --sync "$(window_named "^$1")"
    keys ctrl+a
    xdotool type --delay 10 -- "$2"
    keys Return
    until_true "the dialog \"$1\" closes" has_no_window "^$1"
}
in_file() { python3 -c "import json,sys; c=json.load(open(sys.argv[1]))['configurations']; print($2)" "$1" 2>/dev/null; }
in_file_is() { [ "$(in_file "$1" "$2")" = "$3" ]; }
# press KEY SHOT: answers a message
press() {
    until_true "a message comes" other_window_is_there
    xdotool windowfocus --sync "$(other_window)"
    screenshot "$2"
    keys "$1"
    until_true "the message goes" other_window_is_gone
}
names() { json "[x['name'] for x in c]"; }

mkdir "$home/files"
one=$home/files/one.json all=$home/files/all.json
start_program
file_command e
answer "Export Configurations" "$one"
until_true "one configuration is exported" in_file_is "$one" "[x['name'] for x in c]" "['Received']"
file_command a
answer "Export Configurations" "$all"
until_true "all are exported" in_file_is "$all" "len(c)" 3
screenshot exchange-1-exported

# The file of one says something else now, and has one more, which is new here.
python3 - "$one" <<'END'
import json, sys
whole = json.load(open(sys.argv[1]))
more = json.loads(json.dumps(whole['configurations'][0]))
more.update(uniqueID='11111111-2222-4333-8444-555555555555', name='Imported')
whole['configurations'][0]['rotation'] = 45
whole['configurations'].append(more)
json.dump(whole, open(sys.argv[1], 'w'))
END
file_command i
answer "Import Configurations" "$one"
press Escape exchange-2-asked
file_command i
answer "Import Configurations" "$one"
press alt+r exchange-3-asked-again
screenshot exchange-4-imported
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
[ "$(names)" = "['Received', 'Page of Pages', 'Confidential', 'Imported']" ] || fail "the store has $(names)"
json_is "float(c[0]['rotation'])" "45.0" || fail "the one that was here was not replaced"

# What is no file of configurations is named, and changes nothing.
echo "no configurations" >"$home/files/letter.json"
before=$(md5sum <"$store")
start_program
file_command i
answer "Import Configurations" "$home/files/letter.json"
press Return exchange-5-refused
file_command i
answer "Import Configurations" "$all"
press alt+b exchange-6-both # Received, which says something else by now
stop_program
wanted="['Received', 'Page of Pages', 'Confidential', 'Imported', 'Received copy', 'Page of Pages copy', 'Confidential copy']"
[ "$(names)" = "$wanted" ] || fail "the store has $(names)"
[ "$(cat "$home/files/letter.json")" = "no configurations" ] || fail "the file that is none was changed"
[ "$(md5sum <"$store")" != "$before" ] || fail "nothing was stored"
! grep -E "exception|Exception|QObject|Segmentation" "$home/output" || fail "the program complained"
echo "exchange story told"
