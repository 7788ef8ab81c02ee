# Fails unless the library exports exactly the two functions that hosts look for, and library and program import
# nothing but what every Windows has.
function(read_names variable file pattern)
  execute_process(COMMAND ${OBJDUMP} -p ${file} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "${pattern}[^\n]+" lines "${headers}")
  list(TRANSFORM lines REPLACE ".*[ \t]" "")
  set(${variable} "${lines}" PARENT_SCOPE)
endfunction()

read_names(exports ${LIBRARY} "\n\t\\[ *[0-9]+\\] [^\n+]")
if(NOT "${exports}" STREQUAL "pluginfo;pluginit")
  message(FATAL_ERROR "exported: ${exports}")
endif()

foreach(file IN LISTS LIBRARY PROGRAM)
  read_names(imports ${file} "DLL Name: ")
  string(TOLOWER "${imports}" imports)
  list(REMOVE_ITEM imports advapi32.dll user32.dll)
  list(SORT imports)
  if(NOT "${imports}" STREQUAL "kernel32.dll;msvcrt.dll")
    message(FATAL_ERROR "${file} imports ${imports}")
  endif()
endforeach()
