# Message files in the build of a project. The program kelto, which does the work, is that of the package; a project that
# is cross-compiled sets KELTO_PROGRAM to one that runs on the machine that builds.

include_guard()

# _kelto_find_program(<variable>): the command.
function(_kelto_find_program variable)
  if(KELTO_PROGRAM)
    set(${variable} "${KELTO_PROGRAM}" PARENT_SCOPE)
  elseif(TARGET Kelto::program)
    set(${variable} Kelto::program PARENT_SCOPE)
  else()
    message(FATAL_ERROR "The program kelto is needed: install it, or set KELTO_PROGRAM to its path.")
  endif()
endfunction()

# kelto_check_messages([NAME <name>] [REFERENCE <file>] FILES <file>... [OPTIONS <option>...])
#
# Checks message files whenever they have changed, which stops the build where there are errors, and adds a test that
# checks them. Both are called <name>, or else check_messages. With a reference the files are compared with it. The options
# are those of `kelto check`, as -Werror or --form size=uint.
function(kelto_check_messages)
  cmake_parse_arguments(PARSE_ARGV 0 check "" "NAME;REFERENCE" "FILES;OPTIONS")
  if(check_UNPARSED_ARGUMENTS OR NOT check_FILES)
    message(FATAL_ERROR "kelto_check_messages([NAME name] [REFERENCE file] FILES file... [OPTIONS option...])")
  endif()
  if(NOT check_NAME)
    set(check_NAME check_messages)
  endif()
  set(inputs ${check_FILES})
  set(reference)
  if(check_REFERENCE)
    list(APPEND inputs "${check_REFERENCE}")
    set(reference --reference "${check_REFERENCE}")
  endif()
  _kelto_find_program(program)
  set(command ${program} check ${check_OPTIONS} ${reference} ${check_FILES})
  set(stamp "${CMAKE_CURRENT_BINARY_DIR}/${check_NAME}.stamp")
  add_custom_command(OUTPUT "${stamp}"
    COMMAND ${command}
    COMMAND ${CMAKE_COMMAND} -E touch "${stamp}"
    DEPENDS ${inputs} ${program}
    WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
    COMMENT "Checking messages: ${check_NAME}"
    VERBATIM)
  add_custom_target(${check_NAME} ALL DEPENDS "${stamp}")
  add_test(NAME ${check_NAME} COMMAND ${command} WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
endfunction()
