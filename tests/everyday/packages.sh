#!/usr/bin/env bash
# The Debian packages in a clean system: their own tests with an empty environment, then the
# file managers of GNOME and of Xfce. The system is made by mmdebstrap from the mirrors that
# this one uses, and kept in build/everyday/ while it is younger than a day.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tests/everyday/install/draw.sh
[ "$(id -u)" -eq 0 ] || fail "root is needed to make a system"
scripts/install-deps.sh mmdebstrap bubblewrap
make deb

base=build/everyday/system.tar
mkdir -p build/everyday
if [ -z "$(find build/everyday -name system.tar -mtime -1)" ]; then
    { cat /etc/apt/sources.list /etc/apt/sources.list.d/debian.sources 2>/dev/null || true; } |
        mmdebstrap --quiet --variant=apt --include="bubblewrap,cmake,dbus,g++,gir1.2-glib-2.0,\
gir1.2-gnomedesktop-4.0,make,pkg-config,python3-gi,shared-mime-info,tumbler" \
            "$(. /etc/os-release && echo "$VERSION_CODENAME")" "build/everyday/new.tar"
    mv build/everyday/new.tar "$base"
fi
system=$(mktemp -d)
trap 'rm -rf "$system"' EXIT
tar -C "$system" -xf "$base"
mkdir "$system/packages"
find build/deb -name '*.deb' ! -name '*-dbgsym_*' -exec cp {} "$system/packages" \;
cp -r debian/tests "$system/packages/tests"
cp -r tests/everyday/install "$system/packages/everyday"
chroot "$system" sh -c 'apt-get update && DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends /packages/*.deb' >build/everyday/log 2>&1 ||
    { tail -n 20 build/everyday/log >&2; exit 1; }

# inside COMMAND...: in that system, without a network. The sandbox in the sandbox mounts a
# /proc, which needs one that nothing hides parts of.
inside()
{
    echo "-- $*"
    bwrap --bind "$system" / --dev /dev --dev-bind /proc /proc --tmpfs /run --tmpfs /tmp \
        --dir /tmp/home --dir /tmp/work --dir /tmp/run --unshare-net --unshare-ipc \
        --die-with-parent --cap-add ALL --clearenv --setenv PATH /usr/bin:/bin --chdir / "$@"
}

# in_session COMMAND...: with a home, and with a folder to work in as its argument.
in_session()
{
    inside env HOME=/tmp/home XDG_RUNTIME_DIR=/tmp/run XDG_CACHE_HOME=/tmp/work/cache "$@" /tmp/work
}

inside /packages/tests/picture
inside /packages/tests/library
in_session python3 /packages/everyday/gnome_test.py
in_session dbus-run-session -- python3 /packages/everyday/tumbler_test.py
