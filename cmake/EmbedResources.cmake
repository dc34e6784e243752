# Embeds every file under resources/ (but its README, the tools/ that made them and the toolbox/
# bitmaps, which only the Windows DLL carries, in its resource script) into the base library as
# byte arrays,
# found at run time by their path below resources/ ("sounds/101.wav"). There is no run-time file
# lookup: the library carries its resources as the original carried them in its binary.

function(korvex_embed_resources target resource_dir)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS RELATIVE ${resource_dir} ${resource_dir}/*)
  list(FILTER files EXCLUDE REGEX "(^|/)README|^tools/|^toolbox/")
  list(SORT files)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/embedded_resources.cpp)
  set(absolute)
  foreach(f IN LISTS files)
    list(APPEND absolute ${resource_dir}/${f})
  endforeach()
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DRESOURCE_DIR=${resource_dir} "-DFILES=${files}" -DOUTPUT=${output}
            -P ${PROJECT_SOURCE_DIR}/cmake/GenerateResources.cmake
    DEPENDS ${absolute} ${PROJECT_SOURCE_DIR}/cmake/GenerateResources.cmake
    COMMENT "Embedding ${CMAKE_CURRENT_LIST_DIR} resources"
    VERBATIM)
  target_sources(${target} PRIVATE ${output})
endfunction()
