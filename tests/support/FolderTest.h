// A test with a folder of its own, in which no secret may stay behind.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/support/SecretWatch.h"
#include "tests/support/TemporaryFolder.h"

namespace tovrtest {

class FolderTest : public testing::Test {
 protected:
  ~FolderTest() override { expectNoSecretsIn(folder_.path(), written_); }

  const std::filesystem::path& folder() const { return folder_.path(); }
  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }

  mutable std::set<std::string> written_;  // by the test itself: may hold payloads

 private:
  TemporaryFolder folder_;
};

}  // namespace tovrtest
