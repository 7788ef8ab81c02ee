// Files of both generations of the engine. Those in tests/data/files were written on SQLCipher 3.4.1: README.md there
// says how.
#include <sqlcipher/sqlite3.h>

#include <algorithm>

#include "tests/support/Fixture.h"

namespace tovrtest {

struct KeptFile {
  const char* name;
  const char* key;
  int dbtype;
};

constexpr KeptFile kFiles[] = {{"by-rectangle.db", kWordKey, 0}, {"by-name.db", kRawKey, 1}};
constexpr Rect kScreen{0, 0, 7, 3};

Bytes keptCells() {
  Bytes cells;
  for (int i = 0; i < 64; ++i) cells.push_back(static_cast<unsigned char>(i * 37 + i / 7));
  return cells;
}

class GenerationTest : public DatabaseTest {
 protected:
  // A copy of the file, opened.
  int openCopy(const KeptFile& file, const std::string& key) {
    std::filesystem::copy_file(std::string(TOVR_TEST_DATA "/files/") + file.name, path(file.name),
                               std::filesystem::copy_options::overwrite_existing);
    return manager->openDB(path(file.name), key);
  }
};

TEST_F(GenerationTest, FilesOfTheOlderEngineOpenAndStayWhatTheyAre) {
  for (const KeptFile& file : kFiles) {
    SCOPED_TRACE(file.name);
    for (const bool rewritten : {false, true}) {
      ASSERT_EQ(rewritten ? manager->openDB(path(file.name), file.key) : openCopy(file, file.key), 0);
      EXPECT_EQ(manager->getDBType(), file.dbtype);
      Bytes cells = keptCells();
      if (rewritten) std::reverse(cells.begin(), cells.end());
      EXPECT_EQ(read(kScreen, "wall"), (Read{0, cells}));
      EXPECT_EQ(rows("pragma integrity_check"), "ok\n");
      EXPECT_EQ(rows("pragma page_size"), "1024\n");
      std::reverse(cells.begin(), cells.end());
      CoefData record = coef(kScreen, cells, 2, "wall");
      EXPECT_EQ(manager->insertData(&record), 0);
      EXPECT_EQ(manager->closeDB(), 0);
    }
  }
}

TEST_F(GenerationTest, BlobsOfTheOlderEngineAreReadToTheByte) {
  ASSERT_EQ(openCopy(kFiles[0], kFiles[0].key), 0);
  EXPECT_EQ(readData(5), (Read{0, keptCells()}));
  EXPECT_EQ(rows("select length(data) from LumChromData"), "72\n");
}

TEST_F(GenerationTest, AWrongKeyFailsAtTheFirstReadOfAnOlderFileToo) {
  for (const KeptFile& file : kFiles) {
    const std::string key = std::string("not ") + file.key;
    EXPECT_EQ(openCopy(file, key), 26);
    EXPECT_EQ(host.engine.setKey(key.data(), static_cast<unsigned int>(key.size())), 0) << "a key alone never fails";
    EXPECT_EQ(manager->getDBType(), 2);
    EXPECT_EQ(host.engine.errCode(), 26);
  }
}

TEST_F(GenerationTest, NewFilesAreTheEnginesOwn) {
  createFile(0);
  EXPECT_EQ(rows("pragma page_size"), sqlite3_libversion_number() < 3025000 ? "1024\n" : "4096\n");
}

}  // namespace tovrtest
