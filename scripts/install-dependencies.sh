#!/usr/bin/env bash
# Installs what the build, the tool and the tests need, from Debian's (or Ubuntu's) packages; nothing when all is there.
# The same list, with the reasons, stands in docs/dependencies.md.
set -euo pipefail

packages=(
  g++ cmake ninja-build                        # the build
  libsqlcipher-dev libssl-dev                  # the library's two engines
  libcli11-dev libxtensor-dev libeigen3-dev    # the tool
  libcairo2-dev pkg-config                     # the tool: pictures
  nlohmann-json3-dev                           # the tool: JSON
  libgtest-dev libsqlite3-dev nettle-dev binutils util-linux bsdutils  # the tests
  valgrind                                     # the tests under memcheck
  clang-format-14 clang-tidy-14                # the checks of the sources
)
[ -z "${TOVR_WITH_BENCH:-}" ] || packages+=(libbenchmark-dev)  # only for those who measure
[ -z "${TOVR_WITH_FUZZ:-}" ] || packages+=(clang-14 libclang-rt-14-dev llvm-14)  # only for those who fuzz
sources=(dpkg-dev debian-archive-keyring gcc make tcl)  # to build an engine from its source
[ -z "${TOVR_WITH_SOURCES:-}" ] || packages+=("${sources[@]}")
[ -z "${TOVR_WITH_WINDOWS:-}" ] || packages+=("${sources[@]}" g++-mingw-w64-x86-64-posix googletest wine64)
[ -z "${TOVR_WITH_LAYOUT:-}" ] || packages+=(clang python3)  # only for the layout check
[ -z "${TOVR_WITH_DOCS:-}" ] || packages+=(doxygen)          # only for the reference

installed() { [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

missing=()
for package in "${packages[@]}"; do installed "$package" || missing+=("$package"); done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "installing ${missing[*]}" >&2
"${as_root[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
