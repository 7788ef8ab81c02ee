// Files of both generations of the engine. Those in tests/data/files were written on SQLCipher 3.4.1: README.md there
// says how.
#include <algorithm>

#include "tests/support/Fixture.h"

namespace tovrtest {

struct KeptFile {
  const char* name;
  const char* key;
  int dbtype;
};

void PrintTo(const KeptFile& file, std::ostream* out) { *out << file.name; }

constexpr KeptFile kByRectangleFile{"by-rectangle.db", kWordKey, kByRectangle};
constexpr KeptFile kByNameFile{"by-name.db", kRawKey, kByName};
constexpr Rect kScreen{0, 0, 7, 3};

class GenerationTest : public DatabaseTest, public testing::WithParamInterface<KeptFile> {
 protected:
  // A copy of the file, opened.
  int openCopy(const KeptFile& file, const std::string& key) {
    std::filesystem::copy_file(std::string(TOVR_TEST_DATA "/files/") + file.name, path(file.name));
    return manager->openDB(path(file.name), key);
  }
};

INSTANTIATE_TEST_SUITE_P(KeptFiles, GenerationTest, testing::Values(kByRectangleFile, kByNameFile));

TEST_P(GenerationTest, FilesOfTheOlderEngineOpenAndStayWhatTheyAreWhenWritten) {
  ASSERT_EQ(openCopy(GetParam(), GetParam().key), kOk);
  EXPECT_EQ(manager->getDBType(), GetParam().dbtype);
  EXPECT_EQ(cellsAt(kScreen, "wall"), keptPayload());
  Bytes cells = keptPayload();
  std::reverse(cells.begin(), cells.end());
  CoefData record = coef(kScreen, cells, 2, "wall");
  EXPECT_EQ(manager->insertData(&record), kOk);
  EXPECT_EQ(manager->closeDB(), kOk);
  ASSERT_EQ(manager->openDB(path(GetParam().name), GetParam().key), kOk);
  EXPECT_EQ(cellsAt(kScreen, "wall"), cells);
  EXPECT_EQ(value("pragma integrity_check"), "ok");
  EXPECT_EQ(value("pragma page_size"), "1024");
}

TEST_P(GenerationTest, AWrongKeyFailsAtTheFirstReadOfAnOlderFileToo) {
  const std::string key = std::string("not ") + GetParam().key;
  EXPECT_EQ(openCopy(GetParam(), key), SQLITE_NOTADB);
  EXPECT_EQ(host.engine.setKey(key.data(), static_cast<unsigned int>(key.size())), kOk) << "a key alone never fails";
  EXPECT_EQ(manager->getDBType(), kUnknownDatabaseType);
  EXPECT_EQ(host.engine.errCode(), SQLITE_NOTADB);
}

TEST_F(GenerationTest, BlobsOfTheOlderEngineAreReadToTheByte) {
  ASSERT_EQ(openCopy(kByRectangleFile, kWordKey), kOk);
  EXPECT_EQ(readData(5).bytes, keptPayload());
  EXPECT_EQ(number("select length(data) from LumChromData"), 72);
}

TEST_F(GenerationTest, NewFilesAreTheEnginesOwn) {
  createFile(kByRectangle);
  EXPECT_EQ(number("pragma page_size"), sqlite3_libversion_number() < 3025000 ? 1024 : 4096);
}

}  // namespace tovrtest
