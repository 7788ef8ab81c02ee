// Measures the library beside its floors: the same work with the bare calls of SQLCipher and libcrypto, in the same
// process and in turn with it. Prints tables of medians and ratios; see docs/performance.md.
//
// Usage: tovr_bench PLUGIN [Google Benchmark's own options]
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <numeric>
#include <random>

#include "BareEngines.h"
#include "PeakMemory.h"
#include "RatioReporter.h"
#include "StandardOutput.h"
#include "Workbench.h"

namespace {

using namespace tovrbench;
using Bytes = std::vector<unsigned char>;

constexpr int kRepetitions = 7;
constexpr int kCabinets = 2000;
constexpr int kCabinetsAtEnd = 100;  // how many are timed at the beginning and at the end
constexpr const char* kBlobKey = "kelptarn";
constexpr std::size_t kCiphered = std::size_t{8} << 20;  // bytes that a cipher is timed over, at least
constexpr Rectangle kCabinet{0, 0, 127, 127};

double seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::size_t enciphered(std::size_t payload) { return (payload + 4 + 7) / 8 * 8; }

// Everything that the measurements share; the first row of both files is the same big block.
struct Bench {
  explicit Bench(const std::string& pluginPath)
      : plugin(pluginPath),
        cells(noise(kWholeScreen.bytes())),
        store(plugin, scratch.file("library.db"), kWholeScreen),
        bare(scratch.file("floor.db"), kKey) {
    store.insert(kWholeScreen, cells);
    insertBare();
  }

  // Enciphers into a new buffer, as every caller must: the caller's block stays as it is.
  void insertBare() {
    const std::size_t size = enciphered(cells.size());
    const std::unique_ptr<unsigned char[]> blob(new unsigned char[size]);
    desEncrypt(cells.data(), blob.get(), cells.size());
    bare.insert(blob.get(), size);
  }

  void selectBare() {
    bare.select(1, [](const unsigned char* bytes, std::size_t /*size*/) { benchmark::DoNotOptimize(bytes); });
  }

  // Deciphers what it reads into a new buffer.
  void selectAndDecipherBare() {
    bare.select(1, [](const unsigned char* bytes, std::size_t size) {
      const std::unique_ptr<unsigned char[]> out(new unsigned char[size]);
      desDecrypt(bytes, out.get(), size);
      benchmark::DoNotOptimize(out.get());
    });
  }

  // A library has one host: each further host loads a copy of it.
  std::string copyOfPlugin(const std::string& name) const {
    const std::string copy = scratch.file(name);
    std::filesystem::copy_file(plugin, copy);
    return copy;
  }

  std::string plugin;
  Scratch scratch;
  Bytes cells;
  StoreUnderTest store;
  BareFile bare;
};

struct Work {
  std::string name;
  double bound;
  std::function<double()> library;  // seconds of one run
  std::function<double()> floor;
};

Work insertWork(Bench& bench) {
  return {"insert 1920 x 1080", 0.85, [&] { return seconds([&] { bench.store.insert(kWholeScreen, bench.cells); }); },
          [&] { return seconds([&] { bench.insertBare(); }); }};
}

// Beside the engine's reading and libcrypto's deciphering of the same bytes.
Work wholeQueryWork(Bench& bench) {
  return {"query 1920 x 1080", 0.45, [&] { return seconds([&] { bench.store.query(kWholeScreen); }); },
          [&] { return seconds([&] { bench.selectAndDecipherBare(); }); }};
}

// Beside the engine's reading alone.
Work queryWork(Bench& bench, const std::string& name, double bound, const Rectangle& rectangle) {
  return {"query " + name + ", SELECT alone", bound,
          [&bench, rectangle] { return seconds([&] { bench.store.query(rectangle); }); },
          [&bench] { return seconds([&] { bench.selectBare(); }); }};
}

// The library's service beside libcrypto: `size` bytes, as often as makes a few megabytes.
Work cipherWork(Bench& bench, const std::string& name, double bound, std::size_t size, bool enciphers) {
  const auto input = std::make_shared<Bytes>(noise(size));
  const auto output = std::make_shared<Bytes>(size);
  const auto repeated = [size](const std::function<void()>& once) {
    return [size, once] {
      return seconds([&] {
        for (std::size_t done = 0; done < kCiphered; done += size) once();
      });
    };
  };
  const auto operation = enciphers ? &tovr::IEncryption::encrypt : &tovr::IEncryption::decrypt;
  const auto bare = enciphers ? desEncrypt : desDecrypt;
  tovr::IEncryption& service = bench.store.encryption();
  return {name, bound, repeated([=, &service] { (service.*operation)(kBlobKey, kBlobKey, *input, *output); }),
          repeated([=] { bare(input->data(), output->data(), size); })};
}

Work openWork(Bench& bench) {
  const std::string path = bench.scratch.file("open.db");
  const std::string plugin = bench.copyOfPlugin("opened.so");
  { BareFile made(path, kKey); }
  return {"load, open, close", 1.05,
          [plugin, path] {
            return seconds([&] {
              tovrhost::PluginHost host(plugin);
              host.manager().openDB(path, kKey);
              host.manager().closeDB();
            });
          },
          [path] { return seconds([&] { BareFile file(path, kKey); }); }};
}

std::vector<Work> pairedWork(Bench& bench) {
  return {insertWork(bench),
          wholeQueryWork(bench),
          queryWork(bench, "1920 x 1080", 1.60, kWholeScreen),
          queryWork(bench, "128 x 128", 1.06, {600, 400, 727, 527}),
          queryWork(bench, "one row", 1.06, {0, 540, 1919, 540}),
          queryWork(bench, "one column", 1.06, {960, 0, 960, 1079}),
          queryWork(bench, "one cell", 1.06, {960, 540, 960, 540}),
          cipherWork(bench, "deciphering 37 MB", 1 / 8.0, kWholeScreen.bytes(), false),
          cipherWork(bench, "deciphering 64 KiB", 1 / 7.5, std::size_t{64} << 10, false),
          cipherWork(bench, "enciphering 37 MB", 1 / 1.3, kWholeScreen.bytes(), true),
          openWork(bench)};
}

void registerPairs(const std::vector<Work>& works) {
  const auto add = [](const std::string& name, const std::function<double()>& work) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [work](benchmark::State& state) {
                                   for (auto _ : state) state.SetIterationTime(work());
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(kRepetitions);
  };
  for (const Work& work : works) {
    add(work.name + "/library", work.library);
    add(work.name + "/floor", work.floor);
  }
}

double mean(const std::vector<double>& times, std::size_t from, std::size_t count) {
  const auto first = times.begin() + static_cast<std::ptrdiff_t>(from);
  return std::accumulate(first, first + static_cast<std::ptrdiff_t>(count), 0.0) / static_cast<double>(count);
}

// One by one into a file of their own, then in random order out of it. The lists that every flow reads first are timed
// beside: they grow with the number of areas, by contract.
void measureCabinets(Bench& bench, std::FILE* out) {
  const Rectangle wall{0, 0, 128 * kCabinets - 1, 127};
  StoreUnderTest store(bench.copyOfPlugin("cabinets.so"), bench.scratch.file("cabinets.db"), wall);
  const auto cabinet = [](int n) { return Rectangle{128 * n, 0, 128 * n + 127, 127}; };
  Bytes cells = noise(kCabinet.bytes());

  const double emptyLists = seconds([&] { store.readLists(); });
  std::vector<double> inserts;
  for (int n = 0; n < kCabinets; ++n) inserts.push_back(seconds([&] { store.insert(cabinet(n), cells); }));
  const double fullLists = median(
      {seconds([&] { store.readLists(); }), seconds([&] { store.readLists(); }), seconds([&] { store.readLists(); })});

  std::vector<int> order(kCabinets);
  std::iota(order.begin(), order.end(), 0);
  std::shuffle(order.begin(), order.end(), std::mt19937(1));
  std::vector<double> queries;
  for (const int n : order) queries.push_back(seconds([&] { store.query(cabinet(n)); }));

  const double first = mean(inserts, 0, kCabinetsAtEnd);
  const double last = mean(inserts, inserts.size() - kCabinetsAtEnd, kCabinetsAtEnd);
  std::fprintf(out, "\n%d cabinets of 128 x 128, means of %d:\n", kCabinets, kCabinetsAtEnd);
  std::fprintf(out, "  insert: first %.3f ms, last %.3f ms; less the reading of all rows %.3f ms: ratio %.2f\n",
               first * 1e3, last * 1e3, (last - fullLists) * 1e3, (last - fullLists) / (first - emptyLists));
  const double firstQuery = mean(queries, 0, kCabinetsAtEnd);
  const double lastQuery = mean(queries, queries.size() - kCabinetsAtEnd, kCabinetsAtEnd);
  std::fprintf(out, "  query, random order, all stored: first %.3f ms, last %.3f ms: ratio %.2f\n", firstQuery * 1e3,
               lastQuery * 1e3, lastQuery / firstQuery);
  std::fprintf(out, "  reading all rows: %.3f ms for %d areas, %.2f us a row\n", fullLists * 1e3, kCabinets,
               fullLists * 1e6 / kCabinets);
}

void measureMemory(Bench& bench, std::FILE* out) {
  const auto block = static_cast<double>(kWholeScreen.bytes());
  const auto report = [&](const char* name, double bound, const std::function<void()>& work) {
    std::fprintf(out, "| %s | %.2f | %.1f |\n", name, static_cast<double>(peakMemoryOf(work)) / block, bound);
  };
  std::fprintf(out, "\n| peak memory beyond the caller's block | blocks | bound |\n|---|---|---|\n");
  report("insert 1920 x 1080", 3, [&] { bench.store.insert(kWholeScreen, bench.cells); });
  report("query 1920 x 1080", 3, [&] { bench.store.query(kWholeScreen); });
  report("query 128 x 128", 1.2, [&] { bench.store.query({600, 400, 727, 527}); });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s PLUGIN [benchmark options]\n", argv[0]);
    return 2;
  }
  StandardOutput results;  // the library prints to standard output
  std::vector<char*> arguments(argv, argv + argc);
  char interleave[] = "--benchmark_enable_random_interleaving=true";
  arguments.erase(arguments.begin() + 1);
  arguments.push_back(interleave);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());

  Bench bench(argv[1]);
  const std::vector<Work> works = pairedWork(bench);
  registerPairs(works);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  std::vector<RatioReporter::Bound> bounds;
  for (const Work& work : works) bounds.push_back({work.name, work.bound});
  reporter.print(results.stream(), bounds);
  std::fprintf(results.stream(), "\nquery 128 x 128 as a share of query 1920 x 1080: %.3f\n",
               reporter.share("query 128 x 128, SELECT alone", "query 1920 x 1080"));
  measureMemory(bench, results.stream());
  measureCabinets(bench, results.stream());
  return 0;
}
