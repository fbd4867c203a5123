#include <faults/FaultSupport.h>

#include <gtest/gtest.h>

#include <tuple>

namespace Orvant {
namespace {

using Support::Process;
using Support::SaveMode;

/// Loads while another process saves 50 KB again and again.
class LoadsBesideSaves : public Support::GenerationsFixture,
                         public testing::WithParamInterface<std::tuple<SaveMode, bool>> {
protected:
    LoadsBesideSaves()
        : GenerationsFixture(std::get<0>(GetParam()), std::get<1>(GetParam()), 50, 1000) {}
};

INSTANTIATE_TEST_SUITE_P(, LoadsBesideSaves,
                         testing::Combine(testing::Values(ConfigurationManager::Replace,
                                                          ConfigurationManager::Merge),
                                          testing::Bool()),
                         Support::nameOfModes);

TEST_P(LoadsBesideSaves, FindOneCompleteGeneration) {
    const int start = load();
    const Process saver([&] { saveForEver(start); });
    int last = start;
    // A thousand of each save mode.
    for (int number = 1; number <= 500; ++number) {
        const int now = load();
        ASSERT_GE(now, last) << "load number " << number
                             << ": the user's layer is missing or mixed";
        last = now;
    }
    EXPECT_GT(last, start + 10) << "hardly anything was saved meanwhile";
}

} // namespace
} // namespace Orvant
