#include "support.h"

#include <quor/exception.h>

#include <cstring>
#include <future>
#include <optional>
#include <sstream>

namespace quor_test {

__attribute__((noinline)) Exception Build(int kind, bool log) {
    std::ostringstream stream;
    stream << "boom";
    switch (kind) {
        case 0:
            return {std::string("boom"), log};
        case 1:
            return {"boom", log};
        default:
            return {stream, log};
    }
}

TEST(Exception, ReportsItsTextAndPlaceOrTheWholeStack) {
    TraceTap trace(Medium);
    TraceFile::GetInstance().SetPrintFile(true);
    TraceFile::GetInstance().SetPrintLine(false);
    const std::string thrown = "[#: #] exception: ** Thrown quor::Exception: boom\n";
    const std::string place =
        std::string(program_invocation_name) + "(quor_test::Build(int, bool)) [#]\n";
    for (const int kind : {0, 1, 2}) {
        TraceFile::GetInstance().SetDumpStack(false);
        std::ostringstream stream;
        errno = EXDEV;
        stream << Build(kind, true) << Build(kind, false).what();
        EXPECT_EQ(errno, EXDEV);
        EXPECT_EQ(stream.str(), "boomboom");
        EXPECT_EQ(trace.News(), thrown + "[#: #] exception: ** in: " + place);
        TraceFile::GetInstance().SetDumpStack(true);
        Build(kind, false);
        Build(kind, true);
        const std::string dump = trace.News();
        EXPECT_EQ(dump.find(thrown + "[#: #] 0. "), 0u) << dump;
        EXPECT_NE(dump.find("\n3. " + place + "4. "), std::string::npos) << dump;
        EXPECT_EQ(dump.find("** in: "), std::string::npos) << dump;
    }
    TraceFile::GetInstance().Pause();
    trace.News();
    Build(0, true);
    EXPECT_EQ(trace.News(), "");
}

TEST(Lock, ReleasesInTheOrderGiven) {
    std::mutex a;
    std::mutex b;
    for (int round = 0; round < 500; ++round) {
        std::mutex& early = round % 2 == 0 ? a : b;
        std::mutex& late = round % 2 == 0 ? b : a;
        std::optional<Lock> lock(std::in_place, early, late);
        std::thread watcher([&early, &late] {
            while (!late.try_lock()) {
            }
            EXPECT_TRUE(early.try_lock());
            early.unlock();
            late.unlock();
        });
        lock.reset();
        watcher.join();
    }
}

TEST(Lock, ExcludesOthersWithoutDeadlockAndHoldsNothingWhenItThrows) {
    std::mutex mutexes[4];
    const std::vector<std::mutex*> forward{&mutexes[0], &mutexes[1], &mutexes[2], &mutexes[3]};
    const std::vector<std::mutex*> backward(forward.rbegin(), forward.rend());
    int guarded = 0;
    const auto run = [&guarded, &mutexes](const std::vector<std::mutex*>& list) {
        for (int round = 0; round < 5'000; ++round) {
            const Lock all(list);
            ++guarded;
        }
        for (int round = 0; round < 5'000; ++round) {
            const Lock one(mutexes[3]);
            ++guarded;
        }
    };
    std::thread other([&] { run(backward); });
    run(forward);
    other.join();
    EXPECT_EQ(guarded, 20'000);
    EXPECT_THROW(Lock(mutexes[0], mutexes[1], mutexes[0]), std::system_error);
    for (std::mutex& mutex : mutexes) {
        EXPECT_TRUE(mutex.try_lock());
        mutex.unlock();
    }
}

}  // namespace quor_test
