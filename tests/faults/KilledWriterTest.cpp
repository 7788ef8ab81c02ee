// A process that stores blocks is killed at random moments: what it stored before is there to the byte, what was in
// flight is whole, absent, or a block without a placement.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <random>
#include <thread>

#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr int kKills = 500;
constexpr int kKillsPerFile = 50;  // first areas are inserted, later ones rewritten
constexpr unsigned int kAreas = 8;

// Versions count the blocks that were stored; each is the next one of the areas.
Bytes cellsOf(unsigned int version) { return pattern(40 * 40 * 2, version); }

Rect placeOf(unsigned int version) {
  const int left = static_cast<int>(version % kAreas) * 40;
  return {left, 0, left + 39, 39};
}

class KilledWriterTest : public DatabaseTest {
 protected:
  void makeFile() {
    manager->closeDB();
    std::filesystem::remove(path("file.db"));
    createFile(kByRectangle);
    ASSERT_EQ(addScreen("", {0, 0, kAreas * 40 - 1, 39}), kOk);
    for (auto& stored : latest_) stored = 0;
  }

  // What the child does until it is killed. Tells of each block that is stored.
  [[noreturn]] void write(unsigned int version, int report) {
    if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(1);
    if (manager->openDB(path("file.db"), kRawKey) != kOk) _exit(1);
    for (;; ++version) {
      Bytes cells = cellsOf(version);
      CoefData record = coef(placeOf(version), cells, 2);
      if (manager->insertData(&record) != kOk) _exit(1);
      static_cast<void>(!::write(report, &version, sizeof version));
    }
  }

  // Runs a writer from `version` on and kills it. Returns the version that it was at.
  unsigned int writeAndKill(unsigned int version, std::chrono::microseconds after) {
    int pipe[2];
    EXPECT_EQ(::pipe(pipe), 0);
    const pid_t child = fork();
    if (child == 0) write(version, pipe[1]);
    ::close(pipe[1]);
    std::this_thread::sleep_for(after);
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the writer failed: " << status;
    for (unsigned int stored = 0; ::read(pipe[0], &stored, sizeof stored) == sizeof stored; version = stored + 1) {
      latest_[stored % kAreas] = stored;
    }
    ::close(pipe[0]);
    return version;
  }

  // `inFlight`: the version that may or may not have reached the file.
  void expectWhole(unsigned int inFlight) {
    EXPECT_EQ(value("pragma integrity_check"), "ok");
    EXPECT_EQ(number("select count(*) from Coef_Info where coefid not in (select id from Coef)"), 0);
    EXPECT_LE(number("select count(*) from Coef where id not in (select coefid from Coef_Info)"), 1);
    for (unsigned int area = 0; area < kAreas; ++area) {
      SCOPED_TRACE("area " + std::to_string(area));
      const Answer stored = query(placeOf(area));
      if (stored.code == kNoMatchingArea && latest_[area] == 0) continue;
      ASSERT_EQ(stored.code, kOk);
      if (inFlight % kAreas == area && stored.bytes == cellsOf(inFlight)) latest_[area] = inFlight;
      EXPECT_TRUE(stored.bytes == cellsOf(latest_[area])) << "lost or torn";
    }
  }

  unsigned int latest_[kAreas] = {};
};

TEST_F(KilledWriterTest, LosesNothingThatWasStored) {
  std::mt19937 random(20261123);
  std::uniform_int_distribution<int> moment(0, 12000);
  unsigned int version = 1;
  quietly([&] {
    for (int round = 0; round < kKills && !HasFailure(); ++round) {
      SCOPED_TRACE("kill " + std::to_string(round));
      if (round % kKillsPerFile == 0) makeFile();
      ASSERT_EQ(manager->closeDB(), kOk);
      const unsigned int inFlight = writeAndKill(version, std::chrono::microseconds(moment(random)));
      ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk);
      expectWhole(inFlight);
      run("delete from Coef where id not in (select coefid from Coef_Info)");
      version = inFlight + 1;
    }
  });
  EXPECT_GT(version, kKills) << "hardly anything was stored";
  std::cout << kKills << " kills while " << version << " blocks were stored\n";
}

}  // namespace tovrtest
