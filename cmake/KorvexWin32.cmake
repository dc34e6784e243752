# What the Windows cross build takes from the build machine. nlohmann-json is header-only, but
# the cross compiler must not see the rest of the build machine's /usr/include: its one folder is
# copied into the build tree and offered as the usual target.
find_path(KORVEX_NLOHMANN_JSON_INCLUDE_DIR nlohmann/json.hpp
  PATHS /usr/include /usr/local/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
  DOC "The folder holding nlohmann/json.hpp")
if(NOT KORVEX_NLOHMANN_JSON_INCLUDE_DIR)
  message(FATAL_ERROR "nlohmann/json.hpp not found (install nlohmann-json3-dev)")
endif()
set(korvex_json_include ${CMAKE_BINARY_DIR}/third_party/include)
file(COPY ${KORVEX_NLOHMANN_JSON_INCLUDE_DIR}/nlohmann DESTINATION ${korvex_json_include})
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
set_target_properties(nlohmann_json::nlohmann_json PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES ${korvex_json_include})

# The optimisation of the native builds (-O2): at -O3, GCC 12 warns falsely of overlapping copies
# inside libstdc++'s string concatenation (-Wrestrict, GCC bug 105329), which -Werror would make
# fatal.
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")
