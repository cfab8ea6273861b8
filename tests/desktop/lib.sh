# For stories told on the real program in a real X server. Source it; then `start_program`, act, `stop_program`.
# Nothing sleeps for a fixed time: `until_true` polls a condition and fails when it does not come true.
#
# Needs IMPRINTER (the program) and SHOTS (a folder for screenshots) in the environment.

set -uo pipefail
home=$(mktemp -d)
chmod 700 "$home"
export HOME=$home XDG_DATA_HOME=$home/data XDG_CONFIG_HOME=$home/config XDG_RUNTIME_DIR=$home
export LC_ALL=C.UTF-8 QT_QPA_PLATFORM=xcb QT_STYLE_OVERRIDE=Fusion
unset WAYLAND_DISPLAY
# The places that the stories click at hold for one font, whatever else is installed.
export FONTCONFIG_FILE=$home/fonts.conf
cat >"$FONTCONFIG_FILE" <<'END'
<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
    <include>/etc/fonts/fonts.conf</include>
    <alias binding="strong"><family>sans-serif</family><prefer><family>DejaVu Sans</family></prefer></alias>
    <alias binding="strong"><family>Sans Serif</family><prefer><family>DejaVu Sans</family></prefer></alias>
</fontconfig>
END
store=$XDG_DATA_HOME/imprinter/configurations.json
settings=$XDG_CONFIG_HOME/imprinter/imprinter.ini
program_pid=
mkdir -p "$SHOTS"

fail() {
    echo "FAILED: $*" >&2
    screenshot failure
    exit 1
}

# until_true WHAT COMMAND...   polls for at most 20 seconds
until_true() {
    local what=$1 deadline=$((SECONDS + 20))
    shift
    until "$@"; do
        [ $SECONDS -lt $deadline ] || fail "$what"
        sleep 0.05
    done
}

# A display of our own, on a number the server picks.
Xvfb -displayfd 7 -screen 0 1280x1024x24 -nolisten tcp 7>"$home/display" 2>/dev/null &
xvfb_pid=$!
until_true "Xvfb starts" test -s "$home/display"
export DISPLAY=:$(cat "$home/display")

at_end() {
    [ -n "$program_pid" ] && kill "$program_pid" 2>/dev/null
    kill "$xvfb_pid" 2>/dev/null
    rm -rf "$home"
}
trap at_end EXIT

window_named() { xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n 1; }
has_window() { [ -n "$(window_named "$1")" ]; }
has_no_window() { [ -z "$(window_named "$1")" ]; }

# start_program [ARGUMENT...]: opens the window at 0,0 and waits until it is there; its id is in $window
start_program() {
    "$IMPRINTER" "$@" >"$home/output" 2>&1 &
    program_pid=$!
    until_true "the window opens" has_window '^Imprinter$'
    window=$(window_named '^Imprinter$')
    xdotool windowmove --sync "$window" 0 0 windowfocus --sync "$window"
}

program_ended() { ! kill -0 "$program_pid" 2>/dev/null; }
stop_program() {
    xdotool windowfocus --sync "$window" key ctrl+q
    until_true "the program ends" program_ended
    wait "$program_pid"
    program_status=$?
    program_pid=
}

# click X Y [BUTTON]: in the coordinates of the main window
click() { xdotool mousemove --sync --window "$window" "$1" "$2" click "${3:-1}"; }
keys() { xdotool key --delay 20 "$@"; }
# fill X Y TEXT KEY: replaces the text of the field at this place and ends the edit with the key
fill() {
    click "$1" "$2"
    keys ctrl+a
    if [ -n "$3" ]; then xdotool type --delay 20 -- "$3"; else keys BackSpace; fi
    keys "$4"
}
# A window of the program beside the main one: a menu, a message, a panel.
other_window() { xdotool search --onlyvisible --class imprinter 2>/dev/null | grep -vx "$window" | head -n 1; }
other_window_is_there() { [ -n "$(other_window)" ]; }
other_window_is_gone() { [ -z "$(other_window)" ]; }
screenshot() { import -window root "$SHOTS/$1.png" 2>/dev/null || true; }

# The value of a line KEY=VALUE of the settings.
setting() { sed -n "s/^$1=//p" "$settings" 2>/dev/null; }
setting_is() { [ "$(setting "$1")" = "$2" ]; }
# json EXPRESSION: of the stored configurations, as python writes it; c is the list.
json() { python3 -c "import json,sys; c=json.load(open('$store'))['configurations']; print($1)" 2>/dev/null; }
json_is() { [ "$(json "$1")" = "$2" ]; }
