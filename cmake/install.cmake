# What `cmake --install` lays down: library, header, package files, program, man pages, examples.

include(CMakePackageConfigHelpers)

install(TARGETS kelto EXPORT KeltoTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES "${PROJECT_SOURCE_DIR}/include/kelto.h" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT KeltoTargets NAMESPACE Kelto:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Kelto)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/KeltoConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/KeltoConfig.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Kelto)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/KeltoConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/KeltoConfig.cmake" "${PROJECT_BINARY_DIR}/KeltoConfigVersion.cmake"
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Kelto)

# Relative to the file itself, so that `cmake --install --prefix` and moved trees work.
file(RELATIVE_PATH KELTO_PC_TO_PREFIX "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" KELTO_PC_TO_PREFIX "${KELTO_PC_TO_PREFIX}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/kelto.pc.in" "${PROJECT_BINARY_DIR}/kelto.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kelto.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(EXISTS "${PROJECT_SOURCE_DIR}/docs/man")
  install(FILES "${PROJECT_SOURCE_DIR}/docs/man/kelto.1" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES "${PROJECT_SOURCE_DIR}/docs/man/kelto.3" DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
endif()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION ${CMAKE_INSTALL_DOCDIR})
