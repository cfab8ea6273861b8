#!/usr/bin/env bash
# Before documents are stamped the program says what it would come upon: it can be left at that, gone on, and there is
# nothing to go on with where none can be stamped.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# answer NAME TEXT: types into the dialog of that name, and Return
answer() {
    until_true "the dialog \"$1\" opens" has_window "^$1"
    xdotool windowfocus --sync "$(window_named "^$1")"
    [ -z "$2" ] || { keys ctrl+a; xdotool type --delay 10 -- "$2"; }
    keys Return
    until_true "the dialog \"$1\" closes" has_no_window "^$1"
}
# remarks KEY SHOT: answers the list of remarks
remarks() {
    until_true "the remarks come" has_window "^Check Documents"
    xdotool windowfocus --sync "$(window_named "^Check Documents")"
    screenshot "$2"
    keys "$1"
    until_true "the remarks go" has_no_window "^Check Documents"
}
stamp() {
    xdotool windowfocus --sync "$window"
    keys ctrl+o
    answer "Stamp Document" "$1"
}

# A page that the stamp is larger than, one of the usual size, a text, and a locked document.
mkdir "$home/documents"
cd "$home/documents"
page() {
    python3 - "$1" "$2" <<'END'
import sys
objects = ['<</Type/Catalog/Pages 2 0 R>>', '<</Type/Pages/Kids[3 0 R]/Count 1>>',
           f'<</Type/Page/Parent 2 0 R/MediaBox[0 0 {sys.argv[2]}]>>']
text, places = '%PDF-1.4\n', []
for number, body in enumerate(objects, 1):
    places.append(len(text))
    text += f'{number} 0 obj\n{body}\nendobj\n'
table = ''.join(f'{place:010} 00000 n \n' for place in places)
open(sys.argv[1], 'w').write(f'{text}xref\n0 4\n0000000000 65535 f \n{table}trailer<</Size 4/Root 1 0 R>>\n'
                             f'startxref\n{len(text)}\n%%EOF\n')
END
}
page small.pdf "100 60"
page letter.pdf "595 842"
echo "a text" >text.pdf
qpdf --encrypt secret owner 256 -- letter.pdf locked.pdf
made() { ls "$home/documents" | tr '\n' ' '; }
before=$(made)

start_program
# Left at that, nothing is there that was not.
stamp "$home/documents/small.pdf"
remarks Escape preflight-1-asked
[ "$(made)" = "$before" ] || fail "something was stamped: $(made)"
# Gone on with, it is stamped.
stamp "$home/documents/small.pdf"
remarks Return preflight-2-asked-again
answer "Save the Stamped Document" ""
until_true "the document is stamped" test -s small-stamped.pdf
[ -n "$(pdftotext small-stamped.pdf - | tr -d '[:space:]')" ] || fail "the stamp is not there"
# Without anything to say, nothing is said.
stamp "$home/documents/letter.pdf"
answer "Save the Stamped Document" ""
until_true "the other document is stamped" test -s letter-stamped.pdf
# One that is no document cannot be gone on with.
stamp "$home/documents/text.pdf"
remarks Return preflight-3-none
# A locked one is named, and its password is asked for on the way.
stamp "$home/documents/locked.pdf"
remarks Return preflight-4-locked
answer "Save the Stamped Document" ""
until_true "the password is asked for" has_window "^Stamp Document"
password_asked() { [ "$(xdotool search --onlyvisible --name '^Stamp Document' 2>/dev/null | wc -l)" -ge 2 ]; }
until_true "the question lies over the progress" password_asked
screenshot preflight-5-password
smaller() { # the question is the one that came last
    xdotool search --onlyvisible --name '^Stamp Document' 2>/dev/null | tail -n 1
}
xdotool windowfocus --sync "$(smaller)"
xdotool type --delay 10 -- owner
keys Return
until_true "the locked document is stamped" test -s locked-stamped.pdf
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
[ "$(made)" = "letter-stamped.pdf letter.pdf locked-stamped.pdf locked.pdf small-stamped.pdf small.pdf text.pdf " ] ||
    fail "the folder has $(made)"
qpdf --password=owner --requires-password locked-stamped.pdf
[ $? -eq 3 ] || fail "the stamped document is not locked as it was"
! grep -E "exception|Exception|QObject|Segmentation" "$home/output" || fail "the program complained"
echo "preflight story told"
