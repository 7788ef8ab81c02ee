#!/usr/bin/env bash
# Runs scripts of this tree, as it is committed, in a minimal system of the Debian suite SUITE that has nothing of what
# they need: they are to install it. They run as root, or as an ordinary user with sudo.
#   scripts/fresh-system-check.sh SUITE root|user SCRIPT...
# Exit code 77: not run, because such a system cannot be made here.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh
source scripts/cache.sh
source scripts/fresh-system.sh
[ $# -ge 3 ] && [[ $2 == root || $2 == user ]] || { echo "usage: $0 SUITE root|user SCRIPT..." >&2; exit 2; }
who=$2 commands=("${@:3}")

makeFreshSystem "$1" || {
  printf '\n######## Fresh system (%s) not run: see above\n' "$1" >&2
  exit 77
}
[ ! -e "$root/usr/bin/c++" ] && [ ! -e "$root/usr/bin/cmake" ] || { echo "the base has what is to be installed" >&2; exit 1; }

home=/root id=0
if [ "$who" = user ]; then
  home=/home/user id=1000
  chroot "$root" useradd --create-home --uid $id user
  echo 'user ALL=(ALL) NOPASSWD: ALL' >"$root/etc/sudoers.d/user"
fi
git clone --quiet --depth 1 "file://$PWD" "$root/clone"  # the same folder for all, so that they share kept objects
chown -R $id:$id "$root/clone"

log=build/fresh-$suite-$who.log
mkdir -p build
: >"$log"
for command in "${commands[@]}"; do
  echo "-- $suite, as $who: $command"
  inside $id $home "/clone/$command" </dev/null 2>&1 | tee -a "$log" || {
    echo "exit code ${PIPESTATUS[0]} from: $command, in a fresh system; all it printed is in $log" >&2
    exit 1
  }
done
keepPackages
if grep -n 'warning:' "$log" >&2; then
  echo "the compiler warns: see above, lines of $log" >&2
  exit 1
fi
