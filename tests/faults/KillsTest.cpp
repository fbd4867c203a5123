#include <faults/FaultSupport.h>

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <stdexcept>
#include <thread>
#include <tuple>

namespace Orvant {
namespace {

namespace fs = std::filesystem;
using Support::Process;
using Support::SaveMode;
using Strings = std::vector<std::string>;

using Duration = std::chrono::steady_clock::duration;

/// Processes that are killed while they save 1 MB again and again.
class Kills : public Support::GenerationsFixture,
              public testing::WithParamInterface<std::tuple<SaveMode, bool>> {
protected:
    Kills() : GenerationsFixture(std::get<0>(GetParam()), std::get<1>(GetParam()), 100, 10'000) {}

    Duration timeOfASave() {
        const auto start = std::chrono::steady_clock::now();
        saveNext();
        return std::chrono::steady_clock::now() - start;
    }
    /// Waits for a time between none and the longest.
    void wait(Duration longest) {
        std::uniform_int_distribution<Duration::rep> time(0, longest.count());
        std::this_thread::sleep_for(Duration(time(m_random)));
    }
    /// Waits until a saver writes its new file, or a while.
    void waitForNewFile() const {
        const std::size_t before = besideUserFile().size();
        for (int time = 0; time < 10'000 && besideUserFile().size() == before; ++time)
            std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    /// Makes what killed processes left behind old enough to be removed.
    void age() const {
        for (const auto& entry : fs::directory_iterator(m_userFolder))
            if (entry.path().extension() == ".new")
                fs::last_write_time(entry.path(),
                                    fs::file_time_type::clock::now() - std::chrono::minutes(11));
    }

private:
    std::mt19937 m_random{1};
};

INSTANTIATE_TEST_SUITE_P(, Kills,
                         testing::Combine(testing::Values(ConfigurationManager::Replace,
                                                          ConfigurationManager::Merge),
                                          testing::Bool()),
                         Support::nameOfModes);

TEST_P(Kills, LeaveOneCompleteGeneration) {
    constexpr int kills = 150; // in each of the four cases
    const Duration save = timeOfASave();
    int last = generationOfFile();
    std::size_t cutShort = 0;
    for (int kill = 1; kill <= kills; ++kill) {
        SCOPED_TRACE("kill number " + std::to_string(kill));
        {
            Process saver([&] { saveForEver(last); });
            if (kill % 2 == 0) {
                wait(save);
            } else {
                waitForNewFile();
                wait(std::chrono::milliseconds(2));
            }
            saver.kill();
        }
        const int now = generationOfFile();
        ASSERT_GE(now, last) << "the file is damaged, mixed or lost";
        last = now;
        if (kill % 15 != 0)
            continue;
        const std::size_t leftovers = besideUserFile().size() - 1;
        EXPECT_LE(leftovers, 15U);
        cutShort += leftovers;
        age();
        EXPECT_EQ(now, load());
        saveNext();
        EXPECT_EQ(Strings{"settings.xml"}, besideUserFile());
        last = generationOfFile();
    }
    EXPECT_GT(cutShort, 0U) << "no kill hit a save";
}

} // namespace
} // namespace Orvant
