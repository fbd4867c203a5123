#include <System/XercesInitializationMutex.h>

#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <FileHandling/FileName.h>

#include <boost/thread/lock_types.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>

namespace Orvant {
namespace {

template <typename Function>
auto onAnotherThread(Function function) {
    return std::async(std::launch::async, function);
}

bool isFree() {
    boost::mutex& mutex = XercesInitializationMutex::getMutex();
    if (!mutex.try_lock())
        return false;
    mutex.unlock();
    return true;
}

TEST(XercesInitializationMutex, IsOneForTheProcess) {
    boost::mutex* const mine = &XercesInitializationMutex::getMutex();
    EXPECT_EQ(mine, &XercesInitializationMutex::getMutex());
    EXPECT_EQ(mine, onAnotherThread([] { return &XercesInitializationMutex::getMutex(); }).get());
}

TEST(XercesInitializationMutex, KeepsOtherThreadsOutWhileItIsHeld) {
    EXPECT_TRUE(onAnotherThread(isFree).get());
    {
        const boost::unique_lock<boost::mutex> lock(XercesInitializationMutex::getMutex());
        EXPECT_FALSE(onAnotherThread(isFree).get());
    }
    EXPECT_TRUE(onAnotherThread(isFree).get());
}

TEST(XercesInitializationMutex, IsTakenByReadersAndWritersAndFreeAfterwards) {
    auto writer = std::make_unique<ConfigWriter>("1.0");
    const std::function<void()> users[] = {
        [] { SimpleConfigReader(FileName(), "<Configuration version='1.0'/>", {"1.0"}); },
        [] { ConfigWriter("1.0"); },
        [] { ConfigWriter(FileName(), "<Configuration/>"); },
        [&] { writer.reset(); },
    };
    for (const auto& use : users) {
        std::future<void> done;
        {
            const boost::unique_lock<boost::mutex> lock(XercesInitializationMutex::getMutex());
            done = onAnotherThread(use);
            EXPECT_EQ(std::future_status::timeout, done.wait_for(std::chrono::milliseconds(50)));
        }
        done.get();
        EXPECT_TRUE(isFree());
    }
}

} // namespace
} // namespace Orvant
