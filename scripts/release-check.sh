#!/bin/bash
# Installs a built package on a new Debian 12 system and uses it as an operator would: apt-get
# install, the example folder run by the installed qorlomanagerd, two instances of the template user
# unit started by a booted systemd side by side, and the manual page. The system is made with
# mmdebstrap in a scratch folder and booted with systemd-nspawn.
#
# Needs root and Debian's archive. Not part of the test command: it fetches a whole system.
#   bash scripts/release-check.sh build/qorlomanager_10.0.1_amd64.deb [SCRATCH_FOLDER]
set -euo pipefail

deb=$(realpath "$1")
scratch=${2:-$(mktemp -d /var/tmp/qorlo-release.XXXXXX)}
mkdir -p "$scratch"
root=$scratch/root
operator=clerk
folders=/home/$operator/.local/share/QorloMANAGER

command -v mmdebstrap >/dev/null && command -v systemd-nspawn >/dev/null ||
  apt-get install -y -q mmdebstrap systemd-container
echo "== a minimal Debian 12 with systemd in $root"
rm -rf --one-file-system "$root"
mmdebstrap -q --variant=apt --include=ca-certificates,systemd,systemd-sysv,dbus-user-session,libpam-systemd,man-db \
  bookworm "$root" http://deb.debian.org/debian

echo "== apt-get install $(basename "$deb")"
cp "$deb" "$root/var/tmp/"
mount -t proc proc "$root/proc"
trap 'umount "$root/proc"' EXIT
chroot "$root" apt-get update -q >/dev/null
chroot "$root" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q "/var/tmp/$(basename "$deb")" 2>"$scratch/apt-errors.log" |
  grep -E "newly installed|^Setting up qorlomanager"
umount "$root/proc"
trap - EXIT

# The operator's user keeps its services running without a login; the two departments start from
# copies of the installed example.
chroot "$root" useradd -m -s /bin/bash "$operator"
mkdir -p "$root/var/lib/systemd/linger" && touch "$root/var/lib/systemd/linger/$operator"
chroot "$root" su - "$operator" -c "mkdir -p $folders &&
  cp -r /usr/share/doc/qorlomanager/examples $folders/sales &&
  cp -r /usr/share/doc/qorlomanager/examples $folders/stock"

# Run inside the booted system as the operator; fails when a report or a clean stop is missing.
cat > "$root/usr/local/bin/operator-check" <<EOF
#!/bin/bash
set -eu
export XDG_RUNTIME_DIR=/run/user/\$(id -u) DBUS_SESSION_BUS_ADDRESS=unix:path=/run/user/\$(id -u)/bus
for i in \$(seq 60); do [ -S "\$XDG_RUNTIME_DIR/bus" ] && break; sleep 1; done
systemctl --user enable --now qorlomanagerd@sales qorlomanagerd@stock
for i in \$(seq 90); do
  ls $folders/sales/Output/sales-*.pdf $folders/stock/Output/sales-*.pdf >/dev/null 2>&1 && break
  sleep 1
done
systemctl --user --no-pager status qorlomanagerd@sales qorlomanagerd@stock | grep -E "●|Active:|Main PID"
ls -l $folders/sales/Output/sales-*.pdf $folders/stock/Output/sales-*.pdf
systemctl --user stop qorlomanagerd@sales qorlomanagerd@stock
for unit in qorlomanagerd@sales qorlomanagerd@stock; do
  status=\$(systemctl --user show -p ExecMainStatus --value \$unit)
  echo "\$unit: exit status \$status"
  [ "\$status" = 0 ]
done
grep -o "QorloMANAGER shutdown at [^<]*" $folders/sales/Web/livestat.htm $folders/stock/Web/livestat.htm
systemd-analyze --user verify qorlomanagerd.service qorlomanagerd@sales.service && echo "units verified"
MANWIDTH=80 man qorlomanagerd | head -12
EOF
chmod +x "$root/usr/local/bin/operator-check"

echo "== booting it"
systemd-nspawn -q -D "$root" -b --console=pipe --register=no --keep-unit -M qorlo-release >"$scratch/boot.log" 2>&1 &
nspawn=$!
trap 'kill -TERM $nspawn 2>/dev/null; wait $nspawn 2>/dev/null || true' EXIT
leader=
for i in $(seq 30); do
  leader=$(pgrep -P $nspawn -x systemd || true)
  [ -n "$leader" ] && break
  sleep 1
done
[ -n "$leader" ] || { echo "the system did not boot"; cat "$scratch/boot.log"; exit 1; }

echo "== two schedules as user units"
nsenter -t "$leader" -a runuser -u "$operator" -- /usr/local/bin/operator-check
echo "== scratch folder: $scratch"
