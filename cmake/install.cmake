# What `cmake --install` lays down: library, add-on, headers, package files, programs, man pages, guides, examples. Each
# file belongs to one of five components, which are also the five packages: runtime, locale, development, tools, po.

include(CMakePackageConfigHelpers)
set(KELTO_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/Kelto")
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

install(TARGETS kelto EXPORT KeltoTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
file(GLOB headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/include/*.h" "${PROJECT_SOURCE_DIR}/include/*.hpp")
set(packages kelto)
if(TARGET kelto-locale)
  # It finds the library beside itself.
  set_target_properties(kelto-locale PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(TARGETS kelto-locale EXPORT KeltoTargets
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT locale NAMELINK_COMPONENT development)
  list(APPEND packages kelto-locale)
else()
  list(FILTER headers EXCLUDE REGEX "/kelto-locale[.]h")
endif()
install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/kelto" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.hpp")

# find_package(Kelto)
install(EXPORT KeltoTargets NAMESPACE Kelto:: DESTINATION ${KELTO_CMAKE_DIR})
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/KeltoConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/KeltoConfig.cmake" INSTALL_DESTINATION ${KELTO_CMAKE_DIR})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/KeltoConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
file(GLOB functions CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/KeltoMessages.cmake")
install(FILES "${PROJECT_BINARY_DIR}/KeltoConfig.cmake" "${PROJECT_BINARY_DIR}/KeltoConfigVersion.cmake" ${functions}
        DESTINATION ${KELTO_CMAKE_DIR})

# pkg-config. The paths are relative to the file itself, so that `cmake --install --prefix` and moved trees work; but
# what is installed in a folder of the system stays there, and its paths are those that compilers know.
foreach(path PREFIX FULL_INCLUDEDIR FULL_LIBDIR)
  file(RELATIVE_PATH KELTO_PC_TO_${path} "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_${path}}")
  string(REGEX REPLACE "/$" "" KELTO_PC_TO_${path} "${KELTO_PC_TO_${path}}")
endforeach()
set(KELTO_PC_PREFIX "\${pcfiledir}/${KELTO_PC_TO_PREFIX}")
set(KELTO_PC_INCLUDEDIR "\${pcfiledir}/${KELTO_PC_TO_FULL_INCLUDEDIR}")
set(KELTO_PC_LIBDIR "\${pcfiledir}/${KELTO_PC_TO_FULL_LIBDIR}")
foreach(package IN LISTS packages)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in" "${PROJECT_BINARY_DIR}/${package}.pc" @ONLY)
endforeach()
set(pc_folder "\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(pc_folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endif()
set(pc_source "${PROJECT_BINARY_DIR}")
if(CMAKE_INSTALL_PREFIX MATCHES "^/usr(/local)?$")
  set(KELTO_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
  set(KELTO_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
  set(KELTO_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(pc_source "${PROJECT_BINARY_DIR}/system")
  foreach(package IN LISTS packages)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in" "${pc_source}/${package}.pc" @ONLY)
  endforeach()
endif()
foreach(package IN LISTS packages)
  install(CODE "set(pc \"${PROJECT_BINARY_DIR}/${package}.pc\")
    if(\"\${CMAKE_INSTALL_PREFIX}\" STREQUAL \"${CMAKE_INSTALL_PREFIX}\")
      set(pc \"${pc_source}/${package}.pc\")
    endif()
    file(INSTALL \"\${pc}\" DESTINATION \"${pc_folder}\")")
endforeach()

# The manual: section 1 comes with the program, the others with the header.
function(kelto_install_pages section component)
  file(GLOB pages CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/man/*.${section}")
  if(NOT TARGET kelto-locale)
    list(FILTER pages EXCLUDE REGEX "/kelto-locale")
  endif()
  foreach(page IN LISTS pages)
    get_filename_component(name "${page}" NAME)
    file(READ "${page}" text)
    string(REGEX REPLACE "\"Kelto [0-9.]+\"" "\"Kelto ${PROJECT_VERSION}\"" text "${text}")
    file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/man/${name}" CONTENT "@text@" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/man/${name}" DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section}
            COMPONENT ${component})
  endforeach()
endfunction()
foreach(section 3 5 7)
  kelto_install_pages(${section} development)
endforeach()
# A page for each function, by Python; where that is missing, their names lead to the one page of them all.
file(REMOVE_RECURSE "${PROJECT_BINARY_DIR}/man3")
find_package(Python3 QUIET COMPONENTS Interpreter)
foreach(package IN LISTS packages)
  set(header "${PROJECT_SOURCE_DIR}/include/${package}.h")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${header}")
  if(Python3_FOUND)
    execute_process(COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/docs/man/make_man_page.py" --functions
                            "${header}" "${PROJECT_BINARY_DIR}/man3"
                    COMMAND_ERROR_IS_FATAL ANY)
  else()
    file(STRINGS "${header}" prototypes REGEX "^[a-zA-Z].*KT[a-zA-Z0-9]+\\(")
    foreach(prototype IN LISTS prototypes)
      if(prototype MATCHES "^[a-zA-Z0-9_ *]*[ *](KT[a-zA-Z0-9]+)\\(")
        file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/man3/${CMAKE_MATCH_1}.3" CONTENT ".so man3/${package}.3\n")
      endif()
    endforeach()
  endif()
endforeach()
install(DIRECTORY "${PROJECT_BINARY_DIR}/man3" DESTINATION ${CMAKE_INSTALL_MANDIR})

# The description of message files for editors.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/share/kelto" DESTINATION ${CMAKE_INSTALL_DATADIR})

# Guides and examples.
file(GLOB guides CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/*.md")
list(REMOVE_ITEM guides "${PROJECT_SOURCE_DIR}/docs/architecture.md" "${PROJECT_SOURCE_DIR}/docs/sources.md")
install(FILES ${guides} "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION ${CMAKE_INSTALL_DOCDIR})

# The program. It has an export file of its own, since the library may be installed without it.
if(TARGET kelto-cli)
  set_target_properties(kelto-cli PROPERTIES EXPORT_NAME program)
  file(RELATIVE_PATH KELTO_BIN_TO_LIB "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(kelto-cli PROPERTIES INSTALL_RPATH "$ORIGIN/${KELTO_BIN_TO_LIB}")
  install(TARGETS kelto-cli EXPORT KeltoProgram RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(EXPORT KeltoProgram NAMESPACE Kelto:: DESTINATION ${KELTO_CMAKE_DIR} COMPONENT tools)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/tools/messages" DESTINATION ${CMAKE_INSTALL_DATADIR}/kelto COMPONENT tools)
  kelto_install_pages(1 tools)
  install(FILES "${PROJECT_SOURCE_DIR}/tools/completions/kelto.bash" RENAME kelto
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
  # zsh looks in two places, of which Debian leaves the first to the administrator.
  set(completions "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr" AND EXISTS /etc/debian_version)
    set(completions "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
  endif()
  install(FILES "${PROJECT_SOURCE_DIR}/tools/completions/_kelto" DESTINATION ${completions} COMPONENT tools)
endif()

# What reads and writes PO files, by itself for its licence and its safety.
if(TARGET kelto-po)
  install(TARGETS kelto-po RUNTIME DESTINATION "${CMAKE_INSTALL_LIBEXECDIR}/kelto" COMPONENT po)
endif()

# Packages are made of Kelto alone, not of a project that it is a part of.
if(CMAKE_SOURCE_DIR STREQUAL PROJECT_SOURCE_DIR)
  include("${PROJECT_SOURCE_DIR}/cmake/packaging.cmake")
endif()
