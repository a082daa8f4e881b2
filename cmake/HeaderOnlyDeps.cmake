# CLI11 (the tool's command line) and nlohmann-json (its JSON output) are
# header-only packages under the host's /usr/include. A native build takes
# their CMake packages. A cross build must not put the host's /usr/include
# on its include path, where the host C library's headers would win over
# the target's, so it gets a copy of just these two libraries' headers.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(CLI11 2 REQUIRED)
  find_package(nlohmann_json 3 REQUIRED)
  return()
endif()
set(_header_only_dir ${PROJECT_BINARY_DIR}/header-only)
foreach(_header CLI/CLI.hpp nlohmann/json.hpp)
  string(MAKE_C_IDENTIFIER ${_header} _var)
  find_path(BRAXCFG_${_var}_DIR ${_header} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  get_filename_component(_folder ${_header} DIRECTORY)
  file(COPY ${BRAXCFG_${_var}_DIR}/${_folder} DESTINATION ${_header_only_dir})
endforeach()
add_library(CLI11::CLI11 INTERFACE IMPORTED)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${_header_only_dir})
target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE ${_header_only_dir})
