# Message files in the build of a project. The program kelto, which does the work, is that of the package; a project
# that is cross-compiled sets KELTO_PROGRAM to one that runs on the machine that builds.

include_guard()

# _kelto_find_program(<variable>): the command.
function(_kelto_find_program variable)
  if(KELTO_PROGRAM)
    set(${variable} "${KELTO_PROGRAM}" PARENT_SCOPE)
  elseif(TARGET Kelto::program)
    set(${variable} Kelto::program PARENT_SCOPE)
  else()
    message(FATAL_ERROR "The program kelto is needed: install it, set KELTO_PROGRAM to its path, or, where Kelto is "
      "built as a part of this project, KELTO_BUILD_TOOLS to ON.")
  endif()
endfunction()

# _kelto_require_name(<function> <name>): that no target is called so yet.
function(_kelto_require_name function name)
  if(TARGET "${name}")
    message(FATAL_ERROR "${function}: there is a target ${name} already; NAME gives this one a name of its own")
  endif()
endfunction()

# kelto_check_messages([NAME <name>] [REFERENCE <file>] FILES <file>... [OPTIONS <option>...])
#
# Checks message files whenever they have changed, which stops the build where there are errors, and adds a test that
# checks them. Both are called <name>, or else check_messages. With a reference the files are compared with it. The
# options are those of `kelto check`, as -Werror or --form size=uint.
function(kelto_check_messages)
  cmake_parse_arguments(PARSE_ARGV 0 check "" "NAME;REFERENCE" "FILES;OPTIONS")
  if(check_UNPARSED_ARGUMENTS OR NOT check_FILES)
    message(FATAL_ERROR "kelto_check_messages([NAME name] [REFERENCE file] FILES file... [OPTIONS option...])")
  endif()
  if(NOT check_NAME)
    set(check_NAME check_messages)
  endif()
  _kelto_require_name(kelto_check_messages "${check_NAME}")
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

# kelto_import_messages([NAME <name>] REFERENCE <file> FILES <file>... [OPTIONS <option>...])
#
# Makes message files of bilingual ones, po/de.po or de.xliff to de.xlf in the binary directory, as `kelto import` does,
# whenever they or the reference have changed, in a target <name>, or else import_messages; what is refused stops the
# build. The variable <name>_FILES has the paths, for kelto_compile_messages.
function(kelto_import_messages)
  cmake_parse_arguments(PARSE_ARGV 0 import "" "NAME;REFERENCE" "FILES;OPTIONS")
  if(import_UNPARSED_ARGUMENTS OR NOT import_FILES OR NOT import_REFERENCE)
    message(FATAL_ERROR "kelto_import_messages([NAME name] REFERENCE file FILES file... [OPTIONS option...])")
  endif()
  if(NOT import_NAME)
    set(import_NAME import_messages)
  endif()
  _kelto_require_name(kelto_import_messages "${import_NAME}")
  _kelto_find_program(program)
  get_filename_component(reference "${import_REFERENCE}" ABSOLUTE)
  set(outputs)
  foreach(file IN LISTS import_FILES)
    get_filename_component(input "${file}" ABSOLUTE)
    get_filename_component(name "${input}" NAME_WLE)
    set(output "${CMAKE_CURRENT_BINARY_DIR}/${name}.xlf")
    if(output IN_LIST outputs)
      message(FATAL_ERROR "kelto_import_messages: two files would become ${output}")
    endif()
    add_custom_command(OUTPUT "${output}"
      COMMAND ${program} import --quiet --force ${import_OPTIONS} --reference "${reference}" --output "${output}"
              "${input}"
      DEPENDS "${input}" "${reference}" ${program}
      COMMENT "Importing messages: ${file}"
      VERBATIM)
    list(APPEND outputs "${output}")
  endforeach()
  add_custom_target(${import_NAME} ALL DEPENDS ${outputs})
  set(${import_NAME}_FILES "${outputs}" PARENT_SCOPE)
endfunction()

# kelto_compile_messages([NAME <name>] FILES <file>... [BASE <folder>] [RAW] [DESTINATION <folder>])
#
# Compiles message files whenever they have changed, de.xlf to de.ktc in the binary directory, in a target <name>, or
# else compile_messages; the variable <name>_CATALOGS has the paths. With BASE the catalogs lie as the files do in that
# folder, de/app.ktc for messages/de/app.xlf. RAW leaves positions out of placeholders. DESTINATION installs the
# catalogs.
function(kelto_compile_messages)
  cmake_parse_arguments(PARSE_ARGV 0 compile "RAW" "NAME;BASE;DESTINATION" "FILES")
  if(compile_UNPARSED_ARGUMENTS OR NOT compile_FILES)
    message(FATAL_ERROR "kelto_compile_messages([NAME name] FILES file... [BASE folder] [RAW] [DESTINATION folder])")
  endif()
  if(NOT compile_NAME)
    set(compile_NAME compile_messages)
  endif()
  _kelto_require_name(kelto_compile_messages "${compile_NAME}")
  _kelto_find_program(program)
  set(raw)
  if(compile_RAW)
    set(raw --raw)
  endif()
  set(catalogs)
  foreach(file IN LISTS compile_FILES)
    get_filename_component(input "${file}" ABSOLUTE)
    get_filename_component(name "${input}" NAME_WLE)
    set(folder)
    if(compile_BASE)
      get_filename_component(base "${compile_BASE}" ABSOLUTE)
      get_filename_component(parent "${input}" DIRECTORY)
      file(RELATIVE_PATH folder "${base}" "${parent}")
    endif()
    get_filename_component(catalog "${CMAKE_CURRENT_BINARY_DIR}/${folder}/${name}.ktc" ABSOLUTE)
    if(catalog IN_LIST catalogs)
      message(FATAL_ERROR "kelto_compile_messages: two files would become ${catalog}; BASE keeps them apart")
    endif()
    get_filename_component(parent "${catalog}" DIRECTORY)
    file(MAKE_DIRECTORY "${parent}")
    add_custom_command(OUTPUT "${catalog}"
      COMMAND ${program} compile ${raw} --output "${catalog}" "${input}"
      DEPENDS "${input}" ${program}
      COMMENT "Compiling messages: ${file}"
      VERBATIM)
    list(APPEND catalogs "${catalog}")
    if(compile_DESTINATION)
      install(FILES "${catalog}" DESTINATION "${compile_DESTINATION}/${folder}")
    endif()
  endforeach()
  add_custom_target(${compile_NAME} ALL DEPENDS ${catalogs})
  set(${compile_NAME}_CATALOGS "${catalogs}" PARENT_SCOPE)
endfunction()

# kelto_generate_messages(<target> SOURCE <file> [PUBLIC] [HEADER <name>] [NAMESPACE <name>] [OPTIONS <option>...]
#                         [DESTINATION <folder>])
#
# Makes a header of a message file, as `kelto gen` does, whenever the file has changed, and lets the target include it.
# The header is <file>_messages.hpp if it is not named; the name may lead into a folder, as store/messages.hpp. What has
# the same content as before is not written, so nothing is compiled again. PUBLIC lets the targets include it too that
# link this one, as an INTERFACE library always does. DESTINATION installs the header, in a folder of headers.
function(kelto_generate_messages target)
  cmake_parse_arguments(PARSE_ARGV 1 generate "PUBLIC" "SOURCE;HEADER;NAMESPACE;DESTINATION" "OPTIONS")
  if(generate_UNPARSED_ARGUMENTS OR NOT generate_SOURCE)
    message(FATAL_ERROR "kelto_generate_messages(target SOURCE file [PUBLIC] [HEADER name] [NAMESPACE name] "
      "[OPTIONS option...] [DESTINATION folder])")
  endif()
  if(NOT TARGET "${target}")
    message(FATAL_ERROR "kelto_generate_messages: there is no target ${target}")
  endif()
  if(NOT generate_HEADER)
    get_filename_component(name "${generate_SOURCE}" NAME_WE)
    set(generate_HEADER "${name}_messages.hpp")
  endif()
  if(generate_NAMESPACE)
    list(APPEND generate_OPTIONS --namespace "${generate_NAMESPACE}")
  endif()
  _kelto_find_program(program)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/${target}_messages")
  set(header "${folder}/${generate_HEADER}")
  set(made "${CMAKE_CURRENT_BINARY_DIR}/${target}_messages.made/${generate_HEADER}")
  foreach(file "${header}" "${made}")
    get_filename_component(parent "${file}" DIRECTORY)
    file(MAKE_DIRECTORY "${parent}")
  endforeach()
  get_filename_component(source "${generate_SOURCE}" ABSOLUTE)
  add_custom_command(OUTPUT "${made}"
    BYPRODUCTS "${header}"
    COMMAND ${program} gen ${generate_OPTIONS} -o "${made}" "${source}"
    COMMAND ${CMAKE_COMMAND} -E copy_if_different "${made}" "${header}"
    DEPENDS "${source}" ${program}
    COMMENT "Making ${generate_HEADER} of ${generate_SOURCE}"
    VERBATIM)
  get_target_property(type "${target}" TYPE)
  set(visibility PRIVATE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    # It is not built itself: what links it waits for the header.
    set(visibility INTERFACE)
    string(MAKE_C_IDENTIFIER "${target}_${generate_HEADER}" name)
    add_custom_target(${name} DEPENDS "${made}")
    add_dependencies(${target} ${name})
  else()
    if(generate_PUBLIC)
      set(visibility PUBLIC)
    endif()
    target_sources(${target} PRIVATE "${made}" "${header}")
  endif()
  target_include_directories(${target} ${visibility} "$<BUILD_INTERFACE:${folder}>")
  if(generate_DESTINATION)
    get_filename_component(subfolder "${generate_HEADER}" DIRECTORY)
    install(FILES "${header}" DESTINATION "${generate_DESTINATION}/${subfolder}")
    if(NOT visibility STREQUAL "PRIVATE")
      target_include_directories(${target} ${visibility} "$<INSTALL_INTERFACE:${generate_DESTINATION}>")
    endif()
  endif()
endfunction()
