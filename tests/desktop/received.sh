#!/usr/bin/env bash
# Somebody who has only read the README makes a red bordered "RECEIVED page n of m" in the window, puts it on every page of a
# document, and needs no more than twelve clicks for it besides typing.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

clicks=0
# counted X Y: a click of that person
counted() {
    clicks=$((clicks + 1))
    click "$@"
}
# chosen KEY...: opens the menu in the title and chooses an item of it, which are two clicks; here the keys find the item
chosen() {
    counted 813 96
    until_true "the menu of placeholders opens" other_window_is_there
    clicks=$((clicks + 1))
    keys "$@" Return
    until_true "the menu closes" other_window_is_gone
}
# answer NAME TEXT: types into the dialog of that name, and Return
answer() {
    until_true "the dialog \"$1\" opens" has_window "^$1"
    xdotool windowfocus --sync "$(window_named "^$1")"
    [ -z "$2" ] || { keys ctrl+a; xdotool type --delay 10 -- "$2"; }
    keys Return
}

mkdir "$home/documents"
python3 - "$home/documents/letter.pdf" <<'END'
import sys
objects = ['<</Type/Catalog/Pages 2 0 R>>', '<</Type/Pages/Kids[3 0 R 4 0 R 5 0 R]/Count 3>>']
objects += ['<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]>>'] * 3
text, places = '%PDF-1.4\n', []
for number, body in enumerate(objects, 1):
    places.append(len(text))
    text += f'{number} 0 obj\n{body}\nendobj\n'
table = ''.join(f'{place:010} 00000 n \n' for place in places)
open(sys.argv[1], 'w').write(f'{text}xref\n0 6\n0000000000 65535 f \n{table}trailer<</Size 6/Root 1 0 R>>\n'
                             f'startxref\n{len(text)}\n%%EOF\n')
END

start_program
screenshot received-1-opened
counted 400 306 # Every Page
counted 364 48  # Appearance
counted 650 101 # in the title, behind what it has
keys BackSpace
xdotool type --delay 20 -- "page "
chosen Down Down
xdotool type --delay 20 -- " of "
chosen Down Down Down
screenshot received-2-edited
keys ctrl+o
answer "Stamp Document" "$home/documents/letter.pdf"
answer "Save the Stamped Document" ""
result=$home/documents/letter-stamped.pdf
until_true "the stamped document is there" test -s "$result"
screenshot received-3-stamped
stop_program

[ $clicks -le 12 ] || fail "that took $clicks clicks"
for page in 1 2 3; do
    text=$(pdftotext -f $page -l $page "$result" - | head -n 1)
    [ "$text" = "RECEIVED page $page of 3" ] || fail "page $page says \"$text\""
    # Of what the stamp puts on a white page, most is red, and its upper edge is one red line.
    pdftoppm -r 144 -f $page -l $page -png "$result" "$home/page-$page"
    python3 - "$(ls "$home/page-$page"*.png)" <<'END' || fail "page $page has no red border"
import subprocess, sys
pixels = subprocess.run(['convert', sys.argv[1], '-depth', '8', 'ppm:-'], stdout=subprocess.PIPE).stdout
_, size, _, data = pixels.split(b'\n', 3)
width, height = map(int, size.split())
inked = {}
for y in range(height):
    row = data[3 * width * y:3 * width * (y + 1)]
    if row.count(b'\xff') < len(row):
        inked[y] = [x for x in range(width) if row[3 * x:3 * x + 3] != b'\xff\xff\xff']
red = lambda y, x: data[3 * (width * y + x)] > 180 and data[3 * (width * y + x) + 1] < 80
top = min(inked) + 1
sys.exit(not (len(inked[top]) > 200 and all(red(top, x) for x in inked[top][2:-2]) and
              inked[top][-1] - inked[top][0] + 1 == len(inked[top])))
END
done
echo "received story told, with $clicks clicks"
