// The compiled half of the package: one class, `File`, whose operations release the interpreter's lock while the
// library works. Only the package uses it, and serialises the calls because the plug-in has one connection.
#include <fmt/core.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "client/storing/Additions.h"
#include "client/storing/Removal.h"
#include "client/storing/StoreBlocks.h"
#include "native/CellArray.h"
#include "native/FoundCells.h"
#include "native/LibraryLines.h"
#include "native/OpenFile.h"
#include "native/Records.h"

namespace tovrdb::python {
namespace {

namespace py = pybind11;
using namespace py::literals;

using Text = std::optional<std::string>;
using Edges = std::tuple<std::int64_t, std::int64_t, std::int64_t, std::int64_t>;  // left, top, right, bottom

// Runs without the interpreter's lock, and keeps the library's lines out of standard output.
template <class Work>
auto working(Work work) {
  const py::gil_scoped_release released;
  const LibraryLines lines;
  return work();
}

// Lets Python handle Ctrl-C and other signals during a wait for another program.
void handleSignals() {
  const py::gil_scoped_acquire acquired;
  if (PyErr_CheckSignals() != 0) throw py::error_already_set();
}

Rect rectOf(const Edges& edges) {
  return rectOfEdges(std::get<0>(edges), std::get<1>(edges), std::get<2>(edges), std::get<3>(edges));
}

std::optional<Rect> rectOf(const std::optional<Edges>& edges) {
  return edges ? std::optional<Rect>(rectOf(*edges)) : std::nullopt;
}

Bytes bytesOf(const py::bytes& payload) {
  const std::string_view text = payload;
  return {text.begin(), text.end()};
}

py::bytes bytesOf(const Bytes& payload) { return {reinterpret_cast<const char*>(payload.data()), payload.size()}; }

StoreMode modeNamed(std::string_view name) {
  constexpr std::pair<std::string_view, StoreMode> kModes[] = {{"careful", StoreMode::kCareful},
                                                               {"patch", StoreMode::kPatch},
                                                               {"replace", StoreMode::kReplace},
                                                               {"beside", StoreMode::kBeside},
                                                               {"update", StoreMode::kUpdate}};
  for (const auto& [known, mode] : kModes) {
    if (name == known) return mode;
  }
  throw std::invalid_argument(
      fmt::format("mode: '{}' is unknown; the modes are careful, patch, replace, beside and update", name));
}

FormOptions formOf(const Text& dtype, const Text& scale, const Text& unit) {
  FormOptions form;
  if (dtype) form.dtype = parseNumberType(*dtype);
  if (scale) form.scale = parseScale(*scale);
  if (unit) form.unit = parseUnit(*unit);
  return form;
}

std::vector<std::string> put(OpenFile& file, const WantedBlock& wanted, const StoreRules& rules,
                             const CellBlock& block) {
  return storeBlocks(file.session(), {wanted}, rules, [&](std::size_t) { return block; }).notices;
}

// Finds the rows and deletes them in one transaction.
template <class Find>
py::list remove(OpenFile& file, Find find) {
  return shownTexts(working([&] {
    Removal removal;
    applyChanges(file.session(), [&](Session& session) {
      removal = find(session);
      return planRemoval(session, removal);
    });
    return toTexts(removal);
  }));
}

void defineReading(py::class_<OpenFile>& file) {
  file.def("type", [](OpenFile& self) { return working([&] { return self.session().manager().getDBType(); }); });
  file.def("screens", [](OpenFile& self) { return listOf(working([&] { return storedScreens(self.session()); })); });
  file.def("areas", [](OpenFile& self) { return listOf(working([&] { return storedAreas(self.session()); })); });
  file.def("data", [](OpenFile& self) { return listOf(working([&] { return storedData(self.session()); })); });
  file.def("measurements",
           [](OpenFile& self) { return listOf(working([&] { return storedMeasurements(self.session()); })); });
  file.def("info", [](OpenFile& self) { return dictOf(working([&] { return factsOf(self.session()); })); });
  file.def("get_data", [](OpenFile& self, std::int32_t type) {
    return bytesOf(working([&] { return getData(self.session(), type); }));
  });
  file.def("get_measurement", [](OpenFile& self, std::int64_t id) {
    return bytesOf(working([&] { return getMeasurement(self.session(), id); }));
  });
  file.def("check", [](OpenFile& self) { return listOf(working([&] { return self.check(); })); });
  file.def("diff", [](OpenFile& self, const std::string& other, const Text& key,
                      const std::optional<Tolerance>& tolerance, const Text& dtype) {
    const Comparing how{formOf(dtype, std::nullopt, std::nullopt), tolerance};
    return listOf(working([&] {
      return self.whileClosed([&](const Access& access, const std::string& path, const std::string& ownKey) {
        FileComparison files(access, {path, ownKey}, {other, key.value_or(ownKey)});
        return files.compare(how, [](const auto&...) {});
      });
    }));
  });
}

void defineCells(py::class_<OpenFile>& file) {
  file.def("locate", [](OpenFile& self, std::optional<std::int64_t> area, std::optional<std::int32_t> type,
                        const std::string& screen, const std::optional<Edges>& rect, const Text& dtype, bool mosaic,
                        std::optional<double> fill, const Text& scale, const Text& unit) {
    const CellQuery query{area, type, screen, rectOf(rect), mosaic, fill, formOf(dtype, scale, unit)};
    return working([&] { return FoundCells(self.session(), query); });
  });
  file.def("read", [](OpenFile& self, FoundCells& cells, const Edges& edges) {
    const Rect rect = rectOf(edges);
    return arrayOf(working([&] { return cells.read(self.session(), rect); }), cells.form().dtype);
  });
  file.def("patch", [](OpenFile& self, FoundCells& cells, const Edges& edges, const py::array& array) {
    const CellBlock block = borrowedBlock(array, rectOf(edges));
    working([&] { cells.patch(self.session(), block); });
  });
  file.def("put", [](OpenFile& self, const py::array& array, const Edges& rect, std::int32_t type,
                     const std::string& screen, const std::string& mode, bool force, std::int32_t number,
                     const std::string& text, const Text& scale, const Text& unit, bool newScreen) {
    const CellBlock block = borrowedBlock(array, rectOf(rect));
    const BlockText kept{number, text, formOf(std::nullopt, scale, unit),
                         parseNumberType(py::str(array.dtype().attr("name")))};
    const WantedBlock wanted{"", {type, screen, block.rect}, kept, block.cellBytes};
    const StoreRules rules{modeNamed(mode), force, newScreen};
    return shownTexts(working([&] { return put(self, wanted, rules, block); }));
  });
}

void defineWriting(py::class_<OpenFile>& file) {
  file.def("begin", [](OpenFile& self) { working([&] { self.begin(); }); });
  file.def("commit", [](OpenFile& self) { working([&] { self.commit(); }); });
  file.def("depth", &OpenFile::depth);
  file.def("roll_back_to", [](OpenFile& self, std::size_t depth) { working([&] { self.rollBackTo(depth); }); });
  file.def("add_screen", [](OpenFile& self, const std::string& name, const Edges& rect, bool force) {
    working([&, cells = rectOf(rect)] {
      applyChanges(self.session(), [&](Session& session) { return planNewScreen(session, name, cells, force); });
    });
  });
  file.def("rename_screen", [](OpenFile& self, const std::string& name, const std::string& newName, bool force) {
    working([&] {
      applyChanges(self.session(), [&](Session& session) { return planScreenName(session, name, newName, force); });
    });
  });
  file.def("put_data", [](OpenFile& self, std::int32_t type, const py::bytes& payload, const std::string& text) {
    return shownTexts(working([&, bytes = bytesOf(payload)] {
      return applyChanges(self.session(), [&](Session& session) { return planData(session, type, text, bytes); })
          .notices;
    }));
  });
  file.def("put_measurement",
           [](OpenFile& self, const py::bytes& payload, std::int32_t type, const Edges& rect, const std::string& text) {
             return working([&, bytes = bytesOf(payload), cells = rectOf(rect)] {
               const auto plan = [&](Session&) { return planMeasurement(type, cells, text, bytes); };
               return applyChanges(self.session(), plan).keys.back();
             });
           });
  file.def("clear_measurements", [](OpenFile& self) {
    working([&] { applyChanges(self.session(), [](Session&) { return ChangePlan{{DeleteMeasurements{}}, {}}; }); });
  });
  file.def("delete_areas", [](OpenFile& self, const std::vector<std::int64_t>& ids) {
    std::vector<IdRange> ranges;
    for (const std::int64_t id : ids) ranges.push_back({id, id});
    return remove(self, [&](Session& session) { return areasOfIds(session, ranges); });
  });
  file.def("delete_at", [](OpenFile& self, std::int32_t type, const std::string& screen, const Edges& rect) {
    const AreaName place{type, screen, rectOf(rect)};
    return remove(self, [&](Session& session) { return areaAt(session, place); });
  });
  file.def("delete_screen", [](OpenFile& self, const std::string& name, bool withAreas) {
    return remove(self, [&](Session& session) { return screenOf(session, name, withAreas); });
  });
  file.def("delete_data", [](OpenFile& self, std::int32_t type) {
    return remove(self, [&](Session& session) { return dataOfType(session, type); });
  });
}

py::dict describeCells(const FoundCells& cells) {
  py::dict record("rect"_a = tupleOf(cells.source().rect), "mosaic"_a = cells.source().mosaic,
                  "areas"_a = listOf(cells.source().areas), "values"_a = cells.values());
  describe(record, cells.form());
  return record;
}

// The package chooses the exception class.
void raise(const Error& failure) {
  py::list remedies;
  for (const Remedy remedy : failure.remedies()) remedies.append(nameOf(remedy));
  const py::object error = py::module_::import("tovrdb._errors")
                               .attr("error_of")(nameOf(failure.kind()), failure.status(), shownText(failure.what()),
                                                 remedies, shownTexts(failure.details()));
  PyErr_SetObject(py::type::of(error).ptr(), error.ptr());
}

void translate(std::exception_ptr thrown) {
  try {
    if (thrown) std::rethrow_exception(std::move(thrown));
  } catch (const Error& error) {
    raise(error);
  } catch (const std::invalid_argument& error) {
    raise(Error(kInvalid, error.what()));
  }
}

}  // namespace

PYBIND11_MODULE(_native, module) {
  module.attr("PLUGIN_NAME") = TOVR_PLUGIN_NAME;
  module.attr("PLUGIN_FOLDERS") = py::str(TOVR_PLUGIN_FOLDERS).attr("split")(":");
  module.attr("VERSION") = TOVR_VERSION;
  py::register_exception_translator(translate);
  module.def("printable", &shownText);
  module.def("keep_lines", &LibraryLines::keep);
  module.def("take_lines", [] { return py::bytes(LibraryLines::take()); });
  module.def("make_database", [](const std::string& plugin, const std::string& path, const std::string& key, int type,
                                 const std::string& name) {
    working([&] { makeDatabase(plugin, path, key, {type, name}); });
  });
  py::class_<FoundCells>(module, "Cells").def("describe", describeCells);
  py::class_<Tolerance>(module, "Tolerance").def(py::init<double, double>(), "absolute"_a, "relative"_a);
  py::class_<OpenFile> file(module, "File");
  file.def(py::init([](const std::string& plugin, unsigned int wait, bool flushed, const std::string& path,
                       const std::string& key) {
    return working([&] { return std::make_unique<OpenFile>(Access{plugin, wait, flushed, handleSignals}, path, key); });
  }));
  file.def_static("in_memory", [](const std::string& plugin, int type, const std::string& name) {
    return working([&] { return std::make_unique<OpenFile>(Access{plugin}, DatabaseDescription{type, name}); });
  });
  file.def("close", [](OpenFile& self) { working([&] { self.close(); }); });
  file.def("is_closed", &OpenFile::isClosed);
  defineReading(file);
  defineCells(file);
  defineWriting(file);
}

}  // namespace tovrdb::python
