#!/usr/bin/env bash
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh" "$@"
share=$stage/share

desktop-file-validate "$share/applications/imprinter.desktop" || fail "desktop entry"
appstreamcli validate --no-net "$share/metainfo/org.imprinter.Imprinter.metainfo.xml" || fail "metadata"
# The desktop entry names a program and an icon that are there, and kinds of files that the metadata names too.
entry() { sed -n "s/^$1=//p" "$share/applications/imprinter.desktop"; }
program=$(entry Exec | cut -d' ' -f1)
[ -x "$stage/bin/$program" ] || fail "no program $program"
for size in 16 24 32 48 64 128 256; do
    picture=$share/icons/hicolor/${size}x$size/apps/$(entry Icon).png
    [ "$(identify -format '%wx%h' "$picture")" = "${size}x$size" ] || fail "$picture"
done
[ -s "$share/icons/hicolor/scalable/apps/$(entry Icon).svg" ] || fail "no icon without size"
entry MimeType | tr ';' '\n' | while read -r type; do
    [ -z "$type" ] || grep -q "<mediatype>$type</mediatype>" "$share"/metainfo/*.xml || fail "$type"
done

MANPATH=$share/man man imprinter 2>/dev/null | grep -q 'EXIT STATUS' || fail "manual page"
# As the completion's loader finds it.
[ "$(PATH=$stage/bin:$PATH bash -c "source '$share/bash-completion/completions/imprinter'
    COMP_WORDS=(imprinter unst) COMP_CWORD=1; _imprinter; echo \${COMPREPLY[*]}")" = unstamp ] || fail "completion"
gzip -dc "$share/doc/imprinter/changelog.gz" | head -1 | grep -q "^imprinter ($("$stage/bin/imprinter" --version | cut -d' ' -f2)) " ||
    fail "the change log's version"
