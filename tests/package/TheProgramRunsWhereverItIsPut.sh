#!/usr/bin/env bash
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh" "$@"

moved=$work/another/place
mkdir -p "$work/another"
cp -r "$stage" "$moved"
program=$moved/bin/imprinter
# It loads its libraries and bundles from there, not from where it was built or installed first.
used=$(LD_TRACE_LOADED_OBJECTS=1 "$program" | awk '/libimprinter/ {print $3}' | xargs -n 1 realpath)
[ "$used" = "$moved/lib/imprinter/lib/libimprinter-platform.so" ] || fail "libraries: $used"

[ "$("$program" list)" = $'Received\nPage of Pages\nConfidential' ] || fail "list"
sample=$moved/lib/imprinter/ImprinterPrefPane.prefPane/Preview.jpg
"$program" stamp --title HELLO --fill red --output "$work/stamped.jpg" "$sample"
! cmp -s "$sample" "$work/stamped.jpg" || fail "nothing was stamped"
[ "$(IMPRINTER_END_AFTER_PAINT=1 "$program" 2>"$work/log")" = painted ] || fail "the window: $(cat "$work/log")"
# The window's own texts and the pane's come from the bundles.
strace -f -e trace=openat -o "$work/trace" env LC_ALL=C.UTF-8 LANG=de_DE.UTF-8 LANGUAGE=de IMPRINTER_END_AFTER_PAINT=1 "$program" \
    >/dev/null 2>&1
for bundle in ImprinterHost.bundle ImprinterPrefPane.prefPane; do
    grep -q "$moved/lib/imprinter/$bundle/.*Localizable.strings\".* = [0-9]" "$work/trace" || fail "no texts of $bundle"
done
for library in window platform-qt host; do
    grep -q "\"$moved/[^\"]*/libimprinter-$library.so\".* = [0-9]" "$work/trace" || fail "the library $library is another one"
done
! grep -q "\"$stage/" "$work/trace" || fail "$(grep -m 1 "\"$stage/" "$work/trace")"
