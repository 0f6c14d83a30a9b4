#!/usr/bin/env bash
# Installs what is missing, builds the program and starts it.
#   ./run.sh [survey.plxs]
# Where there is no display, the window is served over VNC to this machine alone.
set -uo pipefail

# The program takes its whole command line, joined with blanks, as one path.
survey=
[ $# -eq 0 ] || survey=$(realpath -ms -- "$*")
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. scripts/common.sh

display=yes
[ -n "${DISPLAY-}${WAYLAND_DISPLAY-}" ] || display=

scripts/install-dependencies.sh ${display:---screen} || exit 1
build_preset release -- --target pollarix pollarix_data || exit 1

program=(build/release/bin/pollarix)
[ -z "$survey" ] || program+=("$survey")
[ -z "$display" ] || exec "${program[@]}"

# No display: a screen in memory, a window manager for frames and focus, and a VNC server on it.
screen=$(mktemp -d)
started=()
leave() {
    local id
    for id in "${started[@]}"; do
        kill "$id" 2>/dev/null
    done
    wait
    rm -rf "$screen"
}
trap leave EXIT
trap 'exit 130' INT TERM HUP

export XAUTHORITY=$screen/authority
export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$screen}
cookie=$(od -An -N16 -tx1 /dev/urandom | tr -d ' \n')
touch "$XAUTHORITY"
# The number is not known yet; the server takes any cookie of the file.
xauth -q -f "$XAUTHORITY" add ":0" . "$cookie" 2>/dev/null
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -auth "$XAUTHORITY" \
    3>"$screen/number" >"$screen/xvfb.log" 2>&1 &
started+=($!)
for _ in $(seq 100); do
    [ ! -s "$screen/number" ] || break
    sleep 0.1
done
if [ ! -s "$screen/number" ]; then
    cat "$screen/xvfb.log" >&2
    echo "No screen could be made." >&2
    exit 1
fi
DISPLAY=":$(cat "$screen/number")"
export DISPLAY
xauth -q -f "$XAUTHORITY" add "$DISPLAY" . "$cookie" 2>/dev/null

openbox >"$screen/openbox.log" 2>&1 &
started+=($!)
x11vnc -display "$DISPLAY" -auth "$XAUTHORITY" -localhost -no6 -autoport 5900 -nopw -forever \
    -shared -q >"$screen/port" 2>"$screen/x11vnc.log" &
started+=($!)
for _ in $(seq 100); do
    [ ! -s "$screen/port" ] || break
    sleep 0.1
done
port=$(sed -n 's/^PORT=//p' "$screen/port")
if [ -z "$port" ]; then
    cat "$screen/x11vnc.log" >&2
    echo "The window can't be served: the VNC server did not start." >&2
    exit 1
fi

echo "There is no display here. The window is served over VNC, to this machine alone: localhost:$port"
echo "From another machine: ssh -L $port:localhost:$port <this machine>, then a viewer on localhost:$port"
echo "Closing the program's window ends this."
QT_QPA_PLATFORM=xcb "${program[@]}" &
started+=($!)
wait $!
