#include <Logging/Logging.h>

#include <TestSupport.h>

#include <gmock/gmock.h>

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

} // namespace
} // namespace Orvant
