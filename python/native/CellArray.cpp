#include "native/CellArray.h"

#include <memory>

#include "client/base/Error.h"

namespace tovrdb::python {

namespace py = pybind11;

py::array arrayOf(const CellBlock& block, NumberType dtype) {
  using Owner = std::shared_ptr<unsigned char[]>;
  const std::vector<std::size_t> shape = blockShape(block.rect, block.cellBytes, dtype);
  auto owner = std::make_unique<Owner>(block.bytes);
  const py::capsule capsule(owner.get(), [](void* held) { delete static_cast<Owner*>(held); });
  static_cast<void>(owner.release());  // the capsule owns it now
  return {py::dtype(nameOf(dtype)), shape, block.bytes.get(), capsule};
}

CellBlock borrowedBlock(const py::array& array, const Rect& rect) {
  const auto bytes = static_cast<std::size_t>(array.nbytes());
  if (bytes > static_cast<std::size_t>(kMostBlockBytes)) {
    throw Error(kInvalid, "the block is larger than 2 GiB: split it");
  }
  const auto cells = static_cast<std::size_t>(rowsOf(rect) * columnsOf(rect));
  // Storing only reads the block.
  auto* first = static_cast<unsigned char*>(const_cast<void*>(array.data()));
  return {rect, static_cast<std::int32_t>(bytes / cells), {first, [](unsigned char*) {}}};
}

}  // namespace tovrdb::python
