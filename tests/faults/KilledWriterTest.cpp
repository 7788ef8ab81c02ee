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
constexpr int kAreas = 8;
constexpr std::size_t kBytes = 40 * 40 * 2;

// Cells that tell from their first bytes what the others must be.
Bytes cellsOf(int area, unsigned int version) {
  Bytes cells = pattern(kBytes, static_cast<unsigned int>(area) * 100003U + version);
  for (std::size_t i = 0; i < 4; ++i) cells[i] = static_cast<unsigned char>(version >> (8 * i));
  return cells;
}

unsigned int versionOf(const Bytes& cells) {
  unsigned int version = 0;
  for (std::size_t i = 0; i < 4; ++i) version |= static_cast<unsigned int>(cells[i]) << (8 * i);
  return version;
}

Rect placeOf(int area) { return {area * 40, 0, area * 40 + 39, 39}; }

class KilledWriterTest : public DatabaseTest {
 protected:
  // What the child does until it is killed: new areas, and the same ones again. Tells of each block that is stored.
  [[noreturn]] void write(unsigned int version, int report) {
    static_cast<void>(std::freopen("/dev/null", "w", stdout));
    if (manager->openDB(path("file.db"), kRawKey) != 0) _exit(1);
    for (;; ++version) {
      const int area = static_cast<int>(version % kAreas);
      Bytes cells = cellsOf(area, version);
      CoefData record = coef(placeOf(area), cells, 2);
      if (manager->insertData(&record) != 0) _exit(1);
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
    for (unsigned int stored = 0; ::read(pipe[0], &stored, sizeof stored) == sizeof stored;) {
      version = stored + 1;
      latest_[stored % kAreas] = stored;
    }
    ::close(pipe[0]);
    return version;
  }

  // `inFlight`: the version that may or may not have reached the file.
  void expectWhole(unsigned int inFlight) {
    EXPECT_EQ(rows("pragma integrity_check"), "ok\n");
    EXPECT_EQ(rows("select count(*) from Coef_Info where coefid not in (select id from Coef)"), "0\n");
    for (int area = 0; area < kAreas; ++area) {
      const Read stored = read(placeOf(area));
      const bool flying = inFlight % kAreas == static_cast<unsigned int>(area);
      if (stored.first == kNoMatchingArea && latest_[area] == 0) continue;
      ASSERT_EQ(stored.first, 0) << "area " << area;
      const unsigned int version = versionOf(stored.second);
      EXPECT_TRUE(version == latest_[area] || (flying && version == inFlight)) << version << " in area " << area;
      EXPECT_TRUE(stored.second == cellsOf(area, version)) << "area " << area << " is torn";
      latest_[area] = version;
    }
  }

  unsigned int latest_[kAreas] = {};
};

TEST_F(KilledWriterTest, LosesNothingThatWasStored) {
  std::mt19937 random(20261123);
  std::uniform_int_distribution<int> moment(0, 12000);
  unsigned int version = 1;
  int journals = 0;
  int torn = 0;
  const std::string printed = printedBy([&] {
    for (int round = 0; round < kKills && !HasFailure(); ++round) {
      SCOPED_TRACE("kill " + std::to_string(round));
      if (round % 50 == 0) {  // a file of its own every now and then: first areas are inserted, later ones rewritten
        manager->closeDB();
        std::filesystem::remove(path("file.db"));
        for (auto& stored : latest_) stored = 0;
        createFile(0);
        ASSERT_EQ(addScreen("", {0, 0, kAreas * 40 - 1, 39}), 0);
      }
      ASSERT_EQ(manager->closeDB(), 0);
      const unsigned int inFlight = writeAndKill(version, std::chrono::microseconds(moment(random)));
      journals += std::filesystem::exists(path("file.db-journal")) ? 1 : 0;
      ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
      expectWhole(inFlight);
      const std::string lone = rows("select count(*) from Coef where id not in (select coefid from Coef_Info)");
      torn += lone == "0\n" ? 0 : 1;
      run("delete from Coef where id not in (select coefid from Coef_Info)");
      EXPECT_TRUE(lone == "0\n" || lone == "1\n") << lone;
      version = inFlight + 1;
    }
  });
  if (HasFailure()) std::cout << printed.substr(printed.rfind('\n', printed.find(": Failure")));
  EXPECT_GT(version, kKills) << "hardly anything was stored";
  std::cout << kKills << " kills while " << version << " blocks were stored: " << journals << " left a journal, "
            << torn << " a block without a placement\n";
}

}  // namespace tovrtest
