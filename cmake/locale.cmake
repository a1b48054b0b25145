# The add-on libkelto-locale: numbers, dates, amounts and lists as people write them. It uses the library's public
# interface and ICU's libicui18n, so that a program that needs none of it pays nothing for it.

find_package(ICU COMPONENTS i18n)

file(GLOB KELTO_LOCALE_SOURCES CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/locale/*.cpp")
add_library(kelto-locale SHARED ${KELTO_LOCALE_SOURCES})
add_library(Kelto::locale ALIAS kelto-locale)

target_link_libraries(kelto-locale PUBLIC kelto PRIVATE ICU::i18n ICU::uc kelto_options kelto_hardening)
target_compile_options(kelto-locale PRIVATE -fno-exceptions -fno-rtti -fno-plt)
set(KELTO_LOCALE_VERSION_SCRIPT "${PROJECT_SOURCE_DIR}/locale/kelto-locale.version")
target_link_options(kelto-locale PRIVATE "-Wl,--version-script=${KELTO_LOCALE_VERSION_SCRIPT}" -Wl,--as-needed)
if(NOT KELTO_SANITIZE)
  target_link_options(kelto-locale PRIVATE -Wl,-z,defs)
endif()
set_target_properties(kelto-locale PROPERTIES
  EXPORT_NAME locale
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON
  LINK_DEPENDS "${KELTO_LOCALE_VERSION_SCRIPT}")
if(KELTO_CAN_LTO)
  set_target_properties(kelto-locale PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON INTERPROCEDURAL_OPTIMIZATION_DEBUG OFF)
endif()
