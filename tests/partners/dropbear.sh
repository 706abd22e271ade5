#!/bin/bash
# A dropbear server of a test's own on loopback, for root alone: dropbear.sh FOLDER PORT. Its user "tdrop" logs in by
# FOLDER/keys/user_ed25519 or the password "secret 1"; its host key is FOLDER/keys/host_drop, made when it is not there.
# Nothing of the machine changes. SIGKILL ends it and its sessions.
set -eu
D=$1 PORT=$2
mkdir -p "$D/keys" "$D/home/tdrop/.ssh"
[ -e "$D/keys/host_drop" ] || dropbearkey -t ed25519 -f "$D/keys/host_drop" > "$D/keys/host_drop.text"
[ -e "$D/keys/user_ed25519" ] || ssh-keygen -q -t ed25519 -N '' -f "$D/keys/user_ed25519"
cp "$D/keys/user_ed25519.pub" "$D/home/tdrop/.ssh/authorized_keys"
chmod 755 "$D" "$D/home" "$D/home/tdrop"
chmod 700 "$D/home/tdrop/.ssh"
chmod 600 "$D/home/tdrop/.ssh/authorized_keys"
chown -R 4003:4003 "$D/home/tdrop"
HASH=$(openssl passwd -6 'secret 1')
{ cat /etc/passwd; echo "tdrop:x:4003:4003::$D/home/tdrop:/bin/bash"; } > "$D/passwd"
{ cat /etc/shadow; echo "tdrop:$HASH:19000:0:99999:7:::"; } > "$D/shadow"
{ cat /etc/group; echo "tdrop:x:4003:"; } > "$D/group"
chmod 600 "$D/shadow"
export D PORT
exec unshare -m -p -f --mount-proc --kill-child bash -c '
    for f in passwd shadow group; do mount --bind "$D/$f" "/etc/$f"; done
    exec dropbear -F -E -r "$D/keys/host_drop" -p "127.0.0.1:$PORT" -P ""'
