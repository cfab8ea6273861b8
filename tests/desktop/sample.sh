#!/usr/bin/env bash
# The user's own document in the preview: chosen, stepped through, remembered, given back for the supplied page, and missed
# where it is gone.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

preview_is_open() { has_window '^Preview$'; }
preview_is_closed() { has_no_window '^Preview$'; }
# shows COLOUR: most of the page in the preview has it
shows() {
    local place
    place=$(xdotool getwindowgeometry --shell "$(window_named '^Preview$')" 2>/dev/null) || return 1
    eval "$place"
    local share=$(import -window root -crop "$((WIDTH - 80))x$((HEIGHT - 80))+$((X + 40))+$((Y + 40))" miff:- 2>/dev/null |
        convert - -fill black +opaque "$1" -fill white -opaque "$1" -colorspace gray -format '%[fx:mean>0.3]' info:)
    [ "$share" = 1 ]
}
# The supplied sample has many colours, and none of these.
page_is_drawn() {
    local place
    place=$(xdotool getwindowgeometry --shell "$(window_named '^Preview$')" 2>/dev/null) || return 1
    eval "$place"
    [ "$(import -window root -crop "${WIDTH}x$HEIGHT+$X+$Y" miff:- 2>/dev/null | identify -format %k -)" -gt 100 ]
}
shows_supplied() { page_is_drawn && ! shows red && ! shows blue && ! shows lime; }
open_preview() {
    xdotool windowfocus --sync "$window"
    click 805 508
    until_true "the preview opens" preview_is_open
}
close_preview() {
    keys Escape
    until_true "the preview closes" preview_is_closed
}
# sample_command KEY: of the menu "Sample Document"
menus() { xdotool search --onlyvisible --class '^imprinter$' 2>/dev/null | grep -cvx "$window"; }
menus_are() { [ "$(menus)" = "$1" ]; }
sample_command() {
    xdotool windowfocus --sync "$window"
    keys alt+f
    until_true "the menu opens" menus_are 1
    keys d
    until_true "the menu in it opens" menus_are 2
    screenshot sample-menu
    keys "$1"
}
# answer TEXT: what the dialog that asks for the sample is given
answer() {
    until_true "the dialog opens" has_window "^Choose a Sample"
    xdotool windowfocus --sync "$(window_named "^Choose a Sample")"
    keys ctrl+a
    xdotool type --delay 10 -- "$1"
    keys Return
    until_true "the dialog closes" has_no_window "^Choose a Sample"
}
remembered() { setting_is ImprinterSamplePage "$1"; }
forgotten() { [ -z "$(setting ImprinterSampleDocument)" ]; }

# Three pages: red, blue, which is turned and of another size, and green.
python3 - "$home/letter.pdf" <<'END'
import sys
kids = ' '.join(f'{n} 0 R' for n in (3, 5, 7))
objects = ['<</Type/Catalog/Pages 2 0 R>>', f'<</Type/Pages/Kids[{kids}]/Count 3>>']
for at, (box, more, colour) in enumerate([('0 0 595 842', '', '1 0 0'), ('0 0 400 300', '/Rotate 90', '0 0 1'),
                                          ('0 0 595 842', '', '0 1 0')]):
    content = f'{colour} rg 0 0 2000 2000 re f'
    objects += [f'<</Type/Page/Parent 2 0 R/MediaBox[{box}]{more}/Contents {4 + 2 * at} 0 R>>',
                f'<</Length {len(content)}>>\nstream\n{content}\nendstream']
text, places = '%PDF-1.4\n', []
for number, body in enumerate(objects, 1):
    places.append(len(text))
    text += f'{number} 0 obj\n{body}\nendobj\n'
table = ''.join(f'{place:010} 00000 n \n' for place in places)
open(sys.argv[1], 'w').write(f'{text}xref\n0 {len(places) + 1}\n0000000000 65535 f \n{table}'
                             f'trailer<</Size {len(places) + 1}/Root 1 0 R>>\nstartxref\n{len(text)}\n%%EOF\n')
END

start_program
sample_command c
answer "$home/letter.pdf"
until_true "the document is remembered" setting_is ImprinterSampleDocument "$home/letter.pdf"
open_preview
until_true "its first page is shown" shows red
screenshot sample-1-first
keys ctrl+Next
until_true "the second page is remembered" remembered 2
until_true "the second page is shown" shows blue
screenshot sample-2-second
keys ctrl+Next ctrl+Next ctrl+Next
until_true "the last page is shown, and no further one" shows lime
remembered 3 || fail "page $(setting ImprinterSamplePage) is remembered"
keys ctrl+Prior
until_true "the second page is shown again" shows blue
close_preview
stop_program
[ "$program_status" -eq 0 ] || fail "the program ended with status $program_status: $(cat "$home/output")"
json_is "[x['name'] for x in c]" "['Received', 'Page of Pages', 'Confidential']" || fail "the configurations were changed"

# The next start shows the same page; then the supplied sample is wanted, and stays.
start_program
open_preview
until_true "the page of the last time is shown" shows blue
close_preview
sample_command s
until_true "the document is forgotten" forgotten
open_preview
until_true "the supplied sample is shown" shows_supplied
screenshot sample-3-supplied
close_preview
sample_command c
answer "$home/letter.pdf"
until_true "the document is remembered" setting_is ImprinterSampleDocument "$home/letter.pdf"
stop_program

# A document that is gone is said to be, and the supplied sample takes its place.
rm "$home/letter.pdf"
start_program
until_true "the document is forgotten" forgotten
open_preview
until_true "the supplied sample is shown" shows_supplied
screenshot sample-4-gone
close_preview
stop_program
! compgen -G "$XDG_RUNTIME_DIR/imprinter-*" >/dev/null || fail "pictures of pages are left behind"
! grep -E "exception|Exception|QObject|Segmentation" "$home/output" || fail "the program complained"
echo "sample story told"
