# Compiler settings shared by every target of the project.
add_library(korvex_options INTERFACE)
add_library(korvex::options ALIAS korvex_options)
target_compile_options(korvex_options INTERFACE
  $<BUILD_INTERFACE:-Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor -Wimplicit-fallthrough>)
if(KORVEX_SANITIZE)
  target_compile_options(korvex_options INTERFACE
    $<BUILD_INTERFACE:-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer>)
  target_link_options(korvex_options INTERFACE
    $<BUILD_INTERFACE:-fsanitize=address,undefined -fno-sanitize-recover=all>)
endif()
if(KORVEX_FUZZ)
  # The whole library carries the fuzzer's coverage counters, or it could only steer by the
  # target's own few lines; every finding stops the run (no recovery).
  target_compile_options(korvex_options INTERFACE
    $<BUILD_INTERFACE:-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer>)
  target_link_options(korvex_options INTERFACE
    $<BUILD_INTERFACE:-fsanitize=address,undefined -fno-sanitize-recover=all>)
endif()

# Adds a library for one layer of src/: every .cpp in the listed folders (less the EXCLUDE file
# names, plus the SOURCES given relative to src/), public headers found from src/ so that includes
# read "host/variant.hpp". EXCLUDE and SOURCES swap a platform-specific file for another.
function(korvex_layer target)
  cmake_parse_arguments(ARG "" "" "DIRS;DEPS;PRIVATE_DEPS;EXCLUDE;SOURCES" ${ARGN})
  # A new folder or file is picked up at the next build (CONFIGURE_DEPENDS).
  set(sources)
  foreach(dir IN LISTS ARG_DIRS)
    file(GLOB dir_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp)
    foreach(excluded IN LISTS ARG_EXCLUDE)
      list(FILTER dir_sources EXCLUDE REGEX "/${excluded}$")
    endforeach()
    list(APPEND sources ${dir_sources})
  endforeach()
  foreach(source IN LISTS ARG_SOURCES)
    list(APPEND sources ${CMAKE_CURRENT_SOURCE_DIR}/${source})
  endforeach()
  if(NOT sources)
    # A layer whose folders hold no code yet links through to the layers it stands on.
    add_library(${target} INTERFACE)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${target})
    target_link_libraries(${target} INTERFACE ${ARG_DEPS})
    add_library(korvex::${target} ALIAS ${target})
    set_property(GLOBAL APPEND PROPERTY KORVEX_LAYERS ${target})
    return()
  endif()
  add_library(${target} STATIC ${sources})
  add_library(korvex::${target} ALIAS ${target})
  set_target_properties(${target} PROPERTIES OUTPUT_NAME korvex_${target} EXPORT_NAME ${target})
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/korvex>)
  target_link_libraries(${target} PUBLIC ${ARG_DEPS} PRIVATE $<BUILD_INTERFACE:korvex_options> ${ARG_PRIVATE_DEPS})
  set_property(GLOBAL APPEND PROPERTY KORVEX_LAYERS ${target})
endfunction()
