# What `cmake --build --preset release --target package` makes: Debian packages on Debian, a ZIP archive for Windows.
set(CPACK_PACKAGE_VENDOR "the maintainers of tovrdatabaseservice")
set(CPACK_PACKAGE_CONTACT "The maintainers <maintainers@tovrdatabaseservice.example>")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)

if(WIN32)  # one archive with everything; it works from where it is unpacked
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME tovrdatabaseservice-${PROJECT_VERSION}-windows-x64)
  install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/SECURITY.md
          DESTINATION ${CMAKE_INSTALL_DOCDIR})
  if(TOVR_LICENCES)  # a folder with those of what the binaries have in them
    install(DIRECTORY ${TOVR_LICENCES}/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/licences)
  endif()
  include(CPack)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library dev)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianStaging.cmake)
set(CPACK_PROJECT_SOURCE_DIR ${PROJECT_SOURCE_DIR})

# `package` is the Debian package of a component; `summary` and `text` describe it.
function(tovr_package component package section summary text depends)
  string(TOUPPER ${component} suffix)
  set(CPACK_DEBIAN_${suffix}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${suffix}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${suffix}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${suffix}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
endfunction()

# The loader's cache learns of the library, and packages that link it would depend on it.
file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
file(WRITE ${PROJECT_BINARY_DIR}/debian/shlibs
     "libtovrdatabaseservice 0 libtovrdatabaseservice0 (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/triggers ${PROJECT_BINARY_DIR}/debian/shlibs)

set(library_here "libtovrdatabaseservice0 (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
tovr_package(
  library libtovrdatabaseservice0 libs "plug-in library for the calibration data of LED screens"
  "Hosts load it at run time. It keeps coefficients, measurements and geometry of\nLED screens in encrypted database files."
  "")
tovr_package(
  dev libtovrdatabaseservice-dev libdevel "headers, reference host and guide of tovrdatabaseservice"
  "What it takes to write a host that loads the library: its interfaces and\nrecords, a reference host to link, CMake and pkg-config files, an example."
  "${library_here}")
if(TARGET tovrdb)
  list(APPEND CPACK_COMPONENTS_ALL tool)
  tovr_package(
    tool tovrdb utils "stores, reads and checks calibration data of LED screens"
    "Command-line host of the tovrdatabaseservice library: makes database files,\nputs and gets blocks of cells, draws, compares, checks and converts them."
    "${library_here}")
endif()
if(TOVR_BUILD_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/postinst
                                                ${PROJECT_SOURCE_DIR}/cmake/debian/prerm)
  math(EXPR next "${Python_VERSION_MINOR} + 1")
  tovr_package(
    python python3-tovrdb python "calibration data of LED walls as NumPy arrays"
    "A rectangle of cells out of an encrypted database file of the\ntovrdatabaseservice library is an array in one line, read and written."
    "${library_here}, python3 (>= 3.${Python_VERSION_MINOR}), python3 (<< 3.${next}), python3-numpy")
endif()
include(CPack)
