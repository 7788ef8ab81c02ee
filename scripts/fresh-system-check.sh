#!/usr/bin/env bash
# Runs scripts of this tree, as it is committed, in a minimal system of the Debian suite SUITE that has nothing of what
# they need: they are to install it. They run as root, or as an ordinary user with sudo.
#   scripts/fresh-system-check.sh SUITE root|user SCRIPT...
# Kept in the cache: the minimal system, packed; the packages that were downloaded; compiled objects. Exit code 77: not
# run, because such a system cannot be made here.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh
source scripts/cache.sh
[ $# -ge 3 ] && [[ $2 == root || $2 == user ]] || { echo "usage: $0 SUITE root|user SCRIPT..." >&2; exit 2; }
suite=$1 who=$2 commands=("${@:3}")

notRun() {
  printf '\n######## Fresh system (%s) not run: %s\n' "$suite" "$1" >&2
  exit 77
}
[ "$(id -u)" -eq 0 ] || notRun "it takes root"
unshare --mount --pid --fork true || notRun "no mounts of its own can be made here"
TOVR_WITH_FRESH=1 scripts/install-dependencies.sh || notRun "what makes it cannot be installed"
mirror=$(scripts/debian-mirror.sh) || notRun "no mirror"

kept=$cache/fresh-$suite
packages=$kept/packages
mkdir -p "$packages"
exec 9>"$kept/lock"
flock 9  # one at a time, so that what a broken run has left can be taken away
rm -rf --one-file-system "$kept"/root.*

inputs=(scripts/fresh-system-check.sh scripts/carry-registry-access.sh)
if ! isBuiltFrom "$kept" "${inputs[@]}"; then
  rm -f "$kept/stamp"
  quietly mmdebstrap --variant=apt --mode=root --dpkgopt=force-unsafe-io --include=sudo,passwd,ccache \
    --setup-hook="'$PWD/scripts/carry-registry-access.sh' \"\$1\"" "$suite" "$kept/base.tar" \
    "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $mirror $suite main" ||
    notRun "its base cannot be made from $mirror"
  stampOf "${inputs[@]}" >"$kept/stamp"
fi

root=$(mktemp -d "$kept/root.XXXXXX")
trap 'rm -rf --one-file-system "$root"' EXIT
chmod 755 "$root"
tar -xf "$kept/base.tar" -C "$root"
scripts/carry-registry-access.sh "$root"
[ ! -e "$root/usr/bin/c++" ] && [ ! -e "$root/usr/bin/cmake" ] || { echo "the base has what is to be installed" >&2; exit 1; }
find "$packages" -name '*.deb' -exec ln -t "$root/var/cache/apt/archives" {} +

home=/root id=0
if [ "$who" = user ]; then
  home=/home/user id=1000
  chroot "$root" useradd --create-home --uid $id user
  echo 'user ALL=(ALL) NOPASSWD: ALL' >"$root/etc/sudoers.d/user"
fi
git clone --quiet --depth 1 "file://$PWD" "$root/clone"  # the same folder for all, so that they share kept objects
chown -R $id:$id "$root/clone"

# Its mounts and processes are in namespaces of their own and end with them, however that comes about.
objects=$cache/fresh-ccache
mkdir -p "$objects" "$root/ccache"
chmod 1777 "$objects"
inside() {
  unshare --mount --pid --fork --kill-child bash -euc '
    root=$1 objects=$2 id=$3
    shift 3
    mount -t proc proc "$root/proc"
    mount --rbind /dev "$root/dev"
    mount --bind "$objects" "$root/ccache"
    exec chroot --userspec="$id:$id" --groups="$id" "$root" "$@"' - "$root" "$objects" $id env -i "HOME=$home" \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 TERM=dumb \
    CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_DIR=/ccache CCACHE_UMASK=000 "$@" 9>&-
}
log=build/fresh-$suite-$who.log
mkdir -p build
: >"$log"
for command in "${commands[@]}"; do
  echo "-- $suite, as $who: $command"
  inside "/clone/$command" </dev/null 2>&1 | tee -a "$log" || {
    echo "exit code ${PIPESTATUS[0]} from: $command, in a fresh system; all it printed is in $log" >&2
    exit 1
  }
done
find "$root/var/cache/apt/archives" -maxdepth 1 -name '*.deb' -exec cp -n --link -t "$packages" {} +
if grep -n 'warning:' "$log" >&2; then
  echo "the compiler warns: see above, lines of $log" >&2
  exit 1
fi
