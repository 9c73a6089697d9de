#!/usr/bin/env bash
# Whether a Debian package is well made, and whether a stranger can install, use and remove it: check_package.sh DEB
set -euo pipefail
deb=$(readlink -f "$1")
cd "$(dirname "${BASH_SOURCE[0]}")/.."
if ! command -v mmdebstrap >/dev/null || ! command -v lintian >/dev/null; then
    apt-get install -y -qq --no-install-recommends mmdebstrap lintian >&2
fi
lintian --fail-on error,warning --tag-display-limit 0 "$deb"

root=$(mktemp -d /tmp/tarnovel-root.XXXXXX)
trap 'rm -rf "$root"' EXIT
mmdebstrap --quiet --variant=apt --aptopt='APT::Install-Recommends "false"' bookworm "$root"

inside() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}

# All that is there but what apt and dpkg keep of their own work.
listing() {
    (cd "$root" && find . -xdev \( -path ./proc -o -path ./sys -o -path ./var/lib -o -path ./var/cache -o -path ./var/log \
        -o -path ./tmp -o -path ./root \) -prune -o -print | sort)
}

cp "$deb" "$root/tmp/tarnovel.deb"
mkdir -p "$root/root/photos" && cp samples/*.jpg "$root/root/photos/"
inside apt-get update -qq
inside apt-get install -y -qq xvfb xauth man-db x11-utils dbus libglib2.0-bin >/dev/null
# What it needs is there first, so that what stays behind of the program itself is told apart.
needed=$(dpkg-deb -f "$deb" Depends | tr ',' '\n' | sed 's/[(|].*//')
# shellcheck disable=SC2086  # a list of names
inside apt-get install -y -qq $needed >/dev/null
listing >"$root/tmp/before"

inside apt-get install -y -qq /tmp/tarnovel.deb >/dev/null
inside tarnovel --version
inside sh -c 'cd /root/photos && tarnovel export -q -t gear -o /root/out *.jpg'
exported=$(find "$root/root/out" -name '*-framed.jpg' | wc -l)
[ "$exported" = "$(find samples -name '*.jpg' | wc -l)" ] || { echo "only $exported photos were exported" >&2; exit 1; }
echo "$exported photos exported"
inside man --pager=cat tarnovel-export | grep -q -- --template || { echo "no manual page" >&2; exit 1; }
# The window is open when the X server has one of its name.
window='i=0; until xwininfo -root -tree | grep -qi tarnovel; do
        i=$((i + 1)); [ $i -le 120 ] || { echo "no window" >&2; exit 1; }; sleep 0.5
    done'
inside xvfb-run -a sh -c "tarnovel & $window; kill \$!; wait \$! || true"
echo "the window opened"
# Once more as desktops do it.
inside xvfb-run -a dbus-run-session -- sh -ec "
    name=io.github.tarnovel.Tarnovel
    gdbus call --session --dest \$name --object-path /io/github/tarnovel/Tarnovel \
        --method org.freedesktop.Application.Open \"['file:///root/photos/\$(ls /root/photos | head -1)']\" '{}' >/dev/null
    $window
    kill \$(gdbus call --session --dest org.freedesktop.DBus --object-path / \
        --method org.freedesktop.DBus.GetConnectionUnixProcessID \$name | tr -dc ' 0-9' | cut -d' ' -f2)"
echo "the window opened by the session bus"
inside apt-get purge -y -qq tarnovel >/dev/null
listing >"$root/tmp/after"
diff "$root/tmp/before" "$root/tmp/after" || { echo "the package left traces" >&2; exit 1; }
echo "installed, used and removed without a trace"
