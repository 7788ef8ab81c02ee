if(CMAKE_SYSTEM_NAME STREQUAL "Linux")  # programs are linked with -pie; libraries are position-independent anyway
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
endif()

# Release builds for Linux: overflows of stack and buffers end the program, and the tables of addresses are read-only
# before it starts. The sanitizers see more by themselves. MinGW's variants of these take another library at run time.
function(tovr_harden target)
  if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux" OR TOVR_SANITIZE)
    return()
  endif()
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  target_compile_options(
    ${target} PRIVATE "$<${optimised}:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
  target_link_options(${target} PRIVATE "$<${optimised}:LINKER:-z,relro,-z,now>")
endfunction()

# What every target of ours has in common. Called per target, so that nothing leaks into those who include us.
function(tovr_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden
                        VISIBILITY_INLINES_HIDDEN ON POSITION_INDEPENDENT_CODE ON)
  if(WIN32)  # <windows.h> without its min and max; MSVC without its objections to the C library
    target_compile_definitions(${target} PRIVATE NOMINMAX WIN32_LEAN_AND_MEAN _CRT_SECURE_NO_WARNINGS)
  endif()
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 $<$<BOOL:${TOVR_WARNINGS_AS_ERRORS}>:/WX>)
  else()
    target_compile_options(
      ${target}
      PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual -Wformat=2
              -Wundef -Woverloaded-virtual $<$<BOOL:${TOVR_WARNINGS_AS_ERRORS}>:-Werror>)
    # From 13 on, GCC takes a temporary text for messages for what the returned reference refers to.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 13)
      target_compile_options(${target} PRIVATE -Wno-dangling-reference)
    endif()
  endif()
  tovr_harden(${target})
  if(TOVR_SANITIZE)
    target_compile_options(${target} PUBLIC -fsanitize=${TOVR_SANITIZE} -fno-sanitize-recover=all
                                            -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=${TOVR_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")  # sees uninitialised variables of the standard library in such builds
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
  endif()
endfunction()
