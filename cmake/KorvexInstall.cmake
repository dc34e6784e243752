include(CMakePackageConfigHelpers)

get_property(korvex_layers GLOBAL PROPERTY KORVEX_LAYERS)
install(TARGETS ${korvex_layers} korvex EXPORT korvexTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/korvex)
install(TARGETS korvex_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/korvex
  FILES_MATCHING PATTERN "*.hpp" PATTERN "win32" EXCLUDE PATTERN "driver" EXCLUDE
  PATTERN "json_codec.hpp" EXCLUDE)
install(EXPORT korvexTargets NAMESPACE korvex:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/korvex)

configure_package_config_file(cmake/korvexConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/korvexConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/korvex)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/korvexConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/korvexConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/korvexConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/korvex)
