// A test with a folder of its own, in which no secret may stay behind.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/support/SecretWatch.h"
#include "tests/support/TemporaryFolder.h"

namespace tovrtest {

class FolderTest : public testing::Test {
 protected:
  ~FolderTest() override { expectNoSecretsIn(folder_.path()); }

  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }

 private:
  TemporaryFolder folder_;
};

}  // namespace tovrtest
