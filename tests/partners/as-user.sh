#!/bin/bash
# as-user.sh COMMAND..: for root, runs a command as the ordinary user "tuser", who exists for it and what it starts.
# Its first word after the program, a folder, becomes theirs. Nothing of the machine changes.
set -eu
mkdir -p "$2"
HOME=$(dirname "$2")/tuser
mkdir -p "$HOME"
{ cat /etc/passwd; echo "tuser:x:4004:4004::$HOME:/bin/bash"; } > "$HOME/passwd"
{ cat /etc/group; echo "tuser:x:4004:"; } > "$HOME/group"
chown -R 4004:4004 "$2" "$HOME"
export HOME USER=tuser
exec unshare -m -p -f --mount-proc --kill-child bash -c '
    for f in passwd group; do mount --bind "$HOME/$f" "/etc/$f"; done
    mount -t devpts -o newinstance,gid=5,mode=620,ptmxmode=666 devpts /dev/pts && mount --bind /dev/pts/ptmx /dev/ptmx
    exec setpriv --reuid 4004 --regid 4004 --clear-groups "$@"' as-user "$@"
