# What our targets are compiled with, as far as the compiler knows it, as properties of theirs: a project that we are a
# part of keeps its own.
#   kelto_options     language, warnings and sanitizers of everything built here
#   kelto_hardening   what the tool chain has against exploits, for what is delivered

include(CheckCXXCompilerFlag)
include(CheckIPOSupported)

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
if(KELTO_IS_TOP_LEVEL)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
endif()

# Warnings are errors in the presets only (CMAKE_COMPILE_WARNING_AS_ERROR): a user's newer compiler does not stop his
# build.
add_library(kelto_options INTERFACE)
if(KELTO_IS_TOP_LEVEL)
  target_compile_options(kelto_options INTERFACE -Wall -Wextra -Wshadow -Wconversion)
endif()
# Of sources that are compiled as one (UNITY_BUILD) each sees the names of the others; the builds that compile them one
# by one say what is wrong.
set(is_unity "$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>")
target_compile_options(kelto_options INTERFACE
  $<${is_unity}:-Wno-shadow> $<$<AND:${is_unity},$<COMPILE_LANG_AND_ID:CXX,GNU>>:-Wno-subobject-linkage>)
if(KELTO_SANITIZE)
  target_compile_options(kelto_options INTERFACE
    -fsanitize=${KELTO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kelto_options INTERFACE -fsanitize=${KELTO_SANITIZE})
endif()

add_library(kelto_hardening INTERFACE)
if(KELTO_HARDEN)
  # A header, since only the compiler knows whether it optimises, which fortification takes.
  target_compile_options(kelto_hardening INTERFACE "SHELL:-include \"${CMAKE_CURRENT_LIST_DIR}/fortify.h\"")
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection=full)
    string(MAKE_C_IDENTIFIER "KELTO_HAS${flag}" is_known)
    check_cxx_compiler_flag(${flag} ${is_known})
    if(${is_known})
      target_compile_options(kelto_hardening INTERFACE ${flag})
    endif()
  endforeach()
  target_link_options(kelto_hardening INTERFACE -Wl,-z,relro,-z,now -Wl,-z,noexecstack)
endif()

set(KELTO_CAN_LTO OFF)
if(KELTO_LTO)
  check_ipo_supported(RESULT KELTO_CAN_LTO OUTPUT reason LANGUAGES CXX)
  if(NOT KELTO_CAN_LTO)
    message(STATUS "Kelto is not optimised across its sources: ${reason}")
  endif()
endif()
