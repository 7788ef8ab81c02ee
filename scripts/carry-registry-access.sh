#!/usr/bin/env bash
# Gives the system in the folder $1 this machine's way to the packages: how apt gets them (proxies, credentials), which
# certificates are trusted, how names are found.
set -euo pipefail
source "$(dirname "$0")/failures.sh"
root=$1

mkdir -p "$root/etc/apt/apt.conf.d"
apt-config dump | { grep -E '^Acquire::(https?::|Check-|Retries|Force)' || true; } >"$root/etc/apt/apt.conf.d/90machine"
for file in /etc/apt/auth.conf /etc/apt/auth.conf.d/. /usr/local/share/ca-certificates/. \
  /etc/ssl/certs/ca-certificates.crt /etc/resolv.conf /etc/hosts; do
  [ -e "$file" ] || continue
  mkdir -p "$root${file%/*}"
  cp -rL "$file" "$root$file"
done
