#!/usr/bin/env bash
# Runs the measured claims of a build; usage: run.sh BUILD-FOLDER. Answers 1 if one of them does not hold.
set -uo pipefail
bin=$1/bin
home=$(mktemp -d)
memory=$(mktemp -d -p /dev/shm) # where a session keeps its runtime folder
trap 'rm -rf "$home" "$memory"' EXIT
export HOME=$home XDG_DATA_HOME=$home/data XDG_CONFIG_HOME=$home/config XDG_RUNTIME_DIR=$memory LC_ALL=C.UTF-8
chmod 700 "$home" "$memory"
status=0
fonts=$(realpath "$1")/many-fonts # made once: 1,500 families of two faces
[ -f "$fonts/fonts.conf" ] || /usr/bin/python3 tests/data/fonts/make.py many "$fonts" 1500 || status=1
claim() { "$@" || status=1; }

echo "$(nproc) cores, $(uname -sr), $(date -u +%F)"
IMPRINTER_END_AFTER_PAINT=1 claim xvfb-run -a -s '-screen 0 1280x1024x24' "$bin/bench_opening" 21 "$bin/bare_window" "$bin/imprinter"
claim "$bin/bench_list"
claim "$bin/bench_page_list"
FONTCONFIG_FILE=$fonts/fonts.conf claim "$bin/bench_fonts"
claim xvfb-run -a -s '-screen 0 1280x1024x24' "$bin/bench_title"
claim xvfb-run -a -s '-screen 0 1280x1024x24' "$bin/bench_preview"
claim "$bin/bench_stamping" "$bin/imprinter"
exit $status
