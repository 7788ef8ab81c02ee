// Every operation of the manager, in any order and with any record, on a database file that an attacker has made.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <numeric>
#include <stdexcept>
#include <string>

#include "crypto/Encryption.h"
#include "fuzz/Choices.h"
#include "fuzz/HostileSql.h"
#include "fuzz/ScratchFolder.h"
#include "fuzz/StrictConnection.h"
#include "fuzz/Target.h"
#include "manager/DBManager.h"
#include "manager/RegionCrop.h"
#include "plugin/IPluginHost.h"
#include "storage/StatusCodes.h"
#include "tables/CoefDataTableOperate.h"
#include "tables/LumChromaDataTableOperate.h"

extern "C" void pluginit(void* host);

namespace tovrfuzz {
namespace {

using namespace tovr;

// A raw page key: opening a file with it derives nothing and is fast.
constexpr char kRawKey[] = "x'000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F'";
constexpr char kCheckKey[] = "brimstoquelvard";  // checkDB's

class Host final : public IPluginHost {
 public:
  Host() { pluginit(this); }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  ~Host() { pluginit(nullptr); }

  void* createObject(const char* /*className*/, const char* objectName, void*, void*, void*, std::int32_t) override {
    return findObject(objectName);
  }
  void reserved1() override {}
  void reserved2() override {}
  void* findObject(const char* objectName) override {
    const std::string name = objectName;
    if (name == "DBOperate") return static_cast<IDBOperate*>(&connection);
    return name == "Encryption" ? static_cast<IEncryption*>(&encryption) : nullptr;
  }

  StrictConnection connection;
  Encryption encryption;
};

// The sum keeps the reads; a buffer that is not as long as it says is the address sanitizer's to report.
unsigned int readAll(const unsigned char* bytes, std::size_t size) {
  return std::accumulate(bytes, bytes + size, 0U, [](unsigned int sum, unsigned char byte) { return sum + byte; });
}

std::string text(Choices& choices) {
  constexpr const char* kTexts[] = {"main", "left", "", "%n%s", "a'b", "no such screen"};
  return choices.oneOf(kTexts);
}

template <class Record>
void place(Record& record, Choices& choices) {
  const auto edge = [&](std::int32_t from) {
    const unsigned char choice = choices.byte();
    return choice < 240 ? from + choice % 8 : choices.number();
  };
  record.left = edge(0);
  record.top = edge(0);
  record.right = edge(4);
  record.bottom = edge(4);
}

std::int32_t smallOrAny(Choices& choices) {
  const unsigned char choice = choices.byte();
  return choice < 232 ? choice % 4 : choices.number();
}

// A record with everything that any operation reads, and the bytes that it points to.
class Request {
 public:
  Request(DBManager& manager, Choices& choices)
      : block_(noise(choices.below(400), 11)), record_(manager.createData(static_cast<int>(choices.below(7)))) {
    record_->version = text(choices);
    if (auto* coef = as<CoefData>()) fill(*coef, choices);
    if (auto* measurement = as<LumChromaData>()) fill(*measurement, choices);
    if (auto* screen = as<ScreenInfoData>()) fill(*screen, choices);
    if (auto* config = as<ConfigData>()) fill(*config, choices);
    if (auto* info = as<DBInfo>()) fill(*info, choices);
  }

  DataBase* get() const { return record_.get(); }
  template <class Record>
  Record* as() const {
    return dynamic_cast<Record*>(record_.get());
  }
  const unsigned char* block() const { return block_.data(); }

 private:
  void fill(CoefData& coef, Choices& choices) {
    place(coef, choices);
    coef.id = smallOrAny(choices);
    coef.coeftype = smallOrAny(choices);
    coef.areaid = choices.byte() < 160 ? -1 : smallOrAny(choices);
    coef.multilayersize = smallOrAny(choices);
    coef.multilayerlist.assign(choices.below(4), choices.number());
    coef.screenname = text(choices);
    coef.coefBuffer = {smallOrAny(choices), block_.data(), static_cast<std::int32_t>(block_.size())};
  }
  void fill(LumChromaData& measurement, Choices& choices) {
    place(measurement, choices);
    measurement.datatype = smallOrAny(choices);
    measurement.data = block_.data();
    measurement.dataSize = static_cast<std::uint32_t>(block_.size());
  }
  static void fill(ScreenInfoData& screen, Choices& choices) {
    place(screen, choices);
    screen.id = smallOrAny(choices);
    screen.dbid = smallOrAny(choices);
    screen.screenname = text(choices);
  }
  void fill(ConfigData& config, Choices& choices) {
    config.datatype = smallOrAny(choices);
    config.data = block_.data();
    config.dataSize = static_cast<std::uint32_t>(block_.size());
  }
  static void fill(DBInfo& info, Choices& choices) {
    info.dbtype = smallOrAny(choices);
    info.dbname = text(choices);
    info.softwareversion = text(choices);
  }

  Bytes block_;
  std::unique_ptr<DataBase> record_;
};

class Attack {
 public:
  Attack(Choices& choices, const std::string& path, const char* key)
      : choices_(choices), path_(path), key_(key), manager_(std::make_unique<DBManager>()) {}

  void build() {
    require(manager_->openDB(path_, key_) == kOk, "a new file does not open");
    if (choices_.byte() == 1) run("PRAGMA encoding = 'UTF-16le'");
    for (const char* pragma : {"foreign_keys = OFF", "journal_mode = MEMORY", "locking_mode = EXCLUSIVE"}) {
      run(std::string("PRAGMA ") + pragma);
    }
    run("BEGIN");
    require(manager_->createTables() == kOk, "a new file gets no tables");
    for (const std::string& sql : hostileSql(choices_, host_.encryption)) run(sql);
    run("COMMIT");
  }

  // The pages are sealed, so this ends in the engine's codes.
  void damagePage() {
    manager_->closeDB();
    std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
    const auto size = std::filesystem::file_size(path_);
    const auto place = static_cast<std::streamoff>(choices_.below(std::max<std::size_t>(size, 1)));
    file.seekg(place);
    const int byte = file.get();
    file.seekp(place);
    if (byte >= 0) file.put(static_cast<char>(byte ^ 1));  // none where nothing was committed
    file.close();
    manager_->openDB(path_, key_);
  }

  void limitEngine() {
    constexpr const char* kLimits[] = {
        "", "", "", "", "PRAGMA max_page_count = 1", "PRAGMA query_only = 1", "PRAGMA foreign_keys = ON", "BEGIN"};
    run(choices_.oneOf(kLimits));
  }

  // Texts that are no numbers leave the library by the two exceptions of the conversion, a region of a negative size
  // by the third.
  void operate() {
    try {
      operateOnce();
    } catch (const std::invalid_argument&) {
    } catch (const std::out_of_range&) {
    } catch (const std::bad_alloc&) {
    }
  }

  void check() {
    manager_->openDB(path_, key_);  // what was not committed is gone
    const std::string sql = "select * from Coef_Info";
    const bool holds = host_.connection.prepare_v2(sql.c_str(), static_cast<int>(sql.size())) == kOk;
    manager_->closeDB();
    require(manager_->checkDB(path_) == (holds && key_ == kCheckKey), "a wrong answer to whether it is a database");
  }

 private:
  void run(const std::string& sql) { host_.connection.exec(sql.c_str()); }

  void operateOnce() {
    const std::size_t operation = choices_.below(16);
    if (operation < 6) return query();
    if (operation >= 14) return operateAside(choices_.below(8));
    const Request request(*manager_, choices_);
    const auto* coef = request.as<CoefData>();
    if (operation < 10) manager_->insertData(request.get());
    if (operation >= 10 && operation < 13) manager_->updateData(request.get());
    if (operation == 13) manager_->deleteData(request.get());
    require(coef == nullptr || coef->coefBuffer.data == request.block(), "the host's block is exchanged");
  }

  void operateAside(std::size_t operation) {
    CoefDataTableOperate coefs;
    LumChromaDataTableOperate measurements;
    const Request request(*manager_, choices_);
    CoefBuffer block;
    int sequence = 0;
    switch (operation) {
      case 0:
        return static_cast<void>(manager_->createTables());
      case 1:
        return static_cast<void>(manager_->getDBType());
      case 2:
        return require(manager_->errMsg() != nullptr, "no error text");
      case 3:
        coefs.selectCoef(smallOrAny(choices_), &block);
        readAll(block.data, static_cast<std::size_t>(block.datasize));
        delete[] block.data;
        return;
      case 4:
        return static_cast<void>(coefs.getSequence("Coef", &sequence));
      case 5:
        return static_cast<void>(measurements.query(request.get()));
      case 6:
        return static_cast<void>(measurements.update(request.get()));
      default:
        require(manager_->queryData(nullptr) == kInvalidRecord, "a null record is taken");
    }
  }

  void query() {
    const Request request(*manager_, choices_);
    if (const auto* coef = request.as<CoefData>()) return queryCoef(request, *coef);
    const int code = manager_->queryData(request.get());
    const auto* config = request.as<ConfigData>();
    if (config == nullptr || config->data == request.block()) return;
    const std::unique_ptr<unsigned char[]> owned(config->data);
    require(code == kOk, "a refused query leaves an array");
    readAll(owned.get(), config->dataSize);
  }

  void queryCoef(const Request& request, const CoefData& coef) {
    const CoefData before = coef;
    int code = -1;
    try {
      code = manager_->queryData(request.get());
    } catch (...) {
      requireUnchanged(before, coef);
      throw;
    }
    if (code != kOk || coef.coefBuffer.data == request.block()) return requireUnchanged(before, coef);
    const std::unique_ptr<unsigned char[]> owned(coef.coefBuffer.data);
    require(rectOf(coef) == rectOf(before) && coef.coeftype == before.coeftype, "the question was changed");
    require(coef.coefBuffer.datasize == regionBytes(rectOf(coef), coef.coefBuffer.databitwidth), "a wrong length");
    readAll(owned.get(), static_cast<std::size_t>(coef.coefBuffer.datasize));
    compareWithWholeBlock(coef);
  }

  static void requireUnchanged(const CoefData& before, const CoefData& now) {
    require(now.id == before.id && now.screenid == before.screenid && now.coefid == before.coefid &&
                now.areaIndex == before.areaIndex && now.multilayersize == before.multilayersize &&
                now.multilayerlist == before.multilayerlist && now.coeftablename == before.coeftablename &&
                rectOf(now) == rectOf(before) && now.coefBuffer.data == before.coefBuffer.data &&
                now.coefBuffer.datasize == before.coefBuffer.datasize,
            "a failed query changes its record");
  }

  // The other way to the same cells: the block deciphered whole, and cut.
  void compareWithWholeBlock(const CoefData& found) {
    CoefDataTableOperate coefs;
    CoefDataResult areas;
    if (coefs.query(&areas) != kOk) return;
    const auto isFound = [&](const CoefData& area) { return area.id == found.id; };
    if (std::count_if(areas.coefs.begin(), areas.coefs.end(), isFound) != 1) return;
    const CoefData& area = *std::find_if(areas.coefs.begin(), areas.coefs.end(), isFound);
    CoefBuffer block;
    require(coefs.selectCoef(area.coefid, &block) == kOk, "a block can be read in parts only");
    const std::unique_ptr<unsigned char[]> owned(block.data);
    std::unique_ptr<unsigned char[]> cells;
    require(cropRegion(block, rectOf(area), rectOf(found), cells) == kOk, "a block can be cut in parts only");
    require(std::equal(cells.get(), cells.get() + found.coefBuffer.datasize, found.coefBuffer.data),
            "the parts are not those of the block");
  }

  Choices& choices_;
  const std::string& path_;
  const char* key_;
  Host host_;
  std::unique_ptr<DBManager> manager_;  // goes before the services that it borrows
};

}  // namespace
}  // namespace tovrfuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovrfuzz;
  constexpr int kMostOperations = 16;
  static const ScratchFolder scratch;
  static const std::string path = scratch.path("file.db");
  static const bool isSilent = std::freopen("/dev/null", "w", stdout) != nullptr;  // the library prints there
  require(isSilent, "standard output cannot be led away");

  Choices choices(data, size);
  const bool checked = choices.isOneIn(256);  // the check derives a key, which takes long
  std::filesystem::remove(path);
  Attack attack(choices, path, choices.isOneIn(512) ? kCheckKey : kRawKey);
  attack.build();
  if (choices.isOneIn(13)) attack.damagePage();
  attack.limitEngine();
  for (int i = 0; i < kMostOperations && !choices.isUsedUp(); ++i) attack.operate();
  if (checked) attack.check();
  return 0;
}
