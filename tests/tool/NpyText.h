// .npy files and the bytes in them, made without the code that is tested.
#pragma once

#include <string>

#include "tests/support/Bytes.h"

namespace tovrtest {

inline std::string payload(std::size_t size) { return textOf(keptPayload(size)); }

// A .npy file of any header.
inline std::string npyFile(char version, const std::string& header, const std::string& payload) {
  std::string file = std::string("\x93NUMPY") + version + '\0';
  file += {static_cast<char>(header.size()), '\0'};
  if (version > 1) file += std::string(2, '\0');
  return file + header + payload;
}

// A .npy file as NumPy writes it.
inline std::string npy(const std::string& descr, const std::string& shape, const std::string& payload,
                       const std::string& fortran = "False") {
  std::string header = "{'descr': '" + descr + "', 'fortran_order': " + fortran + ", 'shape': (" + shape + "), }";
  header.append(128 - 10 - 1 - header.size(), ' ').push_back('\n');
  return npyFile('\1', header, payload);
}

}  // namespace tovrtest
