# shellcheck shell=bash
# Sourced: a minimal system of a Debian suite, with nothing but its package manager, in which something is tried as it
# is on a new machine. It takes root and a mirror. Kept in the cache: the minimal system, packed; the packages that were
# downloaded. Needs failures.sh and cache.sh.

# SUITE: unpacks such a system at $root, which goes when the script ends. False, with a reason on standard error: it
# cannot be made here.
makeFreshSystem() {
  suite=$1
  [ "$(id -u)" -eq 0 ] || { echo "it takes root" >&2; return 1; }
  unshare --mount --pid --fork true || { echo "no mounts of its own can be made here" >&2; return 1; }
  TOVR_WITH_FRESH=1 scripts/install-dependencies.sh || { echo "what makes it cannot be installed" >&2; return 1; }
  local mirror
  mirror=$(scripts/debian-mirror.sh) || { echo "there is no mirror" >&2; return 1; }

  kept=$cache/fresh-$suite
  mkdir -p "$kept/packages"
  exec 9>"$kept/lock"
  flock 9  # one at a time, so that what a broken run has left can be taken away
  rm -rf --one-file-system "$kept"/root.*
  local inputs=(scripts/fresh-system.sh scripts/carry-registry-access.sh)
  if ! isBuiltFrom "$kept" "${inputs[@]}"; then
    rm -f "$kept/stamp"
    quietly mmdebstrap --variant=apt --mode=root --dpkgopt=force-unsafe-io --include=sudo,passwd,ccache \
      --setup-hook="'$PWD/scripts/carry-registry-access.sh' \"\$1\"" "$suite" "$kept/base.tar" \
      "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $mirror $suite main" || {
      echo "its base cannot be made from $mirror" >&2
      return 1
    }
    stampOf "${inputs[@]}" >"$kept/stamp"
  fi

  root=$(mktemp -d "$kept/root.XXXXXX")
  trap 'rm -rf --one-file-system "$root"' EXIT
  chmod 755 "$root"
  tar -xf "$kept/base.tar" -C "$root"
  scripts/carry-registry-access.sh "$root"
  find "$kept/packages" -name '*.deb' -exec ln -t "$root/var/cache/apt/archives" {} +
}

# ID HOME COMMAND...: runs it in there. Its mounts and processes are in namespaces of their own and end with them,
# however that comes about. Compiled objects are kept in the cache: for root with those of the other checks, which the
# same compiler makes, for users apart.
inside() {
  local objects=${CCACHE_DIR:-$cache/ccache}
  [ "$1" -eq 0 ] || objects=$cache/fresh-ccache
  mkdir -p "$objects" "$root/ccache"
  [ "$1" -eq 0 ] || chmod 1777 "$objects"
  unshare --mount --pid --fork --kill-child bash -euc '
    root=$1 objects=$2 id=$3
    shift 3
    mount -t proc proc "$root/proc"
    mount --rbind /dev "$root/dev"
    mount --bind "$objects" "$root/ccache"
    exec chroot --userspec="$id:$id" --groups="$id" "$root" "$@"' - "$root" "$objects" "$1" env -i "HOME=$2" \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 TERM=dumb \
    CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_DIR=/ccache CCACHE_UMASK=000 CCACHE_BASEDIR=/clone CCACHE_NOHASHDIR=1 \
    "${@:3}" 9>&-
}

# The packages that were downloaded in there are kept.
keepPackages() { find "$root/var/cache/apt/archives" -maxdepth 1 -name '*.deb' -exec cp -n --link -t "$kept/packages" {} +; }
