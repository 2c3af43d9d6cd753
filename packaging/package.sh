#!/bin/sh
# Builds Debian packages from this tree in build/package and checks them with lintian.
# --check installs them in a clean root, tests and removes them (requires root).
set -eu
cd "$(dirname "$0")/.."
here="$PWD"
out="$here/build/package"

die() {
  echo "package: $*" >&2
  exit 1
}

make_packages() {
  # The build gets an empty home folder; the compiler's cache stays where it is.
  if command -v ccache >/dev/null; then
    CCACHE_DIR=$(ccache --get-config cache_dir)
    export CCACHE_DIR
  fi
  tree="$out/vantrel"
  rm -rf "$tree" "$out"/*.deb "$out"/*.changes "$out"/*.buildinfo
  mkdir -p "$tree"
  git ls-files -z --cached --others --exclude-standard | tar --null -T - -c | tar -x -C "$tree"
  cp -r "$here/packaging/debian" "$tree/debian"
  (cd "$tree" && dpkg-buildpackage --build=binary --no-sign --no-pre-clean --no-post-clean \
    >"$out/build.log" 2>&1) || {
    tail -20 "$out/build.log" | cut -c 1-300 >&2
    die "the build failed; all of it is in build/package/build.log"
  }
  lintian --allow-root --fail-on error,warning --display-info --tag-display-limit 0 "$out"/*.changes ||
    die "lintian objects"
  ls -l "$out"/*.deb
}

check_packages() {
  [ "$(id -u)" -eq 0 ] || die "--check makes a Debian root: run it as root"
  root="$out/root"
  if [ ! -e "$root/usr/bin/apt-get" ]; then
    mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}
    debootstrap --variant=minbase bookworm "$root" "$mirror" >"$out/debootstrap.log" 2>&1 ||
      die "debootstrap failed; see build/package/debootstrap.log"
  fi
  # Use the network settings of this machine in the clean root.
  cp /etc/resolv.conf "$root/etc/resolv.conf"
  cp -r /etc/apt/apt.conf.d "$root/etc/apt/"
  rm -rf "$root/packages" "$root/source"
  mkdir -p "$root/packages" "$root/source/packaging"
  cp "$out"/*.deb "$root/packages/"
  cp -r packaging/consumer "$root/source/packaging/"
  cp packaging/debian/tests/installed "$root/source/"
  mountpoint -q "$root/proc" || mount -t proc proc "$root/proc"
  trap 'umount "$root/proc"' EXIT
  in_root() { chroot "$root" env DEBIAN_FRONTEND=noninteractive PATH=/usr/sbin:/usr/bin:/sbin:/bin "$@"; }
  quietly() { in_root "$@" >"$out/check.log" 2>&1 || { tail -30 "$out/check.log" >&2; die "$* failed"; }; }

  quietly apt-get update
  quietly apt-get install -y --no-install-recommends cmake g++ make pkg-config
  quietly sh -c 'apt-get install -y --no-install-recommends /packages/*.deb'
  in_root sh -c 'cd /source && sh -e ./installed' || die "the installed packages fail"
  quietly apt-get purge -y vantrel vantrel-today libvantrel-dev
  left=$(in_root find / -xdev -path /packages -prune -o -path /source -prune -o \
    -path /proc -prune -o -path /var/log -prune -o -iname '*vantrel*' -print)
  [ -z "$left" ] || die "left behind after removal: $left"
  echo "package: installed, used and removed in a clean root"
}

make_packages
[ "${1:-}" != --check ] || check_packages
