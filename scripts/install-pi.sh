#!/usr/bin/env bash
# Makes a Raspberry Pi with four cores the controller of a machine, or takes that back.
#   scripts/install-pi.sh             installs; may be run again at any time, also after a failure in the middle
#   scripts/install-pi.sh --dry-run   says what would be done and changes nothing; with --remove too
#   scripts/install-pi.sh --remove    takes back what installing has changed, and nothing else
#   --user NAME                       who works the machine; otherwise vantor where there is such a user, or the caller
# Each change is said before it is made, and noted in /var/lib/vantor/installed before it is made: that note is what
# --remove goes by. For tests: VANTOR_ROOT, a folder that stands for /, below which only the steps on files are made;
# VANTOR_BUILD, the build folder.
set -euo pipefail
umask 022

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
root=${VANTOR_ROOT-}
root=${root%/}
build=${VANTOR_BUILD:-$source_dir/build-pi}
record=$root/var/lib/vantor/installed

programs=(vantor vantor-run vantor-selftest)
groups=(gpio spi video) # pins, expansion boards, camera
boot_words=(isolcpus=3 nohz_full=3 rcu_nocbs=3)
rights=cap_sys_rawio # to the computer's memory, for PWM and SPI; pins need none
governors=/sys/devices/system/cpu/cpufreq

dry=false
remove=false
operator=
step=
problems=0
arguments=("$@")

say() { echo "  $*"; }
begin() {
    step=$1
    echo "$1"
}
usage() {
    sed -n '2,/^set/ { /^#/ s/^# \{0,1\}//p }' "${BASH_SOURCE[0]}"
    exit "$1"
}
# Nothing has been changed yet: in a dry run the rest is worth reading all the same.
refuse() {
    problems=$((problems + 1))
    if $dry; then
        printf 'would stop here: %s\n' "$1"
    else
        printf 'install-pi: %s\nNothing has been changed.\n' "$1" >&2
        exit 1
    fi
}

# ---- the note of what was changed: "KIND VALUE" lines, the value to the end of the line -------------------------------

noted() { [ -f "$record" ] && grep -qxF -- "$1" "$record"; }
note() {
    if $dry || noted "$1"; then return 0; fi
    mkdir -p "$(dirname "$record")"
    printf '%s\n' "$1" >>"$record"
}

# ---- what changes something -------------------------------------------------------------------------------------------

# A command of the computer itself. Below a root that stands for another computer there is none to run it.
run() {
    say "run: $*"
    if $dry || [ -n "$root" ]; then return 0; fi
    "$@"
}

# The same for one that speaks to the running system, which there is none of while an image is being made.
run_live() {
    if [ -z "$root" ] && [ ! -d /run/systemd/system ]; then
        say "left to the next start: $*"
    else
        run "$@"
    fi
}

declare -A announced=()
give() { # PATH OWNER (uid:gid)
    if [ "$(id -u)" -eq 0 ]; then chown -h "$2" "$root$1"; fi
}
make_folder() { # PATH OWNER; parents that are missing belong to root
    if [ -d "$root$1" ] || [ -n "${announced[$1]-}" ]; then return 0; fi
    make_folder "$(dirname "$1")" "${3-0:0}" "${3-0:0}"
    say "make folder $1 (owner $2)"
    announced[$1]=1
    note "folder $1"
    if $dry; then return 0; fi
    mkdir "$root$1"
    give "$1" "$2"
}

# put FROM PATH MODE [OWNER]: the file appears whole or not at all. One that was there before is kept beside it.
put() {
    local from=$1 path=$2 mode=$3 owner=${4-0:0}
    if [ -f "$root$path" ] && cmp -s "$from" "$root$path"; then
        say "is there: $path"
        return 0
    fi
    make_folder "$(dirname "$path")" "$owner" "$owner"
    say "write $path"
    if $dry; then return 0; fi
    if [ -e "$root$path" ] && ! noted "file $path"; then
        say "keep what was there as $path.before-vantor"
        cp -p "$root$path" "$root$path.before-vantor"
        note "saved $path"
    fi
    note "file $path"
    cp "$from" "$root$path.new"
    chmod "$mode" "$root$path.new"
    give "$path.new" "$owner"
    mv -f "$root$path.new" "$root$path"
}

# ---- who, and what kind of computer -----------------------------------------------------------------------------------

account() { # NAME: the line of the user, or nothing
    if [ -n "$root" ]; then
        grep "^$1:" "$root/etc/passwd" || true
    else
        getent passwd "$1" || true
    fi
}
find_operator() {
    local line
    if [ -z "$operator" ]; then
        operator=${SUDO_USER:-$(id -un)}
        if [ -n "$(account vantor)" ]; then operator=vantor; fi
    fi
    if ! [[ $operator =~ ^[a-z_][a-z0-9_-]*$ ]] || [ "$operator" = root ]; then
        refuse "who works the machine? Not $operator, please: --user NAME"
        operator=nobody
    fi
    line=$(account "$operator")
    if [ -z "$line" ]; then
        refuse "there is no user $operator: --user NAME"
        line="$operator:x:65534:65534::/nonexistent:"
    fi
    IFS=: read -r _ _ uid gid _ home _ <<<"$line"
    if owners_count && [ -d "$root/home/vantor" ] && [ "$(stat -c %u "$root/home/vantor")" != "$uid" ]; then
        refuse "/home/vantor, where the machine's files are, belongs to $(stat -c %U "$root/home/vantor"), not to $operator: --user NAME"
    fi
}

# In a test that is not root's the owners below its root mean nothing.
owners_count() { [ -z "$root" ] || [ "$(id -u)" -eq 0 ]; }

check_computer() {
    local model='' present='' version=''
    if [ -r "$root/proc/device-tree/model" ]; then model=$(tr -d '\0' <"$root/proc/device-tree/model"); fi
    if [[ $model != *Raspberry\ Pi* ]]; then
        refuse "this is no Raspberry Pi${model:+ but $model}. Elsewhere ./run.sh opens the window on a virtual machine"
    fi
    if [ -r "$root/sys/devices/system/cpu/present" ]; then present=$(<"$root/sys/devices/system/cpu/present"); fi
    if ! names_core "$present"; then
        refuse "this Pi has no core 3 (it has ${present:-none that it tells}), and the pulses need one of their own: four cores"
    fi
    if [ -r "$root/etc/os-release" ]; then version=$(sed -n 's/^VERSION_ID="\{0,1\}\([^"]*\)"\{0,1\}$/\1/p' "$root/etc/os-release"); fi
    if [[ $model == *Pi\ 5* || $model == *Pi\ 500* || $model == *Module\ 5* ]]; then
        echo "Notice: the SPI library does not know the pin chip of a $model, and nothing was tried on one"
    fi
    if [ "$version" != 12 ]; then
        echo "Notice: made for systems of Debian 12's age, this one is ${version:-of no version that it tells}"
    fi
}

# names_core LIST: whether a list of cores as the kernel writes them (0-3, 1,3, domain,3) has core 3.
names_core() {
    local part parts
    IFS=, read -ra parts <<<"$1"
    for part in "${parts[@]}"; do
        if [[ $part =~ ^[0-9]+$ ]] && [ "$part" -eq 3 ]; then return 0; fi
        if [[ $part =~ ^([0-9]+)-([0-9]+)$ ]] && [ "${BASH_REMATCH[1]}" -le 3 ] && [ "${BASH_REMATCH[2]}" -ge 3 ]; then return 0; fi
    done
    return 1
}

# ---- the pin libraries ------------------------------------------------------------------------------------------------

library_there() {
    [ -n "$(find "$root/usr/lib" "$root/usr/local/lib" "$root/lib/" -name "lib$1.so" -print -quit 2>/dev/null)" ]
}
pin_packages=()
check_pins() {
    local pair library package lacking=()
    for pair in wiringPi:wiringpi pigpio:libpigpio-dev; do
        library=${pair%:*}
        package=${pair#*:}
        if library_there "$library"; then continue; fi
        # Only what the system's own sources have, and that is asked of apt alone.
        if [ -z "$root" ] && apt-cache show "$package" >/dev/null 2>&1; then
            pin_packages+=("$package")
        else
            lacking+=("lib$library")
        fi
    done
    if [ -z "$root" ] && ! command -v setcap >/dev/null; then pin_packages+=(libcap2-bin); fi
    if [ ${#lacking[@]} -eq 0 ]; then return 0; fi
    refuse "$(
        cat <<END
not here, and no package of this system's sources: ${lacking[*]}.
Without the pin libraries the window would look alive and move nothing.
  Raspberry Pi OS has both: wiringpi (release 3 or later) and libpigpio-dev. After "sudo apt update" this script finds
  them. Plain Debian 12 for ARM has neither: please install Raspberry Pi OS.
Then run this again.
END
    )"
}

# ---- the boot line ----------------------------------------------------------------------------------------------------

boot_file() {
    local path
    for path in /boot/firmware/cmdline.txt /boot/cmdline.txt; do
        if [ -f "$root$path" ]; then
            echo "$path"
            return
        fi
    done
}
has_word() { [[ " $1 " == *" $2 "* ]]; }
read_boot_line() { tr '\t\r' '  ' <"$root$1" | head -n 1 | sed 's/ *$//'; }
missing_words() { # PATH: the words to be added
    local line word old
    line=$(read_boot_line "$1")
    for word in "${boot_words[@]}"; do
        if has_word "$line" "$word"; then continue; fi
        old=$(tr ' ' '\n' <<<"$line" | sed -n "s/^${word%=*}=//p" | tail -n 1)
        if [ -z "$old" ]; then
            echo "$word"
        elif ! names_core "$old"; then
            echo "conflict ${word%=*}=$old"
        fi
    done
}
check_boot_line() {
    local path conflict
    path=$(boot_file)
    if [ -z "$path" ]; then
        refuse "there is no boot line: neither /boot/firmware/cmdline.txt nor /boot/cmdline.txt"
        return
    fi
    conflict=$(missing_words "$path" | sed -n 's/^conflict //p')
    if [ -n "$conflict" ]; then
        refuse "$path already says ${conflict//$'\n'/, }, without core 3. Please join it with ${boot_words[*]} by hand"
    fi
}
write_boot_line() { # PATH LINE; what stands behind the first line stays
    {
        printf '%s\n' "$2"
        tail -n +2 "$root$1"
    } >"$root$1.new"
    sync "$root$1.new"
    # A Pi with half a boot line does not start.
    [ "$(head -n 1 "$root$1.new")" = "$2" ]
    mv -f "$root$1.new" "$root$1"
}

# ---- the steps --------------------------------------------------------------------------------------------------------

step_packages() {
    begin "Packages that building and running need"
    local package missing=()
    if [ -z "$root" ]; then mapfile -t missing < <("$source_dir/scripts/setup.sh" --missing); fi
    missing+=("${pin_packages[@]}")
    for package in "${missing[@]}"; do
        say "missing: $package"
        note "package $package"
    done
    run "$source_dir/scripts/setup.sh"
    if [ ${#pin_packages[@]} -gt 0 ]; then run apt-get install -y --no-install-recommends "${pin_packages[@]}"; fi
}

# As the owner of the sources, so that the build folder can be used, and removed, without root's rights.
as_builder=()
find_builder() {
    local owner
    owner=$(stat -c %U "$source_dir")
    if [ -n "$root" ] || [ "$(id -u)" -ne 0 ] || [ "$owner" = root ] || [ "$owner" = UNKNOWN ]; then return 0; fi
    as_builder=(runuser -u "$owner" -- env "HOME=$(getent passwd "$owner" | cut -d: -f6)")
}
step_build() {
    begin "A release build for this processor, in $build"
    local jobs fitting
    # A compiler takes up to 0.7 GB: four at once would drown a small Pi.
    jobs=$(nproc)
    fitting=$(awk '/^MemTotal:/ { print int($2 / 700000) }' /proc/meminfo)
    if [ -n "$root" ]; then jobs=4; elif [ "$fitting" -lt "$jobs" ]; then jobs=$((fitting > 0 ? fitting : 1)); fi
    find_builder
    run "${as_builder[@]}" cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_FLAGS=-mcpu=native -DVANTOR_PINS=real -DBUILD_TESTING=OFF -DVANTOR_BENCH=OFF
    run "${as_builder[@]}" cmake --build "$build" --parallel "$jobs" --target "${programs[@]}"
}

step_programs() {
    begin "The programs, under /opt/vantor"
    local program
    for program in "${programs[@]}"; do put "$build/bin/$program" "/opt/vantor/bin/$program" 755; done
}

# The libraries open the memory for writing, which the system leaves to root: the group of the pins may, and of the
# programs that its members start only these two.
step_rights() {
    begin "The window may make a spindle's PWM and speak to an SPI board, from the next start of the Pi on"
    put "$source_dir/scripts/pi/99-vantor-memory.rules" /etc/udev/rules.d/99-vantor-memory.rules 644
    run setcap "$rights+ep" "/opt/vantor/bin/vantor"
    run setcap "$rights+ep" "/opt/vantor/bin/vantor-selftest"
    run_live udevadm control --reload
}

step_folders() {
    begin "Folders for the machine's files, of $operator"
    local folder old
    for folder in /home/vantor /home/vantor/VANTOR /home/vantor/vantor_log; do
        make_folder "$folder" "$uid:$gid"
        if [ ! -d "$root$folder" ] || ! owners_count; then continue; fi
        old=$(stat -c %u:%g "$root$folder")
        if [ "${old%:*}" = "$uid" ]; then continue; fi
        say "give $folder to $operator (it is of $old)"
        note "owner $folder $old"
        if ! $dry; then give "$folder" "$uid:$gid"; fi
    done
}

step_autostart() {
    begin "The window opens when $operator logs in to the desktop"
    put "$source_dir/scripts/pi/vantor.desktop" "$home/.config/autostart/vantor.desktop" 644 "$uid:$gid"
}

step_sticks() {
    begin "USB sticks appear under /media/vantor"
    make_folder /media/vantor 0:0
    put "$source_dir/scripts/pi/mount-stick" /opt/vantor/libexec/mount-stick 755
    sed "s/@UID@/$uid/; s/@GID@/$gid/" "$source_dir/scripts/pi/vantor-stick@.service" >"$work/stick"
    put "$work/stick" /etc/systemd/system/vantor-stick@.service 644
    put "$source_dir/scripts/pi/99-vantor-stick.rules" /etc/udev/rules.d/99-vantor-stick.rules 644
    run_live systemctl daemon-reload
    run_live udevadm control --reload
}

in_group() { # GROUP
    if [ -n "$root" ]; then
        grep -qE "^$1:[^:]*:[^:]*:(.*,)?$operator(,|$)" "$root/etc/group"
    else
        id -nG "$operator" 2>/dev/null | tr ' ' '\n' | grep -qx "$1"
    fi
}
step_groups() {
    begin "$operator may use the pins and the camera"
    local group all
    all=$(if [ -n "$root" ]; then cat "$root/etc/group"; else getent group; fi)
    for group in "${groups[@]}"; do
        if ! grep -q "^$group:" <<<"$all"; then
            say "no group $group on this system"
        elif in_group "$group"; then
            say "is in the group $group"
        else
            note "group $group $operator"
            run usermod -a -G "$group" "$operator"
        fi
    done
}

step_memory() {
    begin "The window may keep all its pages in memory, from the next login of $operator on"
    echo "$operator - memlock unlimited" >"$work/memory"
    put "$work/memory" /etc/security/limits.d/99-vantor.conf 644
}

step_core() {
    begin "Core 3 is kept for the pulses, from the next start of the Pi on"
    local path words word
    path=$(boot_file)
    if [ -z "$path" ]; then return 0; fi
    words=$(missing_words "$path" | grep -v '^conflict' | tr '\n' ' ' || true)
    words=${words% }
    if [ -z "$words" ]; then
        say "is there: $path"
        return 0
    fi
    say "add to $path: $words"
    if [ ! -e "$root$path.before-vantor" ]; then say "keep the line of before as $path.before-vantor"; fi
    if $dry; then return 0; fi
    for word in $words; do note "word $word"; done
    if [ ! -e "$root$path.before-vantor" ]; then cp -p "$root$path" "$root$path.before-vantor"; fi
    write_boot_line "$path" "$(read_boot_line "$path") $words"
}

step_governor() {
    begin "The processor runs at its full clock"
    local file=$root$governors/policy0/scaling_governor
    put "$source_dir/scripts/pi/vantor-governor.service" /etc/systemd/system/vantor-governor.service 644
    if [ -r "$file" ] && [ "$(<"$file")" != performance ]; then note "governor $(<"$file")"; fi
    note "unit vantor-governor.service"
    run_live systemctl daemon-reload
    run systemctl enable vantor-governor.service
    run_live systemctl start vantor-governor.service
}

install_all() {
    find_operator
    check_computer
    check_pins
    check_boot_line
    step_packages
    step_build
    step_programs
    step_folders
    step_autostart
    step_sticks
    step_groups
    step_rights
    step_memory
    step_core
    step_governor
    if $dry; then
        echo "Nothing has been changed: this was a dry run."
        return
    fi
    echo "Done. Now restart the Pi (sudo reboot), and with nothing connected to its pins run"
    echo "  /opt/vantor/bin/vantor-selftest"
}

# ---- the way back -----------------------------------------------------------------------------------------------------

undo_file() {
    if [ ! -e "$root$1" ] && [ ! -e "$root$1.new" ]; then return 0; fi
    say "remove $1"
    $dry || rm -f "$root$1" "$root$1.new"
}
undo_saved() {
    if [ ! -e "$root$1.before-vantor" ]; then return 0; fi
    say "put back $1"
    $dry || mv -f "$root$1.before-vantor" "$root$1"
}
undo_folder() {
    if [ ! -d "$root$1" ]; then return 0; fi
    if $dry; then
        say "remove folder $1, if it is empty then"
    elif rmdir "$root$1" 2>/dev/null; then
        say "remove folder $1"
    else
        say "keep folder $1: there are files in it"
    fi
}
undo_owner() { # PATH OWNER
    say "give $1 back to $2"
    $dry || give "$1" "$2"
}
undo_group() { # GROUP USER
    if [ -z "$root" ] && ! id -nG "$2" 2>/dev/null | tr ' ' '\n' | grep -qx "$1"; then return 0; fi
    run gpasswd -d "$2" "$1"
}
undo_governor() {
    say "governor $1"
    local file
    for file in "$root$governors"/policy*/scaling_governor; do
        if ! $dry && [ -w "$file" ]; then echo "$1" >"$file"; fi
    done
}
undo_unit() {
    if [ -e "$root/etc/systemd/system/$1" ]; then
        run_live systemctl stop "$1"
        run systemctl disable "$1"
    fi
}
undo_words() {
    local path line word words
    path=$(boot_file)
    words=$(sed -n 's/^word //p' "$record" | tr '\n' ' ')
    if [ -z "$path" ] || [ -z "$words" ]; then return 0; fi
    begin "The boot line"
    line=" $(read_boot_line "$path") "
    for word in $words; do line=${line/ $word / }; done
    line=${line# }
    line=${line% }
    say "take out of $path: $words"
    if $dry; then return 0; fi
    rm -f "$root$path.new"
    if [ -e "$root$path.before-vantor" ] && [ "$(read_boot_line "$path.before-vantor")" = "$line" ]; then
        mv -f "$root$path.before-vantor" "$root$path"
        return 0
    fi
    write_boot_line "$path" "$line"
    say "the line has changed since: that of before is kept as $path.before-vantor"
}
# Packages that installing has brought become ones that nobody asked for, which apt removes where nothing else needs
# them. Not a plain removal: that brings others in their place, or takes along what has come to need them.
undo_packages() {
    local package idle installed=()
    if [ -n "$root" ]; then return 0; fi
    while read -r package; do
        if dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed; then installed+=("$package"); fi
    done < <(sed -n 's/^package //p' "$record")
    if [ ${#installed[@]} -eq 0 ]; then return 0; fi
    begin "Packages that installing has brought"
    idle=$(apt-get -s autoremove | grep -c '^Remv' || true)
    run apt-mark auto "${installed[@]}"
    if [ "$idle" -eq 0 ]; then
        run apt-get autoremove -y
    else
        say "$idle others are not needed by anything either: \"sudo apt autoremove\" removes all of them, when you agree"
    fi
}

remove_all() {
    local kind value
    if [ ! -f "$record" ]; then
        echo "Nothing to remove: $record is not there."
        return
    fi
    undo_words
    begin "Files, folders, groups and services"
    while read -r kind value; do
        case $kind in
            file | saved | folder | unit | governor) "undo_$kind" "$value" ;;
            owner | group) "undo_$kind" "${value% *}" "${value##* }" ;;
        esac
    done < <(tac "$record")
    run_live systemctl daemon-reload
    run_live udevadm control --reload
    undo_packages
    if $dry; then
        echo "Nothing has been changed: this was a dry run."
        return
    fi
    rm -f "$record"
    rmdir --ignore-fail-on-non-empty "$(dirname "$record")"
    echo "Removed. Left are the build folder $build and the compiler's cache of its owner (.cache/ccache)."
    echo "Restart the Pi (sudo reboot) for the boot line."
}

# ---- the call ---------------------------------------------------------------------------------------------------------

while [ $# -gt 0 ]; do
    case $1 in
        --dry-run) dry=true ;;
        --remove) remove=true ;;
        --user)
            if [ $# -lt 2 ]; then usage 2 >&2; fi
            operator=$2
            shift
            ;;
        --help | -h) usage 0 ;;
        *)
            echo "install-pi: what is $1?" >&2
            usage 2 >&2
            ;;
    esac
    shift
done

if ! $dry && [ -z "$root" ] && [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "install-pi: there is no sudo here; please run it as root, with --user NAME" >&2
        exit 1
    fi
    echo "install-pi: system files are root's: going on through sudo"
    exec sudo ${VANTOR_BUILD:+--preserve-env=VANTOR_BUILD} -- "$source_dir/scripts/install-pi.sh" "${arguments[@]}"
fi

work=$(mktemp -d)
finish() {
    local status=$?
    rm -rf "$work"
    if [ "$status" -ne 0 ] && [ -n "$step" ]; then
        echo "install-pi: failed at \"$step\". What was done is noted: run it again, or take it back with --remove." >&2
    fi
}
trap finish EXIT
if $remove; then remove_all; else install_all; fi
[ "$problems" -eq 0 ]
