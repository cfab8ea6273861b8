#!/usr/bin/env bash
# Builds the Debian packages, build/packages/imprinter_VERSION_ARCH.deb and imprinter-dev_..., and prints their paths.
#   scripts/package.sh            builds them
#   scripts/package.sh --check    also checks them: lintian, size, and whether the program runs in a minimal Debian system
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/prepare.sh
[ "${1:-}" = --check ] || [ $# -eq 0 ] || { sed -n '2,4s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" >&2; exit 64; }
prepare build package >&2

folder=$PWD/build/packages
rm -rf "$folder"
quietly cmake --preset release -DIMPRINTER_TESTS=OFF -DIMPRINTER_BENCH=OFF
quietly cmake --build --preset release --target imprinter packaging
quietly cpack --config build/release/CPackConfig.cmake -B "$folder"
rm -rf "$folder/_CPack_Packages"
program=$(echo "$folder"/imprinter_*.deb)
development=$(echo "$folder"/imprinter-dev_*.deb)
printf '%s\n' "$program" "$development"
[ "${1:-}" = --check ] || exit 0

fail() { echo "package: $*" >&2; exit 1; }
lintian --allow-root --fail-on error,warning "$program" "$development" || fail "lintian has found something"
most=$((5 * 1000 * 1000))
size=$(stat -c %s "$program")
[ "$size" -lt $most ] || fail "$program has $size bytes; more than $most are too many"
echo "package: lintian is content; $size bytes"

# A system with nothing but what the package says it needs.
skip() { echo "package: not tried in a minimal system: $*"; exit 0; }
[ "$(id -u)" -eq 0 ] || skip "only root can make one"
root=$(mktemp -d)
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf --one-file-system "$root"' EXIT
log=$folder/debootstrap.log
mirror=$(awk '/^(deb |URIs:)/ {for (i = 2; i <= NF; ++i) if ($i ~ /^https?:/) {print $i; exit}}' \
    /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null || true)
debootstrap --variant=minbase bookworm "$root" ${mirror:+"$mirror"} >"$log" 2>&1 ||
    skip "debootstrap failed: $(tail -1 "$log")"
# The loader finds a program's own place there.
mountpoint -q "$root/proc" || mount -t proc proc "$root/proc" 2>>"$log" || skip "nothing may be mounted here"
cp "$program" "$root/imprinter.deb"
inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
[ ! -f /etc/resolv.conf ] || cp /etc/resolv.conf "$root/etc/resolv.conf"
# What this machine needs to reach its mirror, the other needs too.
cp -n /etc/apt/apt.conf.d/* "$root/etc/apt/apt.conf.d/" 2>/dev/null || true
{ inside apt-get update && inside apt-get install -y --no-install-recommends /imprinter.deb; } >>"$log" 2>&1 ||
    fail "the package cannot be installed in a minimal system: $(tail -1 "$log")"
[ "$(inside imprinter list)" = $'Received\nPage of Pages\nConfidential' ] || fail "imprinter list"
sample=/usr/lib/imprinter/ImprinterPrefPane.prefPane/Preview.jpg
inside imprinter stamp --configuration Received --output /stamped.jpg $sample || fail "imprinter stamp"
! cmp -s "$root$sample" "$root/stamped.jpg" || fail "imprinter stamp has stamped nothing"
painted=$(inside env QT_QPA_PLATFORM=offscreen IMPRINTER_END_AFTER_PAINT=1 imprinter 2>"$folder/window.log") ||
    fail "the window: $(cat "$folder/window.log")"
[ "$painted" = painted ] || fail "the window was not painted: $(cat "$folder/window.log")"
inside apt-get purge -y imprinter >>"$log" 2>&1 || fail "the package cannot be removed"
[ -z "$(find "$root/usr" -name '*imprinter*')" ] || fail "removing it leaves $(find "$root/usr" -name '*imprinter*')"
echo "package: installed, ran and was removed in a minimal system"
