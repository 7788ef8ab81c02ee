#!/usr/bin/env bash
# Makes the Debian packages, has lintian look at them, and tries them in a minimal system that has nothing else of ours:
# installed, used, removed. Exit code 77: made and looked at, but not tried, because no such system can be made here.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh
source scripts/cache.sh
source scripts/fresh-system.sh

scripts/package.sh
packages=(build/packages/packages/*.deb)
lintian --fail-on error --allow-root "${packages[@]}"
echo "lintian finds no error in ${#packages[@]} packages"

unpacked=$(mktemp -d)
for package in "${packages[@]}"; do dpkg-deb --extract "$package" "$unpacked"; done
mapfile -t binaries < <(find "$unpacked" -type f \( -path '*/bin/*' -o -name '*.so' -o -name '*.so.*' \))
[ ${#binaries[@]} -eq 3 ]  # the plug-in, the tool, the Python module
scripts/hardening-check.sh "${binaries[@]}"
rm -r "$unpacked"

suite=$(. /etc/os-release && echo "$VERSION_CODENAME")
makeFreshSystem "$suite" || {
  printf '\n######## Packages not tried in a minimal system: see above\n' >&2
  exit 77
}
mkdir "$root/try"
cp "${packages[@]}" scripts/try-packages.sh scripts/tool-trial.sh "$root/try/"
inside 0 /root bash /try/try-packages.sh
keepPackages
