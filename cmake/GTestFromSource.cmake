# A cross build finds no GoogleTest for its target: build it from the sources
# Debian ships (package googletest), whose targets already carry FindGTest's names.
set(NKW_PAL_GTEST_SOURCE_DIR /usr/src/googletest CACHE PATH "GoogleTest sources for cross builds")
if(NOT EXISTS "${NKW_PAL_GTEST_SOURCE_DIR}/CMakeLists.txt")
  message(FATAL_ERROR "no GoogleTest sources in ${NKW_PAL_GTEST_SOURCE_DIR} (install googletest)")
endif()
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${NKW_PAL_GTEST_SOURCE_DIR} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
