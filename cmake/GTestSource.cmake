# GoogleTest: the installed package, or, where there is none for the target
# (the MinGW cross build), built from the sources Debian's googletest
# package ships, under the same target names.
find_package(GTest QUIET)
if(NOT GTest_FOUND)
  set(gtest_src /usr/src/googletest)
  if(NOT EXISTS ${gtest_src}/CMakeLists.txt)
    message(FATAL_ERROR "GoogleTest not found: install googletest (sources in ${gtest_src})")
  endif()
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(gtest_disable_pthreads OFF CACHE BOOL "" FORCE)
  add_subdirectory(${gtest_src} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  foreach(lib gtest gtest_main gmock)
    if(NOT TARGET GTest::${lib})
      add_library(GTest::${lib} ALIAS ${lib})
    endif()
  endforeach()
endif()
