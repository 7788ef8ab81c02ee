#!/usr/bin/env bash
# Fetches the source package PACKAGE, exactly of VERSION, from the Debian suite SUITE and unpacks it into FOLDER. The
# mirror is the one this machine is set up with; apt checks the signatures; the machine's own configuration stays as it
# is. Exit code 77: the source cannot be had here.
set -euo pipefail
source "$(dirname "$0")/failures.sh"
scripts=$(cd "$(dirname "$0")" && pwd)
[ $# -eq 4 ] || { echo "usage: $0 SUITE PACKAGE VERSION FOLDER" >&2; exit 2; }
suite=$1 package=$2 version=$3 folder=$4
keyring=/usr/share/keyrings/debian-archive-keyring.gpg

cannot() { echo "cannot fetch $package $version of $suite: $*" >&2; exit 77; }

[ -r "$keyring" ] || cannot "no $keyring (package debian-archive-keyring)"
command -v dpkg-source >/dev/null || cannot "no dpkg-source (package dpkg-dev)"
mirror=$("$scripts/debian-mirror.sh") || cannot "no mirror"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/state/lists/partial" "$work/cache/archives/partial" "$work/parts"
echo "deb-src [signed-by=$keyring] $mirror $suite main" >"$work/sources.list"
cat >"$work/apt.conf" <<CONF
Dir::Etc::sourcelist "$work/sources.list";
Dir::Etc::sourceparts "$work/parts";
Dir::State "$work/state";
Dir::State::status "/var/lib/dpkg/status";
Dir::Cache "$work/cache";
APT::Sandbox::User "$(id -un)";
Acquire::Retries "2";
Acquire::http::Timeout "30";
CONF
apt() { APT_CONFIG="$work/apt.conf" apt-get -qq "$@" >&2; }

cd "$work"
apt update -o APT::Update::Error-Mode=any || cannot "no list of sources"
apt source --download-only "$package=$version" || cannot "no such version, or an incomplete download"

rm -rf "$folder"
mkdir -p "$(dirname "$folder")"
quietly dpkg-source --no-check -x "$package"_*.dsc "$folder"  # apt has checked its hashes against the signed list
