#!/usr/bin/env bash
# Installs, from Debian's packages, what the library and the tool need to be built, and what the named steps need besides
# (TOVR_WITH_TESTS=1 and so on); nothing when all is there. The same list, with the reasons, stands in
# docs/dependencies.md.
set -euo pipefail
source "$(dirname "$0")/failures.sh"

packages=(
  g++ cmake ninja-build                        # the build
  libsqlcipher-dev libssl-dev                  # the library's two engines
  libcli11-dev libfmt-dev libeigen3-dev        # the client and the tool
  libpango1.0-dev pkg-config                   # the tool: pictures, with cairo
  nlohmann-json3-dev libutfcpp-dev             # the client: JSON, UTF-8
)
[ -z "${TOVR_WITH_PYTHON:-}${TOVR_WITH_TESTS:-}" ] || packages+=(python3-dev pybind11-dev python3-numpy)
[ -z "${TOVR_WITH_TESTS:-}" ] || packages+=(libgtest-dev libsqlite3-dev nettle-dev binutils util-linux bsdutils
  fonts-dejavu-core fonts-wqy-microhei python3-pytest)
[ -z "${TOVR_WITH_BROWSER:-}" ] || packages+=(chromium chromium-driver python3 python3-selenium tidy)
[ -z "${TOVR_WITH_MEMCHECK:-}" ] || packages+=(valgrind)
[ -z "${TOVR_WITH_FORMAT:-}" ] || packages+=(clang-format-14)
[ -z "${TOVR_WITH_TIDY:-}" ] || packages+=(clang-tidy-14)
[ -z "${TOVR_WITH_FUZZ:-}" ] || packages+=(clang-14 libclang-rt-14-dev llvm-14)
[ -z "${TOVR_WITH_BENCH:-}" ] || packages+=(libbenchmark-dev)
[ -z "${TOVR_WITH_DOCS:-}" ] || packages+=(doxygen)
[ -z "${TOVR_WITH_CCACHE:-}" ] || packages+=(ccache)
[ -z "${TOVR_WITH_FRESH:-}" ] || packages+=(mmdebstrap debian-archive-keyring git util-linux)  # to make a fresh system
[ -z "${TOVR_WITH_PACKAGES:-}" ] || packages+=(binutils dpkg-dev file lintian)
sources=(dpkg-dev debian-archive-keyring gcc make tcl)  # to build an engine from its source
[ -z "${TOVR_WITH_SOURCES:-}" ] || packages+=("${sources[@]}")
[ -z "${TOVR_WITH_WINDOWS:-}" ] || packages+=("${sources[@]}" g++-mingw-w64-x86-64-posix googletest wine64)
[ -z "${TOVR_WITH_LAYOUT:-}" ] || packages+=(clang python3)

installed() { [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

missing=()
for package in "${packages[@]}"; do installed "$package" || missing+=("$package"); done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=(env)
[ "$(id -u)" -eq 0 ] || as_root=(sudo env)
echo "installing ${missing[*]}" >&2
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
