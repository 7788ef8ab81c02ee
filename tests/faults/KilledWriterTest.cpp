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
    if (manager->openDB(path("file.db"), kRawKey) != kOk) _exit(1);
    for (;; ++version) {
      const int area = static_cast<int>(version % kAreas);
      Bytes cells = cellsOf(area, version);
      CoefData record = coef(placeOf(area), cells, 2);
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
    for (unsigned int stored = 0; ::read(pipe[0], &stored, sizeof stored) == sizeof stored;) {
      version = stored + 1;
      latest_[stored % kAreas] = stored;
    }
    ::close(pipe[0]);
    return version;
  }

  // `inFlight`: the version that may or may not have reached the file.
  void expectWhole(unsigned int inFlight) {
    EXPECT_EQ(value("pragma integrity_check"), "ok");
    EXPECT_EQ(number("select count(*) from Coef_Info where coefid not in (select id from Coef)"), 0);
    for (int area = 0; area < kAreas; ++area) {
      SCOPED_TRACE("area " + std::to_string(area));
      const Answer stored = query(placeOf(area));
      if (stored.code == kNoMatchingArea && latest_[area] == 0) continue;
      ASSERT_EQ(stored.code, kOk);
      const unsigned int version = versionOf(stored.bytes);
      const bool arrived = version == inFlight && inFlight % kAreas == static_cast<unsigned int>(area);
      EXPECT_EQ(version, arrived ? inFlight : latest_[area]);
      EXPECT_TRUE(stored.bytes == cellsOf(area, version)) << "torn";
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
        createFile(kByRectangle);
        ASSERT_EQ(addScreen("", {0, 0, kAreas * 40 - 1, 39}), kOk);
      }
      ASSERT_EQ(manager->closeDB(), kOk);
      const unsigned int inFlight = writeAndKill(version, std::chrono::microseconds(moment(random)));
      journals += std::filesystem::exists(path("file.db-journal")) ? 1 : 0;
      ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk);
      expectWhole(inFlight);
      const int lone = number("select count(*) from Coef where id not in (select coefid from Coef_Info)");
      EXPECT_LE(lone, 1) << "blocks without a placement";
      torn += lone;
      run("delete from Coef where id not in (select coefid from Coef_Info)");
      version = inFlight + 1;
    }
  });
  if (HasFailure()) std::cout << printed.substr(printed.rfind('\n', printed.find(": Failure")));
  EXPECT_GT(version, kKills) << "hardly anything was stored";
  std::cout << kKills << " kills while " << version << " blocks were stored: " << journals << " left a journal, "
            << torn << " a block without a placement\n";
}

}  // namespace tovrtest
