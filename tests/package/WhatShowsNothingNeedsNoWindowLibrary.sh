#!/usr/bin/env bash
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh" "$@"

cp -r "$stage" "$work/copy"
program=$work/copy/bin/imprinter
libraries=$work/copy/lib/imprinter/lib
sample=$work/copy/lib/imprinter/ImprinterPrefPane.prefPane/Preview.jpg

# The program, with what it is given, ends with status 1, one line about the library $1 and nothing else.
is_refused() {
    local library=$1 status=0
    shift
    "$program" "$@" >"$work/out" 2>"$work/log" || status=$?
    [ "$status" = 1 ] && [ ! -s "$work/out" ] && [ "$(wc -l <"$work/log")" = 1 ] || fail "$*: $status $(cat "$work/out" "$work/log")"
    grep -q "^imprinter: the window cannot be opened: .*$library" "$work/log" || fail "$*: $(cat "$work/log")"
}
without() {
    is_refused "$1"
    is_refused "$1" pictures "$work/pictures"
    [ ! -e "$work/pictures" ] || fail "a folder for pictures that nobody made"
    [ "$("$program" list)" = $'Received\nPage of Pages\nConfidential' ] || fail "list"
    "$program" stamp --title HELLO --output "$work/stamped.jpg" "$sample" && [ -s "$work/stamped.jpg" ] || fail "stamp"
    rm "$work/stamped.jpg"
}
for library in libimprinter-window.so libimprinter-platform-qt.so; do
    file=$libraries/$library
    cp "$file" "$work/kept"
    rm "$file"
    without "$library"
    : >"$file"
    without "$library"
    echo "no library" >"$file"
    without "$library"
    cp "$work/kept" "$file"
done
# Another library in its place.
cp "$libraries/libimprinter-host.so" "$libraries/libimprinter-window.so"
without libimprinter-window.so
cp "$stage/lib/imprinter/lib/libimprinter-window.so" "$libraries/libimprinter-window.so"
"$program" pictures "$work/pictures" >/dev/null || fail "the whole tree"
