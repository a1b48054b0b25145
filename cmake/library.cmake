# The library itself: its sources, what they are linked with, which names it exports. It is shared only, since its many
# plain names would collide in a static one.

find_package(ICU REQUIRED COMPONENTS uc)
# Older versions of expat have no limit on the time that exploding entities take.
find_package(EXPAT 2.4 REQUIRED)

# The grammar of message files, which the program has as well: hidden objects in both, so that its checker decides as
# the loader does.
file(GLOB KELTO_GRAMMAR_SOURCES CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/message/grammar/*.cpp")
list(APPEND KELTO_GRAMMAR_SOURCES "${PROJECT_SOURCE_DIR}/src/platform/stack.cpp")
add_library(kelto_grammar OBJECT ${KELTO_GRAMMAR_SOURCES})

file(GLOB_RECURSE KELTO_SOURCES CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/*.cpp")
list(REMOVE_ITEM KELTO_SOURCES ${KELTO_GRAMMAR_SOURCES})
add_library(kelto SHARED ${KELTO_SOURCES} $<TARGET_OBJECTS:kelto_grammar>)
add_library(Kelto::kelto ALIAS kelto)

target_include_directories(kelto
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
foreach(objects kelto kelto_grammar)
  target_include_directories(${objects} PRIVATE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/include")
  target_link_libraries(${objects} PRIVATE ICU::uc EXPAT::EXPAT kelto_options kelto_hardening)
  target_compile_options(${objects} PRIVATE -fno-exceptions -fno-rtti -fno-semantic-interposition -fno-plt)
  # What a destructor stores last may be read by whoever owns the storage; gcc would leave it out.
  target_compile_options(${objects} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-lifetime-dse>)
  set_target_properties(${objects} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
endforeach()
set_target_properties(kelto PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})

# A program may have a startElement of its own without changing ours, but may replace any ZEL_ operation, and shares our
# variables: the names in this list stay dynamic, all others bind inside the library.
set(KELTO_DYNAMIC_LIST "${PROJECT_SOURCE_DIR}/src/kelto.dynamic-list")
# All exported names carry the version that first had them.
set(KELTO_VERSION_SCRIPT "${PROJECT_SOURCE_DIR}/src/kelto.version")
target_link_options(kelto PRIVATE "-Wl,--dynamic-list=${KELTO_DYNAMIC_LIST}"
  "-Wl,--version-script=${KELTO_VERSION_SCRIPT}" -Wl,--as-needed)
if(NOT KELTO_SANITIZE)
  target_link_options(kelto PRIVATE -Wl,-z,defs)
endif()
set_target_properties(kelto PROPERTIES LINK_DEPENDS "${KELTO_DYNAMIC_LIST};${KELTO_VERSION_SCRIPT}")

# The platform is compiled by itself: an optimiser that sees ZEL_malloc() would no longer call the one of the program.
set(KELTO_PLATFORM "${PROJECT_SOURCE_DIR}/src/platform/zel_posix.cpp")
set_source_files_properties("${KELTO_PLATFORM}" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
if(KELTO_CAN_LTO)
  set_target_properties(kelto PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON INTERPROCEDURAL_OPTIMIZATION_DEBUG OFF)
  set_source_files_properties("${KELTO_PLATFORM}" PROPERTIES COMPILE_OPTIONS -fno-lto)
  # The program is not linked this way: its objects need code as well, which other compilers do not put beside the rest.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    set_target_properties(kelto_grammar PROPERTIES
      INTERPROCEDURAL_OPTIMIZATION ON INTERPROCEDURAL_OPTIMIZATION_DEBUG OFF)
    target_compile_options(kelto_grammar PRIVATE -ffat-lto-objects)
  endif()
endif()
