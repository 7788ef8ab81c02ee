#!/usr/bin/env bash
# Prints the mirror of Debian that this machine is set up with; it holds the other releases too. Exit code 77: none is.
set -euo pipefail
source "$(dirname "$0")/failures.sh"

codename=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
mirror=$(apt-get indextargets --format '$(CODENAME) $(REPO_URI)' 'Created-By: Packages' |
  sed -n "s/^${codename:-none} //p" | sort -u | head -n 1)
[ -n "$mirror" ] || { echo "this machine has no mirror of Debian ${codename:-} configured" >&2; exit 77; }
echo "$mirror"
