# What `cmake --install` gives: the library, the host-facing headers, the reference host, and the packages that CMake
# and pkg-config find them by. The headers keep their folders under one folder of ours.
include(CMakePackageConfigHelpers)

set(TOVR_INSTALLED_INCLUDES ${CMAKE_INSTALL_INCLUDEDIR}/tovrdatabaseservice)
set(TOVR_INSTALLED_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/tovrdatabaseservice)

foreach(header IN LISTS TOVR_CONTRACT_HEADERS)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/src/${header} DESTINATION ${TOVR_INSTALLED_INCLUDES}/${folder})
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/host/PluginHost.h ${PROJECT_SOURCE_DIR}/host/PluginLibrary.h
              ${PROJECT_SOURCE_DIR}/host/StatusText.h
        DESTINATION ${TOVR_INSTALLED_INCLUDES}/host)

set_target_properties(tovr_contract PROPERTIES EXPORT_NAME headers)
set_target_properties(tovr_host PROPERTIES EXPORT_NAME host)
install(TARGETS tovrdatabaseservice tovr_host tovr_contract EXPORT tovrdatabaseserviceTargets)
install(EXPORT tovrdatabaseserviceTargets NAMESPACE tovrdatabaseservice:: DESTINATION ${TOVR_INSTALLED_PACKAGE})

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/tovrdatabaseserviceConfig.cmake.in
  ${PROJECT_BINARY_DIR}/tovrdatabaseserviceConfig.cmake INSTALL_DESTINATION ${TOVR_INSTALLED_PACKAGE})
# 0.x: any minor version may change what hosts see.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tovrdatabaseserviceConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tovrdatabaseserviceConfig.cmake
              ${PROJECT_BINARY_DIR}/tovrdatabaseserviceConfigVersion.cmake DESTINATION ${TOVR_INSTALLED_PACKAGE})

set(TOVR_PLUGIN_INSTALLED ${CMAKE_INSTALL_LIBDIR}/libtovrdatabaseservice${CMAKE_SHARED_LIBRARY_SUFFIX})
if(WIN32)
  set(TOVR_PLUGIN_INSTALLED ${CMAKE_INSTALL_BINDIR}/tovrdatabaseservice.dll)
endif()
list(TRANSFORM CMAKE_DL_LIBS PREPEND -l OUTPUT_VARIABLE CMAKE_DL_LIBS_FLAG)
configure_file(${PROJECT_SOURCE_DIR}/cmake/tovrdatabaseservice.pc.in ${PROJECT_BINARY_DIR}/tovrdatabaseservice.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tovrdatabaseservice.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
