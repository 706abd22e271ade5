#!/bin/bash
# An OpenSSH server of a test's own on loopback: sshd.sh FOLDER PORT [line for its configuration]...
# Its keys, users and configuration are in FOLDER and made on the first call; nothing of the machine changes. Started
# by root it has two users: "tkey", who logs in by key only, and "tpass", whose password is "secret 1". Started by
# anybody else it knows that user, by key. FOLDER/keys/user_ed25519 is a key of theirs, user_rsa_pp one with the
# passphrase "pass phrase", user_cert one that counts by its certificate only. "Server listening" on standard error:
# it is ready. SIGKILL ends it and its sessions.
set -eu
D=$1 PORT=$2
shift 2
CONFIGURATION=$D/sshd_config.$PORT # several servers may share the rest of the folder
mkdir -p "$D"/keys "$D"/home/{tkey,tpass}
exec 9> "$D/lock"
flock 9 # for two that start at once
chmod 755 "$D" "$D"/home "$D"/home/*
make_key() { [ -e "$D/keys/$1" ] || ssh-keygen -q -t "$2" -b 2048 -N "$3" -f "$D/keys/$1"; }
make_key host_ed25519 ed25519 ''
make_key user_ed25519 ed25519 ''
make_key user_rsa_pp rsa 'pass phrase'
make_key user_cert ed25519 ''
make_key authority ed25519 ''
[ -e "$D/keys/user_cert-cert.pub" ] ||
    ssh-keygen -q -s "$D/keys/authority" -I test -n "tkey,$(id -un)" "$D/keys/user_cert.pub"
cat "$D"/keys/user_{ed25519,rsa_pp}.pub > "$D/keys/authorized_keys"
chmod 644 "$D/keys/authorized_keys"
for line in "$@"; do echo "$line"; done > "$CONFIGURATION" # of two that contradict each other the first holds
cat >> "$CONFIGURATION" <<C
Port $PORT
ListenAddress 127.0.0.1
HostKey $D/keys/host_ed25519
PidFile none
AuthorizedKeysFile $D/keys/authorized_keys
TrustedUserCAKeys $D/keys/authority.pub
StrictModes no
PasswordAuthentication yes
KbdInteractiveAuthentication yes
UseDNS no
PrintMotd no
LogLevel VERBOSE
AcceptEnv LANG
C
if [ "$(id -u)" != 0 ]; then
    exec 9>&-
    exec /usr/sbin/sshd -D -e -f "$CONFIGURATION"
fi
printf 'UsePAM yes\nPermitRootLogin no\n' >> "$CONFIGURATION"
if [ ! -e "$D/pam" ]; then # once: a server that runs already has them as its own
    HASH=$(openssl passwd -6 'secret 1')
    { cat /etc/passwd; echo "tkey:x:4001:4001::$D/home/tkey:/bin/bash"; echo "tpass:x:4002:4002::$D/home/tpass:/bin/bash"; } > "$D/passwd"
    { cat /etc/shadow; echo "tkey:*:19000:0:99999:7:::"; echo "tpass:$HASH:19000:0:99999:7:::"; } > "$D/shadow"
    chmod 600 "$D/shadow"
    { cat /etc/group; echo "tkey:x:4001:"; echo "tpass:x:4002:"; } > "$D/group"
    chown 4001:4001 "$D/home/tkey"
    chown 4002:4002 "$D/home/tpass"
    printf 'auth required pam_unix.so nodelay\naccount required pam_unix.so\nsession required pam_permit.so\n' > "$D/pam"
fi
export D CONFIGURATION
exec 9>&-
# Mounts of its own, so that the users exist for this server alone; processes of its own, so that they end with it.
exec unshare -m -p -f --mount-proc --kill-child bash -c '
    mount -t tmpfs tmpfs /run && mkdir -p /run/sshd
    for f in passwd shadow group; do mount --bind "$D/$f" "/etc/$f"; done
    mount --bind "$D/pam" /etc/pam.d/sshd
    exec /usr/sbin/sshd -D -e -f "$CONFIGURATION"'
