#include "quorix/auth/SHAHash.h"

#include <gtest/gtest.h>

namespace quorix {
namespace {

TEST(SHAHash, IsThePublishedOneOverBytes) {
    EXPECT_EQ(SHAHash(u"abc"), u"a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(SHAHash(u"\u8BF4"), SHAHash(u"?"));
}

}  // namespace
}  // namespace quorix
