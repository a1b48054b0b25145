# What everything built here is compiled with. Warnings are errors in the presets only
# (CMAKE_COMPILE_WARNING_AS_ERROR), so that a user's newer compiler does not stop his build.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

add_compile_options(-Wall -Wextra -Wshadow -Wconversion)

if(KELTO_HARDEN)
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong
                      -fstack-clash-protection -fcf-protection=full)
  add_link_options(-Wl,-z,relro,-z,now -Wl,-z,noexecstack)
endif()

if(KELTO_SANITIZE)
  add_compile_options(-fsanitize=${KELTO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KELTO_SANITIZE})
endif()
