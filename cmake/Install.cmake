# Install rules: the library, its public headers, a pkg-config file and a
# CMake package, so a daemon can use pkg-config or find_package(nkw_pal).
include(CMakePackageConfigHelpers)

set(nkw_pal_install_targets nkw_pal)
if(NKW_PAL_BUILD_STATIC)
  list(APPEND nkw_pal_install_targets nkw_pal_static)
endif()
# On a PC the simulated modem is installed with the library, so daemons
# under development link and run against it.
if(NOT NKW_PAL_MIPC_SDK_DIR)
  list(APPEND nkw_pal_install_targets mipc_msg)
  file(GLOB sim_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/sim/include/*.h)
  install(FILES ${PROJECT_SOURCE_DIR}/modem_ipc/include/mipc_msg.h ${sim_headers}
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mipc_sim)
endif()

install(TARGETS ${nkw_pal_install_targets} EXPORT nkw_palTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/nkw_pal.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/nkw_pal DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT nkw_palTargets NAMESPACE nkw_pal:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/nkw_pal)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/nkw_palConfig.cmake.in
  ${PROJECT_BINARY_DIR}/nkw_palConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/nkw_pal)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/nkw_palConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/nkw_palConfig.cmake
              ${PROJECT_BINARY_DIR}/nkw_palConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/nkw_pal)

# The pkg-config file names the prefix the tree is installed to.
install(CODE "
  set(NKW_PAL_PC_TEMPLATE \"${PROJECT_SOURCE_DIR}/cmake/nkw_pal.pc.in\")
  set(NKW_PAL_PC_BINARY_DIR \"${PROJECT_BINARY_DIR}\")
  set(NKW_PAL_PC_LIBDIR_REL \"${CMAKE_INSTALL_LIBDIR}\")
  set(NKW_PAL_PC_INCLUDEDIR_REL \"${CMAKE_INSTALL_INCLUDEDIR}\")
  set(PROJECT_DESCRIPTION \"${PROJECT_DESCRIPTION}\")
  set(PROJECT_VERSION \"${PROJECT_VERSION}\")
  include(\"${PROJECT_SOURCE_DIR}/cmake/WritePkgConfig.cmake\")
")
