# A host must not compile if its standard library classes differ from the library's, and must say why.
file(WRITE ${WORK}/host.cpp "#include \"manager/IDBManager.h\"\n#include \"crypto/IEncryption.h\"\n")

function(compile result message)
  execute_process(COMMAND ${CXX} -std=c++17 -fsyntax-only -I ${SOURCES} ${ARGN} ${WORK}/host.cpp
                  RESULT_VARIABLE code ERROR_VARIABLE errors)
  string(FIND "${errors}" "${message}" found)
  if(NOT code EQUAL result OR found LESS 0)
    message(FATAL_ERROR "with flags '${ARGN}': exit code ${code} in place of ${result}, or not '${message}':\n${errors}")
  endif()
endfunction()

compile(0 "")
compile(1 "compile with run-time type information" -fno-rtti)
compile(1 "compile without _GLIBCXX_DEBUG" -D_GLIBCXX_DEBUG)
compile(1 "compile with _GLIBCXX_USE_CXX11_ABI=1" -D_GLIBCXX_USE_CXX11_ABI=0)
compile(1 "without packed structures" -fpack-struct)
