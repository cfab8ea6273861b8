#!/usr/bin/env bash
# Runs clang-tidy with the file .clang-tidy of the root; it takes minutes, so that ./test does not.
#   scripts/tidy.sh [FOLDER...]     without folders the whole tree
# How each source is compiled is read from a tree that is configured for clang and never built.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/prepare.sh
source scripts/sources.sh
prepare build test tidy

cmake --preset tidy >/dev/null
# Headers are checked with the sources that include them; a source of an option that is off has no command to be read.
compiled=$(sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' build/tidy/compile_commands.json)
sources "$@" | while IFS= read -r -d '' file; do
    grep -qxF "$PWD/$file" <<<"$compiled" && printf '%s\0' "$file" || true
done | xargs -0 -r -n 1 -P "${JOBS:-$(nproc)}" clang-tidy -p build/tidy --quiet \
    --extra-arg=-Wno-unknown-warning-option 2> >(grep -v -E "^[0-9]+ warnings? (and [0-9]+ errors? )?generated" >&2)
