#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>
#include <unistd.h>

namespace tremor::testing {

// Lays root's rights down, which no missing permission stops.
class OrdinaryUser {
  public:
    OrdinaryUser() {
        constexpr uid_t nobody = 65534;
        EXPECT_EQ(::seteuid(before_ == 0 ? nobody : before_), 0);
    }
    ~OrdinaryUser() { EXPECT_EQ(::seteuid(before_), 0); }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    uid_t before_ = ::geteuid();
};

} // namespace tremor::testing
