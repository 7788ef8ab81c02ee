#!/usr/bin/env bash
# Builds what the Windows library, tool and tests link, with the MinGW-w64 cross compiler, and prints the folder, which
# CMake takes as -DCMAKE_FIND_ROOT_PATH. Exit code 77: the sources cannot be had here.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh
source scripts/cache.sh

openssl=3.0.20-1~deb12u2
sqlcipher=3.4.1-2
target=x86_64-w64-mingw32
prefix=$cache/windows

buildOpenssl() {  # libcrypto only: what SQLCipher 3 calls (AES, SHA-1, HMAC) and DES by its old functions
  scripts/fetch-source.sh bookworm openssl "$openssl" "$prefix/source/openssl"
  cd "$prefix/source/openssl"
  # libcrypto wants to clean up when its own module goes. That is what atexit means here; _onexit waits for the end of
  # the process, and would then run code of a plug-in that was unloaded long before.
  cat >module_onexit.c <<'C'
#include <stdlib.h>
_onexit_t module_onexit(_onexit_t function) { return atexit((void (*)(void))function) == 0 ? function : NULL; }
C
  quietly nice $target-gcc-posix -O2 -c module_onexit.c
  # No configuration file of the machine is to change what a plug-in does in its host: no-autoload-config.
  quietly nice ./Configure mingw64 --cross-compile-prefix=$target- --prefix=/ --libdir=lib no-shared no-tests no-module \
    no-engine no-dso no-legacy no-autoload-config no-autoerrinit no-filenames no-ui-console no-sock no-comp no-ssl no-tls \
    no-dtls no-ct no-cms no-cmp no-ocsp no-ts no-srp no-psk no-ec no-dh no-dsa no-sm2 no-sm3 no-sm4 no-aria no-bf \
    no-blake2 no-camellia no-cast no-chacha no-gost no-idea no-md4 no-mdc2 no-poly1305 no-rc2 no-rc4 no-rmd160 no-scrypt \
    no-seed no-siphash no-siv no-ocb no-whirlpool -D_onexit=module_onexit
  quietly nice make -j"$(nproc)" build_generated libcrypto.a
  $target-ar rs libcrypto.a module_onexit.o
  cp libcrypto.a "$prefix/lib/"
  cp -r include/openssl "$prefix/include/"
  cd - >/dev/null
}

buildSqlcipher() {
  scripts/fetch-sqlcipher.sh bookworm "$sqlcipher" "$prefix/source/sqlcipher"
  cd "$prefix/source/sqlcipher"
  quietly nice $target-gcc-posix -O2 -DNDEBUG -DSQLITE_HAS_CODEC -DSQLITE_TEMP_STORE=2 "-I$prefix/include" -c sqlite3.c
  $target-ar crs "$prefix/lib/libsqlcipher.a" sqlite3.o
  mkdir "$prefix/include/sqlcipher"
  cp sqlite3.h "$prefix/include/sqlcipher/"
  cd - >/dev/null
}

buildGoogletest() {
  local build=$prefix/source/googletest
  quietly nice cmake -S /usr/src/googletest -B "$build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw-w64.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_GMOCK=OFF -DCMAKE_INSTALL_PREFIX="$prefix"
  quietly nice cmake --build "$build" --target install
}

# The tool's libraries of headers, away from the folder that holds those of this machine's own C library. Of fmt, too,
# only the headers: without the description of its library's file, CMake offers nothing else.
copyHeaders() {
  cp -r /usr/include/{CLI,eigen3,fmt,nlohmann,utf8cpp} "$prefix/include/"
  mkdir -p "$prefix/share/cmake" "$prefix/share/eigen3" "$prefix/lib/$target/cmake"
  cp -r /usr/share/cmake/{CLI11,nlohmann_json} "$prefix/share/cmake/"
  cp -r /usr/share/eigen3/cmake "$prefix/share/eigen3/"
  cp -r /usr/lib/*-linux-gnu/cmake/fmt "$prefix/lib/$target/cmake/"
  rm "$prefix/lib/$target/cmake/fmt/"fmt-targets-*.cmake
}

inputs=(scripts/build-windows-dependencies.sh scripts/fetch-sqlcipher.sh cmake/mingw-w64.cmake)
if ! isBuiltFrom "$prefix" "${inputs[@]}"; then
  TOVR_WITH_WINDOWS=1 scripts/install-dependencies.sh
  rm -rf "$prefix"
  mkdir -p "$prefix/include" "$prefix/lib"
  buildOpenssl
  buildSqlcipher
  buildGoogletest
  copyHeaders
  rm -rf "$prefix/source"
  stampOf "${inputs[@]}" >"$prefix/stamp"
fi
echo "$prefix"
