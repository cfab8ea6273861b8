# Shared by the stories about what is installed. To be sourced with the folder it is installed in; gives $stage, and $work, a
# folder that is gone afterwards.
set -euo pipefail
stage=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work XDG_DATA_HOME=$work/data XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY LD_LIBRARY_PATH
export QT_QPA_PLATFORM=offscreen
chmod 700 "$work"

fail() { echo "FAILED: $*" >&2; exit 1; }
