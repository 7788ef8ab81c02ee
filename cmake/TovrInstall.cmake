# What `cmake --install` gives: the library, the host-facing headers, the reference host, and the packages that CMake
# and pkg-config find them by. The headers keep their folders under one folder of ours.
include(CMakePackageConfigHelpers)

set(TOVR_INSTALLED_INCLUDES ${CMAKE_INSTALL_INCLUDEDIR}/tovrdatabaseservice)
set(TOVR_INSTALLED_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/tovrdatabaseservice)

foreach(header IN LISTS TOVR_CONTRACT_HEADERS)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/src/${header} DESTINATION ${TOVR_INSTALLED_INCLUDES}/${folder} COMPONENT dev)
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/host/PluginHost.h ${PROJECT_SOURCE_DIR}/host/PluginLibrary.h
              ${PROJECT_SOURCE_DIR}/host/StatusText.h
        DESTINATION ${TOVR_INSTALLED_INCLUDES}/host COMPONENT dev)

set_target_properties(tovr_contract PROPERTIES EXPORT_NAME headers)
set_target_properties(tovr_host PROPERTIES EXPORT_NAME host)
install(TARGETS tovrdatabaseservice EXPORT tovrdatabaseserviceTargets
        RUNTIME COMPONENT library
        LIBRARY COMPONENT library NAMELINK_COMPONENT dev
        ARCHIVE COMPONENT dev)
install(TARGETS tovr_host tovr_contract EXPORT tovrdatabaseserviceTargets ARCHIVE COMPONENT dev)
install(EXPORT tovrdatabaseserviceTargets NAMESPACE tovrdatabaseservice:: DESTINATION ${TOVR_INSTALLED_PACKAGE}
        COMPONENT dev)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/tovrdatabaseserviceConfig.cmake.in
  ${PROJECT_BINARY_DIR}/tovrdatabaseserviceConfig.cmake INSTALL_DESTINATION ${TOVR_INSTALLED_PACKAGE})
# 0.x: any minor version may change what hosts see.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tovrdatabaseserviceConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tovrdatabaseserviceConfig.cmake
              ${PROJECT_BINARY_DIR}/tovrdatabaseserviceConfigVersion.cmake DESTINATION ${TOVR_INSTALLED_PACKAGE} COMPONENT dev)

# The name that hosts load. Without a development package there is no other.
set(TOVR_PLUGIN_NAME libtovrdatabaseservice.so.0)
set(TOVR_PLUGIN_INSTALLED ${CMAKE_INSTALL_LIBDIR}/${TOVR_PLUGIN_NAME})
if(WIN32)
  set(TOVR_PLUGIN_NAME tovrdatabaseservice.dll)
  set(TOVR_PLUGIN_INSTALLED ${CMAKE_INSTALL_BINDIR}/${TOVR_PLUGIN_NAME})
endif()
# The package is wherever its file is, so that the folder may be moved.
file(RELATIVE_PATH TOVR_PREFIX_FROM_PC /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
list(TRANSFORM CMAKE_DL_LIBS PREPEND -l OUTPUT_VARIABLE CMAKE_DL_LIBS_FLAG)
configure_file(${PROJECT_SOURCE_DIR}/cmake/tovrdatabaseservice.pc.in ${PROJECT_BINARY_DIR}/tovrdatabaseservice.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tovrdatabaseservice.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# What a developer of hosts reads, and the tried example with a project around it.
install(FILES ${PROJECT_SOURCE_DIR}/docs/host-guide.md ${PROJECT_SOURCE_DIR}/docs/file-format.md
              ${PROJECT_SOURCE_DIR}/docs/compatibility.md ${PROJECT_SOURCE_DIR}/docs/durability.md
              ${PROJECT_SOURCE_DIR}/THIRD-PARTY.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev)
install(FILES ${PROJECT_SOURCE_DIR}/examples/store_and_read.cpp DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT dev)
install(FILES ${PROJECT_SOURCE_DIR}/examples/consumer/CMakeLists.txt
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples/consumer COMPONENT dev)
