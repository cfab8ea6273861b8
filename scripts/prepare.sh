# Installs what this machine lacks. To be sourced; usage: prepare GROUP...   (groups of scripts/packages.txt)

prepare() {
    local list missing=() package group
    list=$(dirname "${BASH_SOURCE[0]}")/packages.txt
    for group in "$@"; do
        for package in $(awk -v want="[$group]" '/^#/ {next} /^\[/ {on = ($0 == want); next} on' "$list"); do
            dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
        done
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "These packages are missing and neither root nor sudo is there to install them: ${missing[*]}" >&2; return 1; }
        as_root=(sudo)
    fi
    echo "Installing with apt: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq </dev/null &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null >/dev/null ||
        { echo "apt could not install: ${missing[*]}" >&2; return 1; }
}

# Runs a command without its output; shows that when the command fails.
quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 || status=$?
    [ $status -eq 0 ] || cat "$log" >&2
    rm -f "$log"
    return $status
}
