# Run at install time, when the prefix chosen with `cmake --install --prefix`
# is known: writes nkw_pal.pc with plain absolute directories (pkg-config's
# sysroot handling covers staging trees). Outside the system prefix the
# library directory goes into the consumer's run path as well, so a daemon
# built with `$(pkg-config --libs nkw_pal)` also starts.
foreach(var NKW_PAL_PC_TEMPLATE NKW_PAL_PC_BINARY_DIR NKW_PAL_PC_LIBDIR_REL
            NKW_PAL_PC_INCLUDEDIR_REL PROJECT_DESCRIPTION PROJECT_VERSION)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "WritePkgConfig.cmake: ${var} is not set")
  endif()
endforeach()

set(NKW_PAL_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
foreach(kind LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${NKW_PAL_PC_${kind}_REL}")
    set(NKW_PAL_PC_${kind} "${NKW_PAL_PC_${kind}_REL}")
  else()
    set(NKW_PAL_PC_${kind} "\${prefix}/${NKW_PAL_PC_${kind}_REL}")
  endif()
endforeach()
set(NKW_PAL_PC_RPATH "")
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(NKW_PAL_PC_RPATH " -Wl,-rpath,\${libdir}")
endif()

configure_file("${NKW_PAL_PC_TEMPLATE}" "${NKW_PAL_PC_BINARY_DIR}/pkgconfig/nkw_pal.pc" @ONLY)
string(REPLACE "\${prefix}" "${CMAKE_INSTALL_PREFIX}" pc_dir "${NKW_PAL_PC_LIBDIR}/pkgconfig")
file(INSTALL "${NKW_PAL_PC_BINARY_DIR}/pkgconfig/nkw_pal.pc" DESTINATION "${pc_dir}")
