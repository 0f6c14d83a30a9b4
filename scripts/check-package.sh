#!/usr/bin/env bash
# Makes the Debian package and checks it: first its files, then how it installs, starts and opens surveys
# on a Debian 12 with nothing installed. The second takes root and some minutes.
#   scripts/check-package.sh            both
#   scripts/check-package.sh --files    the files only
# Pictures of the windows are left in build/package/. FRESH_MACHINE names a directory to keep the system
# in, which is then used again.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/fresh-machine.sh

say() { echo "== $*"; }
fail() {
    echo "$*" >&2
    exit 1
}

check_files() {
    say "files of the package"
    scripts/make-package.sh
    package=$(ls build/release/pollarix_*.deb)
    lintian --allow-root --fail-on error,warning "$package"
    desktop-file-validate --no-hints packaging/pollarix.desktop
    appstreamcli validate --no-net packaging/example.pollarix.Pollarix.metainfo.xml
}

# --- On the machine with nothing installed ---

# A user there, on this machine's screen.
visitor() {
    exec chroot --userspec=visitor:visitor "$root" /usr/bin/env -i HOME=/home/visitor USER=visitor \
        LANG=C.UTF-8 PATH=/usr/bin:/bin XDG_RUNTIME_DIR=/home/visitor/run DISPLAY="$DISPLAY" \
        XAUTHORITY=/home/visitor/.Xauthority "$@" </dev/null
}

install_there() {
    on_fresh_machine DEBIAN_FRONTEND=noninteractive apt-get -q -y -o Dpkg::Use-Pty=0 \
        --no-install-recommends install "$@" >build/package/apt.log 2>&1 || {
        tail -n 30 build/package/apt.log >&2
        fail "Installing $* failed."
    }
}

picture() { import -silent -window root "build/package/$1.png"; }

# Waits for a window with that title, regular expression, and leaves its id in $window.
await_window() {
    local end=$((SECONDS + 60))
    while [ $SECONDS -lt $end ]; do
        # One process that looks all the time, since the splash stands for three seconds only. It fails
        # when a window goes away while it looks.
        window=$(timeout 60 xdotool search --sync --onlyvisible --name "$1" 2>/dev/null | tail -n 1) || true
        [ -z "$window" ] || return 0
    done
    picture failed
    fail "No window \"$1\" came. build/package/failed.png shows what did."
}

no_window() {
    if xdotool search --onlyvisible --name "$1" >/dev/null 2>&1; then
        picture failed
        fail "There is a window \"$1\" that should not be there, see build/package/failed.png."
    fi
}

# The splash has the plain name, and so has every message box.
Splash='^Pollarix$'
Message='^Pollarix$'
Main='^Pollarix v'
Tip='^Tip of the Day$'
Help='^Pollarix Help$'
splashes=0

# Takes the program from its splash to a main window one can type in.
past_tip() {
    # The three seconds of the splash may pass unseen on a busy machine, but not at every start.
    await_window "$Splash|$Tip"
    if [ "$(xdotool getwindowname "$window" 2>/dev/null)" = Pollarix ]; then
        sleep 0.5
        picture "$1-splash"
        splashes=$((splashes + 1))
    fi
    await_window "$Tip"
    no_window "$Splash"
    sleep 1
    picture "$1-tip"
    xdotool windowfocus --sync "$window" key --clearmodifiers Return
}

# Ends the program as its user does, and loses what was not saved: the blank question that a start with a
# file adds makes it ask.
end_program() {
    local _
    await_window "$Main"
    xdotool windowactivate --sync "$window" key --clearmodifiers alt+F4
    for _ in $(seq 150); do
        [ -e "/proc/$program" ] || return 0
        sleep 0.2
        window=$(xdotool search --onlyvisible --name "$Message" 2>/dev/null | tail -n 1) || true
        [ -z "$window" ] || xdotool windowfocus --sync "$window" key --clearmodifiers n || true
    done
    picture failed
    fail "The program did not end, see build/package/failed.png."
}

check_first_starts() {
    say "first start, with nothing but the package and what it depends on"
    (visitor pollarix) &
    program=$!
    past_tip first
    await_window "$Message"
    sleep 1
    picture first-question
    xdotool windowfocus --sync "$window" key --clearmodifiers y
    await_window "$Help"
    sleep 2
    picture first-tutorial
    xdotool windowactivate --sync "$window" key --clearmodifiers alt+F4
    end_program
    wait "$program" || fail "The program ended with $?."

    say "second start"
    (visitor pollarix) &
    program=$!
    past_tip second
    await_window "$Main"
    sleep 3
    picture second-main
    no_window "$Message"
    no_window "$Help"
    end_program
    wait "$program" || fail "The program ended with $?."
    [ -z "$(ls "$root"/home/visitor/.local/share/pollarix/*.tmp 2>/dev/null)" ] ||
        fail "A temporary survey was left behind."
}

has_open() { find "/proc/$program/fd" -lname "$root$1" | grep -q .; }

# Opens a survey there with whatever the desktop opens its type with, and leaves the program in $program.
#   open_by_type file picture
open_by_type() {
    say "opening $1 by its type"
    local is
    is=$( (visitor gio info -a standard::content-type "$1"))
    [[ $is == *"standard::content-type: $Type"* ]] || fail "It is taken for something else: $is"
    (visitor gio open "$1")
    past_tip "$2"
    await_window "$Main"
    sleep 2
    picture "$2-main"
    program=$(xdotool getwindowpid "$window")
    has_open "$1" || fail "The program did not open $1."
}

# The sample belongs to root: the program says that it can't be written, and goes on with a copy.
copy_what_can_only_be_read() {
    xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+s
    await_window "$Message"
    sleep 1
    picture sample-refused
    xdotool windowfocus --sync "$window" key --clearmodifiers Return
    sleep 1
    await_window "$Main"
    xdotool windowactivate --sync "$window" key --clearmodifiers alt+f a
    await_window '^Save As$'
    sleep 1
    xdotool windowfocus --sync "$window" type --clearmodifiers "$1"
    xdotool key --clearmodifiers Return
    sleep 3
    picture sample-copied
    has_open "$1" || fail "The program did not go on with the copy $1."
}

check_installed() {
    [ "$(id -u)" -eq 0 ] || fail "Only root can make a system to install the package on."
    scripts/install-dependencies.sh --installed
    mkdir -p build/package
    rm -f build/package/*
    say "a Debian 12 with nothing installed"
    make_fresh_machine

    cp "$package" "$root/root/pollarix.deb"
    on_fresh_machine apt-get -q update >/dev/null
    on_fresh_machine dpkg --purge pollarix >/dev/null 2>&1 || true
    install_there /root/pollarix.deb
    on_fresh_machine userdel --remove visitor >/dev/null 2>&1 || true
    on_fresh_machine useradd --create-home visitor
    (visitor mkdir -m 700 /home/visitor/run)
    install -m 644 "$XAUTHORITY" "$root/home/visitor/.Xauthority"
    openbox >build/package/openbox.log 2>&1 &
    started=$!
    # It is to be there before the first window is.
    sleep 2

    check_first_starts

    say "the type of survey files"
    install_there libglib2.0-bin desktop-file-utils xdg-utils
    Type=application/x-pollarix-survey
    local by
    by=$( (visitor xdg-mime query default $Type))
    [ "$by" = pollarix.desktop ] || fail "Surveys are opened by \"$by\"."
    local copy="/home/visitor/Our museum, 2nd copy.plxs"
    (visitor cp /usr/share/pollarix/samples/museum-visit.plxs "$copy")
    open_by_type "$copy" own
    end_program
    # Without its suffix it is known by what it holds.
    (visitor cp "$copy" /home/visitor/survey)
    open_by_type /home/visitor/survey bare
    end_program
    open_by_type /usr/share/pollarix/samples/museum-visit.plxs sample
    copy_what_can_only_be_read /home/visitor/mine.plxs
    end_program

    [ $splashes -gt 0 ] || fail "No start showed the splash."

    say "removing the package"
    on_fresh_machine dpkg --purge pollarix >/dev/null
    [ ! -e "$root/usr/share/pollarix" ] || fail "Something of it stayed in /usr/share/pollarix."
    say "all is well; pictures of the windows are in build/package/"
}

started=
leave() {
    [ -z "$started" ] || kill "$started" 2>/dev/null || true
    leave_fresh_machine
}
trap leave EXIT

case ${1-} in
--files) check_files ;;
--on-screen)
    package=$2
    check_installed
    ;;
"")
    check_files
    scripts/install-dependencies.sh --installed
    xvfb-run -a -s "-screen 0 1280x800x24 -nolisten tcp" "$0" --on-screen "$package"
    ;;
*) fail "$0: what is $1?" ;;
esac
