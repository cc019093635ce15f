// SPDX-License-Identifier: MIT
#include "flightsim/link/UdpLink.h"

#include <gtest/gtest.h>

namespace flightsim {
namespace {

TEST(UdpAddress, RefusesWhatIsNoAddress) {
    std::string message;
    for (const char* text : {"", ":", "127.0.0.1", "127.0.0.1:", ":10004", "127.0.0.1:0",
                             "127.0.0.1:65536", "127.0.0.1:-1", "127.0.0.1:10004x"})
        EXPECT_FALSE(UdpAddress::parse(text, message)) << text;
    EXPECT_EQ(UdpAddress::parse("127.0.0.1:65535", message).value().text(), "127.0.0.1:65535");
}

} // namespace
} // namespace flightsim
