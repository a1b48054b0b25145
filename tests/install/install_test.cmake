# Installs the build into an empty prefix, other than the one it was configured for, and uses what lies there.

cmake_minimum_required(VERSION 3.20)

set(prefix "${WORK_DIR}/prefix")
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

# run(<what> <command>...): runs a command in WORK_DIR; its output in RUN_OUTPUT, or the end of the test.
macro(run what)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY "${WORK_DIR}"
    RESULT_VARIABLE RUN_RESULT OUTPUT_VARIABLE RUN_OUTPUT ERROR_VARIABLE RUN_ERRORS)
  if(NOT RUN_RESULT EQUAL 0)
    message(FATAL_ERROR "${what} fails (${RUN_RESULT}):\n${RUN_OUTPUT}\n${RUN_ERRORS}")
  endif()
endmacro()

function(expect_output expected)
  if(NOT RUN_OUTPUT STREQUAL expected)
    message(FATAL_ERROR "expected:\n${expected}\nfound:\n${RUN_OUTPUT}")
  endif()
endfunction()

run("the installation" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")

string(REGEX MATCH "^[0-9]+" major "${VERSION}")
set(installed include/kelto.h include/kelto.hpp include/kelto/catalog.hpp "${LIBDIR}/libkelto.so"
    "${LIBDIR}/libkelto.so.${major}"
              "${LIBDIR}/libkelto.so.${VERSION}"
  "${LIBDIR}/pkgconfig/kelto.pc" "${LIBDIR}/cmake/Kelto/KeltoConfig.cmake"
  "${LIBDIR}/cmake/Kelto/KeltoConfigVersion.cmake")
list(APPEND installed share/man/man1/kelto.1 share/man/man3/kelto.3 share/man/man3/kelto.hpp.3
                      share/man/man3/KTFormatString.3)
if(HAS_PROGRAM)
  list(APPEND installed bin/kelto)
endif()
foreach(file IN LISTS installed)
  if(NOT EXISTS "${prefix}/${file}")
    message(FATAL_ERROR "not installed: ${file}")
  endif()
endforeach()

# A C program through pkg-config.
set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
find_program(pkg_config NAMES pkg-config pkgconf REQUIRED)
run("pkg-config" "${pkg_config}" --modversion kelto)
expect_output("${VERSION}\n")
run("pkg-config" "${pkg_config}" --cflags --libs kelto)
separate_arguments(flags UNIX_COMMAND "${RUN_OUTPUT}")
run("the C compiler" "${C_COMPILER}" -std=c99 -Wall -Werror "${CMAKE_CURRENT_LIST_DIR}/program.c" -o c_program ${flags}
  "-Wl,-rpath,${prefix}/${LIBDIR}")
file(COPY "${CMAKE_CURRENT_LIST_DIR}/messages.xlf" DESTINATION "${WORK_DIR}")
run("the C program" "${WORK_DIR}/c_program" messages.xlf)
expect_output("files: 7\n")

# A C++ program through find_package, which must also refuse a version that does not fit.
run("find_package" "${CMAKE_COMMAND}" -S "${CMAKE_CURRENT_LIST_DIR}/find_package" -B find_package -G "${GENERATOR}"
  "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_PREFIX_PATH=${prefix}" "-DEXPECTED_VERSION=${VERSION}")
run("the C++ compiler" "${CMAKE_COMMAND}" --build find_package)
run("the C++ program" "${WORK_DIR}/find_package/cxx_program" messages.xlf)
expect_output("files: 7\n")

# The installed program finds the installed library by itself.
if(HAS_PROGRAM)
  run("the installed program" "${prefix}/bin/kelto" --version)
  string(FIND "${RUN_OUTPUT}" "${VERSION}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "kelto --version prints:\n${RUN_OUTPUT}")
  endif()
endif()
