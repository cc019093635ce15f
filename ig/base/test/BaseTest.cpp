// SPDX-License-Identifier: MIT
#include "ig/base/Function.h"
#include "ig/base/jAllocator.h"
#include "ig/base/jLog.h"
#include "ig/base/jString.h"
#include "ig/base/nearest.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace ig {
namespace {

struct Tracked : jObject {
    explicit Tracked(int* alive) : m_alive(alive) { ++*m_alive; }
    ~Tracked() override { --*m_alive; }
    int* m_alive;
};

TEST(Allocator, PluginObjectFreedByTheEngineLeavesTheRegister) {
    int alive = 0;
    const std::size_t before = memCount(), bytes = jAllocator::get()->getUsed();
    jObject* object = memNew<Tracked>({"src/test", "make"}, &alive);
    EXPECT_EQ(memCount(), before + 1);
    bool found = false;
    memForEach([&](const MemInfo& info) {
        if (info.pointer != object) return;
        found = std::string(info.file) == "src/test" && std::string(info.function) == "make" &&
                info.size == sizeof(Tracked) && !info.array;
    });
    EXPECT_TRUE(found);
    delete object;
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(memCount(), before);
    delete new Tracked(&alive); // an object of the engine's own was never registered
    EXPECT_EQ(memCount(), before);
    EXPECT_EQ(jAllocator::get()->getUsed(), bytes);
}

TEST(Allocator, MemDeleteNullsTheOwnersPointer) {
    int alive = 0;
    Tracked* object = memNew<Tracked>({"src/test", "make"}, &alive);
    const int line = __LINE__ - 1;
    memForEach([&](const MemInfo& info) {
        EXPECT_TRUE(info.pointer != object || info.line == line) << info.line;
    });
    memDelete(object, {"src/test", "free"});
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(alive, 0);
    memDelete(object, {"src/test", "free"}); // null is skipped
}

TEST(Allocator, RunningOutOfMemoryAnswersNullAndRegistersNothing) {
    int alive = 0;
    const std::size_t before = memCount();
    jAllocator::get()->setLimit(jAllocator::get()->getUsed() + 8);
    EXPECT_EQ(memNew<Tracked>({"src/test", "make"}, &alive), nullptr);
    jAllocator::get()->setLimit(0);
    EXPECT_EQ(memCount(), before);
    EXPECT_EQ(alive, 0);
}

TEST(Vector, RemoveFastMovesTheLastElementIntoTheSlot) {
    jVector<std::string> v{"a", "b", "c", "d"};
    v.removeFast(1);
    EXPECT_EQ(v.size(), 3);
    EXPECT_EQ(v[1], "d");
    v.removeFast(2); // the last element itself
    EXPECT_EQ(v.size(), 2);
    EXPECT_EQ(v.find("d"), 1);
    EXPECT_EQ(v.find("c"), -1);
    const void* memory = v.data();
    v.clear();
    v.resize(3);
    EXPECT_EQ(v.data(), memory);
}

TEST(Nearest, FindsTheNameThatIsMeantAndNoneWhereNoneIsLike) {
    const std::vector<std::string> known = {"cloud_top",  "cloud_percent", "visibility",
                                            "rain_level", "sendPort",      "send_rate"};
    const std::pair<const char*, const char*> slips[] = {
        {"cloud_pct", "cloud_percent"}, {"vis", "visibility"},       {"rian_level", "rain_level"},
        {"rains_level", "rain_level"},  {"sendport", "sendPort"},    {"cloud_tip", "cloud_top"},
        {"sned_rate", "send_rate"},     {"visibilty", "visibility"},
    };
    for (const auto& [wrong, right] : slips)
        EXPECT_EQ(nearest(wrong, known), std::string("; nearest is \"") + right + '"') << wrong;
    EXPECT_EQ(nearest("zoom", known), "");
    EXPECT_EQ(nearest("", known), "");
    EXPECT_EQ(nearest("vis", {}), "");
}

struct Listener {
    std::vector<int> heard;
    void hear(int value) { heard.push_back(value); }
    void hearTwice(int value) { heard.push_back(2 * value); }
};

TEST(Function, ListsCallInOrderAndKeysTellTargetsApart) {
    Listener a, b;
    SignalList<int> list;
    EXPECT_TRUE(addUnique(list, Function<void(int)>(&a, &Listener::hear)));
    EXPECT_FALSE(addUnique(list, Function<void(int)>(&a, &Listener::hear)));
    EXPECT_TRUE(addUnique(list, Function<void(int)>(&a, &Listener::hearTwice)));
    EXPECT_TRUE(addUnique(list, Function<void(int)>(&b, &Listener::hear)));
    emit(list, 3);
    EXPECT_EQ(a.heard, (std::vector<int>{3, 6}));
    EXPECT_EQ(b.heard, (std::vector<int>{3}));
    disconnect(list, &a);
    emit(list, 4);
    EXPECT_EQ(a.heard.size(), 2u);
    EXPECT_EQ(b.heard.back(), 4);
}

TEST(Function, CopiesShareTheHandler) {
    const auto heard = std::make_shared<std::vector<int>>();
    Function<void(int)> f(&heard, [heard](int value) { heard->push_back(value); });
    SignalList<int> list{f}, copy = list;
    EXPECT_EQ(heard.use_count(), 2); // the test's own and the one handler's
    emit(copy, 1);
    EXPECT_EQ(heard->size(), 1u);
}

TEST(ToStringTest, ShortestTextReadsBackExactly) {
    EXPECT_EQ(ToString(0.1f), "0.1");
    EXPECT_EQ(ToString(25.0), "25");
    EXPECT_EQ(ToString(-155.0625019987), "-155.0625019987");
    EXPECT_EQ(std::stod(ToString(1.0 / 3).c_str()), 1.0 / 3);
    EXPECT_EQ(ToString(-7), "-7");
}

TEST(Log, SinkSeesTheFormattedLine) {
    std::string seen;
    jLog::setSink([&](LogLevel level, std::string_view line) {
        seen = std::string(level == LogLevel::error ? "E " : "W ") + std::string(line);
    });
    jLog::error("%s:\"%s\" load failed", "load_track", "a.anim");
    EXPECT_EQ(seen, "E load_track:\"a.anim\" load failed");
    jLog::setSink({});
}

TEST(LogLimiter, LetsOneReportASecondThroughAndCountsTheOthers) {
    double now = 100;
    LogLimiter::setClock([&] { return now; });
    LogLimiter limiter;
    int held_back = -1;
    EXPECT_TRUE(limiter.allow(&held_back));
    EXPECT_EQ(held_back, 0);
    for (int i = 0; i < 3; i++) {
        now += 0.3;
        EXPECT_FALSE(limiter.allow(&held_back));
    }
    now += 0.125;
    EXPECT_TRUE(limiter.allow(&held_back));
    EXPECT_EQ(held_back, 3);
    LogLimiter::setClock({});
}

} // namespace
} // namespace ig
