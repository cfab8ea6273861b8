#!/usr/bin/env bash
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh" "$@"

example=$stage/share/doc/imprinter-dev/examples/minimal-host
[ "$(wc -l <"$example/main.cpp")" -lt 200 ] || fail "that is no minimal host"
cmake -S "$example" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$stage" -DCMAKE_CXX_FLAGS='-Wall -Wextra -Werror' \
    >"$work/log" 2>&1 && cmake --build "$work/build" >>"$work/log" 2>&1 || fail "$(cat "$work/log")"

# What the program keeps in its settings, an identifier that no host has any more, is not this host's.
mkdir -p "$XDG_CONFIG_HOME/imprinter"
printf '[General]\nImprinterPrefLastSelected=gone\n' >"$XDG_CONFIG_HOME/imprinter/imprinter.ini"
said=$("$work/build/minimal-host" --once 2>"$work/log") || fail "it ended with $?: $(cat "$work/log")"
expected=$'opened\nlisted First\nlisted Both\nsaveConfigurations'
[ "$said" = "$expected" ] || fail "it said: $said"
# The libraries it shares with the pane are the installed ones.
used=$(LD_TRACE_LOADED_OBJECTS=1 "$work/build/minimal-host" | awk '/libimprinter/ {print $3}' | xargs -n 1 realpath)
[ -n "$used" ] && ! grep -v "^$(realpath "$stage")/lib/imprinter/lib/" <<<"$used" || fail "libraries: $used"
