// The power fails at every sync of a put, a patch, a deletion and a replacement, each in a transaction as the tool runs
// it. Of every moment images are made that the disk may hold then, and what they hold is looked at. The same for a
// program that is killed, at every step that it writes.
#include <algorithm>
#include <iostream>

#include "tests/faults/PowerCutVfs.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr int kImagesPerSync = 160;
constexpr int kCellBytes = 2;

// What images were found to hold.
struct Tally {
  int images = 0;
  int damaged = 0;          // do not open, or fail the integrity check
  int mixed = 0;            // part of a change
  int undone = 0;           // not the last change that was committed
  int undoneFurther = 0;    // nor the one before it
  int atSecondAttempt = 0;  // refused at the first
  int again = 0;            // cut once more while the engine recovered them
};

class PowerCutTest : public DatabaseTest {
 protected:
  // A file with two areas, all of it on the disk.
  void SetUp() override {
    createFile(kByRectangle);
    ASSERT_EQ(addScreen("", {0, 0, 1999, 99}), kOk);
    put({0, 0, 63, 39});
    put({1000, 0, 1063, 39});
    manager->closeDB();
    vfs_.disk = VolatileDisk(vfs_.disk.written());
    open();
    history_ = {content()};
    manager->closeDB();
  }

  enum class Fails { kPower, kProgram };

  // The changes, `rounds` times over, with "PRAGMA synchronous" as told.
  Tally cutDuringChanges(const std::string& synchronous, int rounds, Fails fails = Fails::kPower) {
    synchronous_ = synchronous;
    fails_ = fails;
    const std::string printed = printedBy([&] {
      for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const int left = round * 200;
        change([&] { put({left + 100, 0, left + 149, 39}); });
        change([&] { patch({0, 0, 63, 39}); });
        change([&] { put({left + 160, 0, left + 179, 19}); });
        change([&] { remove("top = 0 and left = " + std::to_string(left + 100)); });
        change([&] {  // by an area that holds it
          remove("left = " + std::to_string(left + 160));
          put({left + 150, 0, left + 199, 49});
        });
      }
    });
    if (HasFailure()) std::cout << printed.substr(printed.rfind('\n', printed.find(": Failure")));
    std::cout << "synchronous = " << synchronous << ": " << tally_.images << " images, " << tally_.damaged
              << " damaged, " << tally_.mixed << " with part of a change, " << tally_.undone
              << " without a change that was committed, " << tally_.atSecondAttempt << " opened at the second attempt; "
              << tally_.again << " of them cut again while they were recovered\n";
    return tally_;
  }

 private:
  void open() {
    ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk);
    run("PRAGMA synchronous = " + synchronous_);
  }

  void put(const Rect& rect) {
    const int cells = (rect.right - rect.left + 1) * (rect.bottom - rect.top + 1);
    put(rect, pattern(static_cast<std::size_t>(cells) * kCellBytes, ++seed_));
  }

  void put(const Rect& rect, Bytes bytes) {
    CoefData record = coef(rect, bytes, kCellBytes);
    ASSERT_EQ(manager->insertData(&record), kOk);
  }

  void patch(const Rect& rect) {
    Bytes bytes = cellsAt(rect);
    const Bytes cells = pattern(600, ++seed_);
    std::copy(cells.begin(), cells.end(), bytes.begin() + 1000);
    put(rect, std::move(bytes));
  }

  void remove(const std::string& which) {
    const std::string block = value("select coefid from Coef_Info where " + which);
    run("delete from Coef_Info where " + which);
    run("delete from Coef where id = " + block);
  }

  Rows content() {
    Rows all;
    for (const char* sql :
         {"select quote(name), quote(seq) from sqlite_sequence", "select id, quote(data) from Coef order by id",
          "select id, coefid, coeftype, left, top, right, bottom from Coef_Info order by id"}) {
      const Rows some = rows(sql);
      all.insert(all.end(), some.begin(), some.end());
    }
    return all;
  }

  void change(const std::function<void()>& act) {
    std::set<DiskImage> during;
    std::set<DiskImage> committed;
    const auto addImages = [&](std::set<DiskImage>& images) {
      fails_ == Fails::kPower ? vfs_.disk.addCuts(kImagesPerSync, random_, images) : vfs_.disk.addEnds(images);
    };
    if (fails_ == Fails::kProgram) vfs_.disk = VolatileDisk(vfs_.disk.written());
    vfs_.beforeSync = [&] { addImages(during); };
    open();
    run("BEGIN IMMEDIATE");
    act();
    const Rows after = content();
    run("COMMIT");
    if (fails_ == Fails::kProgram) addImages(during);
    vfs_.beforeSync = nullptr;
    if (fails_ == Fails::kPower) addImages(committed);
    committed.insert(vfs_.disk.written());
    manager->closeDB();

    const VolatileDisk disk = vfs_.disk;
    const std::size_t before = history_.size() - 1;
    history_.push_back(after);
    for (const DiskImage& image : during) judge(image, before);
    for (const DiskImage& image : committed) judge(image, before + 1);
    vfs_.disk = disk;
  }

  // Every eighth image loses its power again while the engine recovers it.
  void judge(const DiskImage& image, std::size_t oldest) {
    std::set<DiskImage> again;
    if (++tally_.images % 8 == 0 && fails_ == Fails::kPower)
      vfs_.beforeSync = [&] { vfs_.disk.addCuts(4, random_, again); };
    judgeOnce(image, oldest);
    vfs_.beforeSync = nullptr;
    again.erase(image);
    for (const DiskImage& second : again) judgeOnce(second, oldest);
    tally_.again += static_cast<int>(again.size());
    tally_.images += static_cast<int>(again.size());
  }

  // `oldest`: the state in the history that must not be lost.
  void judgeOnce(const DiskImage& image, std::size_t oldest) {
    vfs_.disk = VolatileDisk(image);
    if (!opensSound()) {
      ++tally_.damaged;
    } else {
      const auto found = std::find(history_.begin(), history_.end(), content());
      const auto state = static_cast<std::size_t>(found - history_.begin());
      tally_.mixed += found == history_.end() ? 1 : 0;
      tally_.undone += state < oldest ? 1 : 0;
      tally_.undoneFurther += state + 1 < oldest ? 1 : 0;
    }
    manager->closeDB();
  }

  // The engine keys a file by its first bytes before it plays the journal back: where those were torn, the first
  // attempt puts the file right and answers 26.
  bool opensSound() {
    const bool hadJournal = vfs_.disk.find(path("file.db-journal")).has_value();
    if (isSound()) return true;
    if (!hadJournal || !isSound()) return false;
    ++tally_.atSecondAttempt;
    return true;
  }

  bool isSound() {
    if (manager->openDB(path("file.db"), kRawKey) != kOk) return false;
    char** cells = nullptr;
    int count = 0;
    int columns = 0;
    const int code = host.engine.get_table("pragma integrity_check", &cells, &count, &columns);
    const bool sound = code == kOk && count == 1 && std::string(cells[1]) == "ok";
    host.engine.free_table(cells);
    return sound;
  }

  PowerCutVfs vfs_;
  std::string synchronous_ = "OFF";
  Fails fails_ = Fails::kPower;
  std::vector<Rows> history_;  // the contents of the file, change by change
  std::mt19937 random_{20261123};
  unsigned int seed_ = 0;
  Tally tally_;
};

TEST_F(PowerCutTest, LosesNothingWhereTheJournalsEndIsFlushedToo) {
  const Tally tally = cutDuringChanges("EXTRA", 3);
  EXPECT_GT(tally.images, 2000);
  EXPECT_GT(tally.again, 200);
  EXPECT_EQ(tally.damaged, 0);
  EXPECT_EQ(tally.mixed, 0);
  EXPECT_EQ(tally.undone, 0);
}

TEST_F(PowerCutTest, UndoesAtMostTheLastChangeWhereItIsNot) {
  const Tally tally = cutDuringChanges("FULL", 1);
  EXPECT_EQ(tally.damaged, 0);
  EXPECT_EQ(tally.mixed, 0);
  EXPECT_GT(tally.undone, 0);
  EXPECT_EQ(tally.undoneFurther, 0);
}

TEST_F(PowerCutTest, IsNotWhatAKilledProgramLeavesThatFlushesNothing) {
  const Tally tally = cutDuringChanges("OFF", 2, Fails::kProgram);
  EXPECT_GT(tally.images, 200);
  EXPECT_EQ(tally.damaged, 0);
  EXPECT_EQ(tally.mixed, 0);
  EXPECT_EQ(tally.undone, 0);
}

TEST_F(PowerCutTest, LeavesDamagedFilesWhereNothingIsFlushed) {
  const Tally tally = cutDuringChanges("OFF", 2);
  EXPECT_GT(tally.damaged, 0);
  EXPECT_GT(tally.mixed, 0);
  EXPECT_GT(tally.undoneFurther, 0);
}

}  // namespace tovrtest
