#!/usr/bin/env bash
# Run in a minimal system, by package-check.sh: installs the packages that lie beside it, uses what they bring as users
# do, removes them again, and looks for what they have left.
set -Eeuo pipefail
trap 'echo "try-packages.sh:$LINENO: exit code $? from: $BASH_COMMAND" >&2' ERR
cd "$(dirname "$0")"
source ./tool-trial.sh
export DEBIAN_FRONTEND=noninteractive TOVRDB_KEY='a key for the trial'
install() { apt-get install -y -qq --no-install-recommends "$@" >install.log 2>&1 || { tail -n 50 install.log >&2; false; }; }

everything() { find / -xdev -iname '*tovr*' -not -path '/try*' -not -path '/proc/*' -not -path '/ccache*' | sort; }
before=$(everything)
apt-get update -qq
install ./libtovrdatabaseservice0_*.deb ./tovrdb_*.deb

mkdir user
cd user
tovrdb --version
tryTool main
[ -s /usr/share/man/man1/tovrdb.1.gz ]
cd ..

# A host of one's own, by CMake and by pkg-config.
install ./libtovrdatabaseservice-dev_*.deb g++ cmake make pkg-config
examples=/usr/share/doc/tovrdatabaseservice/examples
cmake -S $examples/consumer -B consumer >cmake.log || { cat cmake.log >&2; false; }
cmake --build consumer
ctest --test-dir consumer --output-on-failure
read -ra flags <<<"$(pkg-config --cflags --libs tovrdatabaseservice)"
c++ -std=c++17 $examples/store_and_read.cpp "${flags[@]}" -o by_pkg_config
./by_pkg_config "$(pkg-config --variable=plugin tovrdatabaseservice)" by_pkg_config.db

python=$(find . -maxdepth 1 -name 'python3-tovrdb_*.deb')
if [ -n "$python" ]; then
  install "$python"
  (cd user && python3 -c '
import os, tovrdb
with tovrdb.open("wall.db", key=os.environ["TOVRDB_KEY"]) as wall:
    print(wall)
    print(wall.coef(type=1)[0:2, 0:2].shape)')
fi

apt-get purge -y -qq '*tovr*' >purge.log 2>&1 || { cat purge.log >&2; false; }
left=$(comm -13 <(echo "$before") <(everything))
[ -z "$left" ] || { printf 'left behind:\n%s\n' "$left" >&2; exit 1; }
echo "installed, used and removed; nothing is left"
