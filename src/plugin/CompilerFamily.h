// Refuses to compile a host whose standard library classes are laid out in another way than the library's: they cross
// the edge between the two, and the first call would crash. Every host-facing header with such a class includes this.
#pragma once

#include <string>
#include <vector>

#if !defined(__GXX_RTTI) && !defined(_CPPRTTI) && !defined(__cpp_rtti)
#error "tovrdatabaseservice: compile with run-time type information (without -fno-rtti, with /GR): records are cast"
#endif

// Microsoft's and LLVM's classes have the layout of the build that hosts and the library share.
#if defined(__GLIBCXX__)
static_assert(sizeof(std::string) == 32, "tovrdatabaseservice: compile with _GLIBCXX_USE_CXX11_ABI=1");
static_assert(sizeof(std::vector<int>) == 24, "tovrdatabaseservice: compile without _GLIBCXX_DEBUG");
#endif
