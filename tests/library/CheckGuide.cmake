# Fails unless the guide holds the example as it is compiled.
file(READ ${GUIDE} guide)
file(READ ${EXAMPLE} example)
string(FIND "${guide}" "```cpp\n${example}```" place)
if(place EQUAL -1)
  message(FATAL_ERROR "${GUIDE} does not hold ${EXAMPLE} as it is now: copy it there")
endif()
