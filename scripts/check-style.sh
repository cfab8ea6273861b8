#!/usr/bin/env bash
# Checks what a compiler does not: that the sources are formatted, and that the string tables are complete.
#   scripts/check-style.sh [sources|texts]    one of them; without an argument both
#   scripts/check-style.sh --fix              formats the sources
# CLANG_FORMAT names another clang-format; the one of Debian 12 (14) is what counts.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/sources.sh

formatted() { sources | xargs -0 "${CLANG_FORMAT:-clang-format}" "$@"; }

case "${1:-all}" in
    sources) formatted --dry-run -Werror ;;
    texts) python3 resources/check-strings.py ;;
    all) formatted --dry-run -Werror; python3 resources/check-strings.py ;;
    --fix) formatted -i ;;
    *) sed -n '2,5s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" >&2; exit 64 ;;
esac
