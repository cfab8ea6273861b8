#!/usr/bin/env bash
# Makes the pictures in docs/images anew, all of them: light, dark and of high contrast, in several languages and scales.
# Everybody's look alike: the toolkit's own style and one font, whatever the desktop has.
#   scripts/pictures.sh [PROGRAM [FOLDER]]    the program of the dev build, and docs/images, unless told otherwise
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
program=$(realpath "${1:-$root/build/dev/bin/imprinter}")
images=${2:-$root/docs/images}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
chmod 700 "$work"
mkdir -p "$images"
cat >"$work/fonts.conf" <<'END'
<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
    <include>/etc/fonts/fonts.conf</include>
    <alias binding="strong"><family>sans-serif</family><prefer><family>DejaVu Sans</family></prefer></alias>
    <alias binding="strong"><family>Sans Serif</family><prefer><family>DejaVu Sans</family></prefer></alias>
</fontconfig>
END

# draw NAME LOCALE [VARIABLE=VALUE...]   leaves the program's pictures in $work/NAME
draw() {
    local name=$1 locale=$2
    shift 2
    env "$@" LC_ALL="$locale.UTF-8" LANGUAGE= HOME="$work" XDG_DATA_HOME="$work/data" XDG_CONFIG_HOME="$work/config" \
        XDG_RUNTIME_DIR="$work" FONTCONFIG_FILE="$work/fonts.conf" QT_QPA_PLATFORM=offscreen \
        QT_STYLE_OVERRIDE=Fusion "$program" pictures "$work/$name" >/dev/null
}

# keep NAME PICTURE AS   one of them, as small as it goes with 256 colours
keep() {
    convert "$work/$1/$2.png" -strip -dither None -colors 256 -define png:compression-level=9 "PNG8:$images/$3.png"
}

# sheet NAME   all that is asked, told or chosen over the window on one picture
sheet() {
    montage "$work/$1"/{preflight,import,unsaved,progress,menu-edit,menu-sample}.png -tile 2x -geometry +8+8 \
        -background grey "$work/$1/screens.png"
}

draw light en_US
sheet light
keep light screens screens
keep light preflight preflight
keep light menu-sample sample
keep light pane-appearance appearance
keep light pane-location location
keep light pane-combined combined
keep light window-preview preview
keep light window-first first
keep light order order
keep light settings settings
draw dark en_US IMPRINTER_LOOK=dark
keep dark pane-appearance appearance-dark
keep dark pane-location location-dark
sheet dark
keep dark screens screens-dark
draw contrast en_US IMPRINTER_LOOK=contrast
keep contrast pane-appearance appearance-contrast
sheet contrast
keep contrast screens screens-contrast
draw de de_DE
keep de pane-appearance appearance-de
sheet de
keep de screens screens-de
draw ja ja_JP
keep ja pane-location location-ja
sheet ja
keep ja screens screens-ja
draw ar ar_EG
keep ar pane-appearance appearance-ar
sheet ar
keep ar screens screens-ar
draw larger en_US QT_SCALE_FACTOR=1.5
keep larger pane-appearance appearance-150
sheet larger
keep larger screens screens-150
draw large en_US QT_SCALE_FACTOR=2
keep large pane-appearance appearance-200
sheet large
keep large screens screens-200
du -bc "$images"/*.png | sort -n
