# Writes a C source that defines every internal function name of the library as a function that ends the program.
#   cmake -DNAMES=exported_names.txt -DOUTPUT=own_functions.c -P own_functions.cmake

file(STRINGS "${NAMES}" names REGEX " function")
set(source "#include <stdio.h>\n#include <stdlib.h>\n")
foreach(line IN LISTS names)
  string(REGEX REPLACE " .*" "" name "${line}")
  if(NOT name MATCHES "^(KT|ZEL_|_Z)")
    string(APPEND source
      "\nvoid ${name}(void);\nvoid ${name}(void)\n{\n"
      "    fputs(\"the library called the program's ${name}\\n\", stderr);\n    abort();\n}\n")
  endif()
endforeach()
file(WRITE "${OUTPUT}" "${source}")
