#!/usr/bin/env bash
# install-test.sh CASE: runs scripts/install-pi.sh below a folder that stands for the / of a Pi.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
install=$here/../../../scripts/install-pi.sh
source_dir=$(cd "$here/../../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export VANTOR_ROOT=$work/root VANTOR_BUILD=$work/build
pi=$VANTOR_ROOT
boot=$pi/boot/firmware/cmdline.txt

fail() {
    echo "FAILED: $*" >&2
    exit 1
}
make_pi() {
    mkdir -p "$pi"/{etc/systemd/system,boot/firmware,proc/device-tree,sys/devices/system/cpu/cpufreq/policy0,usr/lib/aarch64-linux-gnu,var/lib,home/pi,media} "$VANTOR_BUILD/bin"
    printf 'root:x:0:0:root:/root:/bin/bash\npi:x:1000:1000:,,,:/home/pi:/bin/bash\n' >"$pi/etc/passwd"
    printf 'video:x:44:pi\ngpio:x:986:someone,pipe\n' >"$pi/etc/group"
    printf 'PRETTY_NAME="Debian GNU/Linux 12 (bookworm)"\nVERSION_ID="12"\n' >"$pi/etc/os-release"
    # The firmware's line has a blank behind it here, and no end of line.
    printf 'console=tty1 root=PARTUUID=1c-02  rootwait quiet ' >"$boot"
    printf 'Raspberry Pi 4 Model B Rev 1.4\0' >"$pi/proc/device-tree/model"
    echo 0-3 >"$pi/sys/devices/system/cpu/present"
    echo ondemand >"$pi/sys/devices/system/cpu/cpufreq/policy0/scaling_governor"
    touch "$pi"/usr/lib/aarch64-linux-gnu/{libwiringPi,libpigpio}.so
    local program
    for program in vantor vantor-run vantor-selftest; do echo "$program" >"$VANTOR_BUILD/bin/$program"; done
    if [ "$(id -u)" -eq 0 ]; then chown -R 1000:1000 "$pi/home/pi"; fi
}
# Everything that a person could tell of the tree: names, kinds, rights, owners, contents.
tree() {
    (cd "$pi" && find . -printf '%p %y %m %U %G\n' | sort && find . -type f -exec sha256sum {} + | sort)
}
run() { "$install" --user pi "$@" >"$work/said" 2>&1 || fail "install-pi $*: $(<"$work/said")"; }
same_tree() { diff <(echo "$1") <(tree) || fail "$2"; }

case_dry_run() {
    make_pi
    local before
    before=$(tree)
    run --dry-run
    same_tree "$before" "a dry run has changed something"
    sed -i "s|$source_dir|SOURCE|g; s|$VANTOR_BUILD|BUILD|g" "$work/said"
    diff "$here/../../data/pi/dry-run.txt" "$work/said" || fail "it says something else"
}

case_install_and_remove() {
    make_pi
    local before once
    before=$(tree)
    run
    once=$(tree)
    [ "$(<"$boot")" = 'console=tty1 root=PARTUUID=1c-02  rootwait quiet isolcpus=3 nohz_full=3 rcu_nocbs=3' ] || fail "boot line: $(<"$boot")"
    cmp "$VANTOR_BUILD/bin/vantor" "$pi/opt/vantor/bin/vantor"
    if [ ! -x "$pi/opt/vantor/libexec/mount-stick" ] || [ ! -d "$pi/home/vantor/vantor_log" ]; then fail "not all is there"; fi
    grep -q 'mount %I 1000 1000$' "$pi/etc/systemd/system/vantor-stick@.service" || fail "whose stick?"
    if [ "$(id -u)" -eq 0 ]; then
        [ "$(stat -c %u "$pi/home/vantor" "$pi/home/vantor/VANTOR" "$pi/home/pi/.config/autostart/vantor.desktop" | uniq)" = 1000 ] || fail "owners"
        [ "$(stat -c %u "$pi/media/vantor")" = 0 ] || fail "owner of the sticks"
    fi
    run
    same_tree "$once" "the second run has changed something"
    run --remove
    same_tree "$before" "removing has left something"
    run --remove
    same_tree "$before" "removing twice has changed something"
    run
    same_tree "$once" "installing again gives something else"
    run --remove
    same_tree "$before" "removing again has left something"
}

# What others have made or changed is theirs: files in the way, the operator's files, later changes of the boot line.
case_keep_what_is_not_ours() {
    make_pi
    echo theirs >"$pi/etc/systemd/system/vantor-governor.service"
    sed -i 's/quiet/isolcpus=1,3 quiet/' "$boot"
    mkdir -p "$pi/home/vantor/VANTOR" # root's, and of use to nobody so
    if [ "$(id -u)" -eq 0 ]; then chown 1000:1000 "$pi/home/vantor"; fi
    run
    if [ "$(id -u)" -eq 0 ] && [ "$(stat -c %u "$pi/home/vantor/VANTOR")" != 1000 ]; then fail "the folder is still root's"; fi
    grep -q 'isolcpus=1,3 quiet nohz_full=3 rcu_nocbs=3$' "$boot" || fail "boot line: $(<"$boot")"
    echo settings >"$pi/home/vantor/VANTOR/VANTOR.dat"
    sed -i 's/quiet/splash/' "$boot"
    run --remove
    [ "$(<"$pi/etc/systemd/system/vantor-governor.service")" = theirs ] || fail "their service is lost"
    [ "$(<"$pi/home/vantor/VANTOR/VANTOR.dat")" = settings ] || fail "the settings are lost"
    [ "$(<"$boot")" = 'console=tty1 root=PARTUUID=1c-02  rootwait isolcpus=1,3 splash' ] || fail "boot line: $(<"$boot")"
    [ "$(stat -c %u "$pi/home/vantor/VANTOR")" = "$(id -u)" ] || fail "the folder was not given back"
    if [ -e "$pi/home/vantor/vantor_log" ] || [ -e "$pi/opt" ]; then fail "something is left"; fi
}

# A refusal changes nothing and says what to do.
refused() { # TEXT
    local before
    before=$(tree)
    if "$install" --user "${user-pi}" >"$work/said" 2>&1; then fail "not refused: $1"; fi
    grep -qF -- "$1" "$work/said" || fail "\"$1\" is not said: $(<"$work/said")"
    same_tree "$before" "a refusal has changed something"
    if "$install" --user "${user-pi}" --dry-run >"$work/said" 2>&1; then fail "the dry run is content: $1"; fi
    grep -qF -- "$1" "$work/said" || fail "the dry run does not say \"$1\""
}
case_refuse() {
    make_pi
    user=root refused '--user NAME'
    mkdir "$pi/home/vantor"
    if [ "$(id -u)" -eq 0 ]; then refused '/home/vantor, where the machine'; fi
    rmdir "$pi/home/vantor"
    user=nobody-here refused 'there is no user nobody-here'
    rm "$pi"/usr/lib/aarch64-linux-gnu/libwiringPi.so
    refused 'sources: libwiringPi.'
    rm "$pi"/usr/lib/aarch64-linux-gnu/libpigpio.so
    refused 'sources: libwiringPi libpigpio.'
    make_pi
    echo 0-2 >"$pi/sys/devices/system/cpu/present"
    refused 'no core 3'
    make_pi
    printf 'Some board\0' >"$pi/proc/device-tree/model"
    refused 'this is no Raspberry Pi but Some board'
    make_pi
    printf 'quiet isolcpus=1-2 nohz_full=0,2\n' >"$boot"
    refused 'already says isolcpus=1-2, nohz_full=0,2'
    rm "$boot"
    refused 'there is no boot line'
    echo quiet >"$pi/boot/cmdline.txt" # where it was before
    run
    grep -qx 'quiet isolcpus=3 nohz_full=3 rcu_nocbs=3' "$pi/boot/cmdline.txt" || fail "the old place"
}

case_fail_in_the_middle() {
    make_pi
    local before
    before=$(tree)
    rm "$VANTOR_BUILD/bin/vantor-selftest"
    if "$install" --user pi >"$work/said" 2>&1; then fail "a program that is not there was installed"; fi
    grep -q 'failed at "The programs, under /opt/vantor"' "$work/said" || fail "it does not say where: $(<"$work/said")"
    run --remove
    same_tree "$before" "removing a half installation has left something"
}

# A stick is mounted for the machine's user; the disk that the system runs from, and what has a place already, are not.
case_sticks() {
    mkdir -p "$work/bin"
    cat >"$work/bin/tool" <<'END'
#!/bin/sh
case "$(basename "$0") $*" in
    "findmnt -no SOURCE /") echo /dev/sda2 ;;
    "lsblk -no PKNAME /dev/sda"*) echo sda ;;
    "lsblk -no PKNAME /dev/sdb"*) echo sdb ;;
    "findmnt -S /dev/sdb2" | "findmnt --fstab --evaluate -S /dev/sdb3" | mountpoint*) ;;
    findmnt*) exit 1 ;;
    "blkid -o value -s TYPE /dev/sdb1") echo vfat ;;
    "blkid -o value -s TYPE /dev/sdb5") echo ext4 ;;
    mount*sdb6*) exit 32 ;;
    mount* | umount*) echo "$(basename "$0") $*" >>"$CALLS" ;;
esac
END
    chmod +x "$work/bin/tool"
    local tool device
    for tool in findmnt lsblk mountpoint blkid mount umount; do ln -s tool "$work/bin/$tool"; done
    export CALLS=$work/calls
    stick() { PATH=$work/bin:$PATH "$source_dir/scripts/pi/mount-stick" "$@"; }
    for device in sda1 sdb1 sdb2 sdb3 sdb5; do stick mount "$device" 1000 1001; done
    diff "$CALLS" - <<END || fail "other mounts"
mount -o nosuid,nodev,noexec,uid=1000,gid=1001,umask=022,flush /dev/sdb1 $pi/media/vantor/sdb1
mount -o nosuid,nodev,noexec /dev/sdb5 $pi/media/vantor/sdb5
END
    if stick mount sdb6 1000 1001; then fail "a mount that failed was not told"; fi
    [ "$(ls "$pi/media/vantor")" = $'sdb1\nsdb5' ] || fail "folders: $(ls "$pi/media/vantor")"
    for device in sda1 sdb1 sdb5; do stick release "$device"; done
    [ -z "$(ls "$pi/media/vantor")" ] || fail "a folder of a stick that has gone"
}

"case_$1"
