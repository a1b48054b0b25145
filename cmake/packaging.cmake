# What `cpack` makes of a build: Debian packages, and the source archive. A build for packages is configured with
#     -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_SKIP_INSTALL_RPATH=ON
# so that files go where Debian has them; scripts/package does it all.

set(CPACK_PACKAGE_NAME kelto)
set(CPACK_PACKAGE_VENDOR "Kelto project")
set(CPACK_PACKAGE_CONTACT "Kelto project <maintainers@kelto.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "message catalogs and formatting for native programs")
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET kelto-locale)
  list(APPEND CPACK_COMPONENTS_ALL locale)
endif()
if(TARGET kelto-cli)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(TARGET kelto-po)
  list(APPEND CPACK_COMPONENTS_ALL po)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")
set(KELTO_DEBIAN_VERSION "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

set(what "Kelto loads message catalogs (XLIFF), fetches messages by number, formats them
with arguments that each conversion names by its position, and converts text
between character sets.
.
")

# Beside the packages of another architecture. cpack has no variable for that, so it stands behind the section.
set(multi_arch "\nMulti-Arch: same")

# The library. Programs built against it depend on the version that first had all that they can use.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libkelto${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION "libs${multi_arch}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# kelto_package_library(<component> <library> <list> <node>): what the package of a shared library has beside its files.
# A trigger calls ldconfig; cpack would add scripts that do, unless others are named here, and these do not exist. The
# version that each name of the list needs is told, so that a program depends on no later one than it uses.
function(kelto_package_library component library list node)
  set(folder "${PROJECT_BINARY_DIR}/packaging/${component}")
  file(WRITE "${folder}/triggers" "activate-noawait ldconfig\n")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list}")
  file(STRINGS "${list}" names)
  set(symbols)
  foreach(line IN LISTS names)
    string(REGEX MATCH "^([^ ]+) [a-z]+ ?(.*)$" line "${line}")
    set(version "${CMAKE_MATCH_2}")
    if(NOT version)
      set(version 1.0)
    endif()
    list(APPEND symbols " ${CMAKE_MATCH_1}@${node}_${version} ${version}"
      " ${node}_${version}@${node}_${version} ${version}")
  endforeach()
  list(REMOVE_DUPLICATES symbols)
  list(SORT symbols)
  list(PREPEND symbols "${library}.so.${PROJECT_VERSION_MAJOR} ${library}${PROJECT_VERSION_MAJOR} #MINVER#")
  list(JOIN symbols "\n" symbols)
  file(WRITE "${folder}/symbols" "${symbols}\n")
  string(TOUPPER "${component}" component)
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA "${folder}/triggers" "${folder}/symbols"
      "${PROJECT_BINARY_DIR}/packaging/no/postinst" "${PROJECT_BINARY_DIR}/packaging/no/postrm" PARENT_SCOPE)
endfunction()
kelto_package_library(runtime libkelto "${PROJECT_SOURCE_DIR}/tests/linkage/exported_names.txt" KELTO)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${what}This package has the shared library.")

# The add-on.
set(add_on)
if(TARGET kelto-locale)
  set(CPACK_DEBIAN_LOCALE_PACKAGE_NAME libkelto-locale${PROJECT_VERSION_MAJOR})
  set(CPACK_DEBIAN_LOCALE_PACKAGE_SECTION "libs${multi_arch}")
  set(CPACK_DEBIAN_LOCALE_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_LOCALE_PACKAGE_DEPENDS "libkelto${PROJECT_VERSION_MAJOR} (>= ${PROJECT_VERSION})")
  kelto_package_library(locale libkelto-locale "${PROJECT_SOURCE_DIR}/tests/linkage/exported_names_locale.txt"
    KELTO_LOCALE)
  set(CPACK_DEBIAN_LOCALE_DESCRIPTION
    "${what}This package has the add-on that writes numbers, dates, amounts and lists as
the readers of a language do.")
  set(add_on "libkelto-locale${PROJECT_VERSION_MAJOR} (= ${KELTO_DEBIAN_VERSION}), ")
endif()

# The headers. pkg-config looks at the packages of the libraries that the library itself uses.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkelto-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION "libdevel${multi_arch}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "libkelto${PROJECT_VERSION_MAJOR} (= ${KELTO_DEBIAN_VERSION}), ${add_on}libicu-dev, libexpat1-dev (>= 2.4)")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "kelto-tools, pkg-config")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
  "${what}This package has the header, the manual, the guides and example programs.")

# The program.
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME kelto-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${add_on}libkelto${PROJECT_VERSION_MAJOR} (= ${KELTO_DEBIAN_VERSION})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "${what}This package has the program kelto for message files and character sets.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS kelto-po)

# The helper for PO files.
set(CPACK_DEBIAN_PO_PACKAGE_NAME kelto-po)
set(CPACK_DEBIAN_PO_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PO_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PO_DESCRIPTION "${what}This package has what the program kelto reads and writes PO files with.
It is linked with libgettextpo, whose licence is GPL-3 or later.")

# What Debian wants beside each package's files.
set(KELTO_PACKAGES "runtime=${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME}" "development=${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME}"
    "locale=${CPACK_DEBIAN_LOCALE_PACKAGE_NAME}" "tools=${CPACK_DEBIAN_TOOLS_PACKAGE_NAME}"
    "po=${CPACK_DEBIAN_PO_PACKAGE_NAME}")
configure_file("${PROJECT_SOURCE_DIR}/packaging/finish.cmake.in" "${PROJECT_BINARY_DIR}/packaging/finish.cmake" @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_BINARY_DIR}/packaging/finish.cmake")

# The source archive: kelto-VERSION.tar.gz, which unpacks to a folder of that name. scripts/package has git make it of
# what is committed; this is for sources that are no clone.
set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME "kelto-${PROJECT_VERSION}")
set(CPACK_SOURCE_IGNORE_FILES "/\\.git(/|$)" "^${PROJECT_SOURCE_DIR}/build/" "^${PROJECT_BINARY_DIR}/" "\\.swp$" "~$")

include(CPack)
