#include <gtest/gtest.h>

#include "platform/files.h"

namespace {

namespace files = platform::files;

TEST(Files, TellWhenTheLastBytesFindNoRoom) {
  files::File full = files::Create("/dev/full");
  ASSERT_TRUE(full);
  EXPECT_TRUE(files::Write(full, "x"));
  EXPECT_FALSE(files::Close(std::move(full)));
}

}  // namespace
