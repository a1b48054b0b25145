# What `cmake --install` lays down: library, header, package files, program, man pages, guides, examples.

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

foreach(section 1 3)
  file(GLOB pages CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/man/*.${section}")
  install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()
# `man KTFormatString` and the other functions lead to the one page.
file(STRINGS "${PROJECT_SOURCE_DIR}/include/kelto.h" KELTO_PROTOTYPES REGEX "^[a-zA-Z].*KT[a-zA-Z0-9]+\\(")
foreach(prototype IN LISTS KELTO_PROTOTYPES)
  if(prototype MATCHES "^[a-zA-Z0-9_ *]*[ *](KT[a-zA-Z0-9]+)\\(")
    set(page "${PROJECT_BINARY_DIR}/man3/${CMAKE_MATCH_1}.3")
    file(CONFIGURE OUTPUT "${page}" CONTENT ".so man3/kelto.3\n")
    install(FILES "${page}" DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
  endif()
endforeach()

file(GLOB guides CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/*.md")
list(REMOVE_ITEM guides "${PROJECT_SOURCE_DIR}/docs/architecture.md")
install(FILES ${guides} DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION ${CMAKE_INSTALL_DOCDIR})

if(KELTO_BUILD_TOOLS)
  install(FILES "${PROJECT_SOURCE_DIR}/tools/completions/kelto.bash" RENAME kelto
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES "${PROJECT_SOURCE_DIR}/tools/completions/_kelto"
          DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
endif()
