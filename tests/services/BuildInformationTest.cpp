#include <VersionControl/BuildInformation.h>

#include <ModelTestSupport.h>

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <type_traits>

namespace Orvant {
namespace {

TEST(BuildInformation, BelongsToTheProductThatTheBuildWasConfiguredFor) {
    EXPECT_EQ(ORVANT_BUILD_PRODUCT, BuildInformation::getProductType());
}

TEST(BuildInformation, BelongsToTheProductThatTheApplicationTells) {
    const Support::RunningProduct restoredAfterwards(0);
    for (const BuildInformation::ProductType product :
         {0, 1, 2, 3, 4, 5, 6, -1, std::numeric_limits<BuildInformation::ProductType>::max()}) {
        BuildInformation::setProductType(product);
        EXPECT_EQ(product, BuildInformation::getProductType());
    }
}

TEST(BuildInformation, IsTheSameForAllThreads) {
    const Support::RunningProduct restoredAfterwards(0);
    std::thread([] { BuildInformation::setProductType(3); }).join();
    EXPECT_EQ(3, BuildInformation::getProductType());
}

} // namespace
} // namespace Orvant
