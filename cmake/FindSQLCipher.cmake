# Finds SQLCipher 3.4 to 4.x: the target SQLCipher::SQLCipher. Its header is <sqlcipher/sqlite3.h>, never the plain
# <sqlite3.h> that may lie beside it.
find_path(SQLCipher_INCLUDE_DIR NAMES sqlcipher/sqlite3.h)
find_library(SQLCipher_LIBRARY NAMES sqlcipher)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(SQLCipher REQUIRED_VARS SQLCipher_LIBRARY SQLCipher_INCLUDE_DIR)

if(SQLCipher_FOUND AND NOT TARGET SQLCipher::SQLCipher)
  add_library(SQLCipher::SQLCipher UNKNOWN IMPORTED)
  set_target_properties(
    SQLCipher::SQLCipher
    PROPERTIES IMPORTED_LOCATION ${SQLCipher_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${SQLCipher_INCLUDE_DIR}
               INTERFACE_COMPILE_DEFINITIONS SQLITE_HAS_CODEC)
  if(SQLCipher_LIBRARY MATCHES "\\.a$")  # a static one brings nothing of its own along
    find_package(OpenSSL 1.1 REQUIRED COMPONENTS Crypto)
    set_target_properties(SQLCipher::SQLCipher PROPERTIES INTERFACE_LINK_LIBRARIES OpenSSL::Crypto)
  endif()
endif()
mark_as_advanced(SQLCipher_INCLUDE_DIR SQLCipher_LIBRARY)
