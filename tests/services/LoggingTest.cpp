#include <Logging/Logging.h>

#include <TestSupport.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <barrier>
#include <string>
#include <thread>
#include <vector>

namespace Orvant {
namespace {

using testing::HasSubstr;

TEST(Logging, WritesMessageAndPlaceToTheLoggerOfItsName) {
    const Support::LogCapture capture("LoggingTest");
    Logging("LoggingTest").logERROR("disk is full", "Disk.cpp", "void Disk::write()", 63);
    EXPECT_THAT(capture.text(), HasSubstr("disk is full (Disk.cpp:63, void Disk::write())"));
}

TEST(Logging, WritesToStandardErrorWhereNothingIsRegistered) {
    testing::internal::CaptureStderr();
    Logging("LoggingTestUnregistered").logERROR("lost", "a.cpp", "f", 1);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("lost"));
}

TEST(Logging, LosesNothingWhenThreadsStartALogTogether) {
    constexpr int threadCount = 4;
    constexpr int logCount = 1'000;
    testing::internal::CaptureStderr();
    std::barrier start(threadCount);
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < threadCount; ++thread)
            threads.emplace_back([&start] {
                for (int log = 0; log < logCount; ++log) {
                    start.arrive_and_wait();
                    Logging("LoggingTestThreads" + std::to_string(log)).logERROR("m", "f", "f", 1);
                }
            });
    }
    EXPECT_EQ(threadCount * logCount,
              std::ranges::count(testing::internal::GetCapturedStderr(), '\n'));
}

} // namespace
} // namespace Orvant
