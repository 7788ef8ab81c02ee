# Fails unless the library exports exactly the two functions that hosts look for.
execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^ \n]+\n" names "${symbols}")
string(REPLACE "\n" "" names "${names}")
if(NOT "${names}" STREQUAL "pluginfo;pluginit")
  message(FATAL_ERROR "exported: ${names}")
endif()
