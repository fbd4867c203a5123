// Counts what each save mode loses, for the README's table. Not a test: it takes a while, and what
// is lost in place differs from run to run. See the target Losses in CMakeLists.txt.

#include <faults/Fault.h>
#include <faults/FaultSupport.h>

#include <chrono>
#include <cstdio>
#include <random>
#include <thread>

namespace Orvant {
namespace {

using Support::Fault;
using Support::Process;
using Support::SaveMode;
using Support::TestObject;

std::string describe(SaveMode mode, bool twoFiles) {
    return Support::nameOf(mode) + (twoFiles ? ", two files: " : ", one file: ");
}

double percentOf(int part, int whole) {
    return 100.0 * part / whole;
}

class Generations : public Support::GenerationsFixture {
public:
    Generations(SaveMode mode, bool twoFiles, int texts)
        : GenerationsFixture(mode, twoFiles, texts, 10'000), m_what(describe(mode, twoFiles)) {}

    void countKills(int kills) {
        std::mt19937 random(1);
        const auto start = std::chrono::steady_clock::now();
        saveNext();
        const auto save = std::chrono::steady_clock::now() - start;
        std::uniform_int_distribution<long> time(0, 2 * save.count());
        int lost = 0;
        for (int kill = 0; kill < kills; ++kill) {
            const int last = generationOfFile();
            const std::string bytes = Support::readFile(m_user);
            {
                Process saver([&] { saveForEver(last); });
                std::this_thread::sleep_for(std::chrono::nanoseconds(time(random)));
                saver.kill();
            }
            if (generationOfFile() >= last)
                continue;
            ++lost;
            Support::writeFile(m_user, bytes);
        }
        std::printf("%skill -9 in a save of 1 MB: file lost in %d of %d (%.1f %%)\n",
                    m_what.c_str(), lost, kills, percentOf(lost, kills));
    }

    void countLoads(int loads) {
        const int start = load();
        const Process saver([&] { saveForEver(start); });
        int missing = 0;
        for (int number = 0; number < loads; ++number)
            missing += load() < start ? 1 : 0;
        std::printf("%sstart while another saves: user layer missing in %d of %d (%.1f %%)\n",
                    m_what.c_str(), missing, loads, percentOf(missing, loads));
    }

private:
    void TestBody() override {}

    std::string m_what;
};

class Values : public Support::FaultFixture {
public:
    Values(SaveMode mode, bool twoFiles)
        : m_mode(mode), m_twoFiles(twoFiles), m_what(describe(mode, twoFiles)) {}

    /// Two programs save at the same time, each its own object or its own half of one.
    void countTwoPrograms(bool sameObject, int rounds) {
        constexpr int each = 50;
        const auto nameOfObject = [&](int process) {
            return sameObject ? std::string("Both") : "Own" + std::to_string(process);
        };
        const int values = sameObject ? 2 * each : each;
        int lost = 0;
        int denied = 0;
        for (int round = 0; round < rounds; ++round) {
            std::filesystem::remove(m_user.toPath());
            const auto begin = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
            std::vector<std::unique_ptr<Process>> programs;
            for (int process = 0; process < 2; ++process)
                programs.push_back(std::make_unique<Process>([&, process] {
                    const auto object = load(nameOfObject(process), values);
                    set(*object, sameObject ? process * each : 0, each);
                    std::this_thread::sleep_until(begin);
                    if (!m_manager.saveConfiguration("1.0"))
                        throw std::runtime_error(m_manager.getSaveReport().text);
                }));
            for (const auto& program : programs)
                denied += program->succeeds() ? 0 : 1;
            for (int process = 0; process < (sameObject ? 1 : 2); ++process)
                lost += values - countSet(*load(nameOfObject(process), values));
        }
        std::printf("%stwo programs, %s: %d of %d settings lost, %d saves of %d said false\n",
                    m_what.c_str(), sameObject ? "values of one object" : "each its own object",
                    lost, 2 * each * rounds, denied, 2 * rounds);
    }

    /// One call on the user's file fails while it is loaded.
    void countAfterFailedLoad(const char* call) {
        constexpr int values = 2000;
        std::filesystem::remove(m_user.toPath());
        set(*load("Object", values), 0, values);
        m_manager.saveConfiguration("1.0");
        const std::string folder = m_userFolder.string();
        FaultPlan plan{call, folder.c_str(), EMFILE, 1, 1};
        {
            const Fault fault(plan);
            load("Object", values);
        }
        const bool saved = m_manager.saveConfiguration("1.0");
        std::printf("%sone failed %s at start, then a save: %d of %d settings lost, it says %s\n",
                    m_what.c_str(), call, values - countSet(*load("Object", values)), values,
                    saved ? "true" : "false");
    }

    /// The system file cannot be opened while it is loaded, or at the save.
    void countPinned(bool atLoad) {
        constexpr int values = 2000;
        std::filesystem::remove(m_user.toPath());
        set(*load("Object", values), 0, values);
        m_manager.saveConfigurationToFile(m_system.toString(), "1.0");
        const std::string folder = m_systemFolder.string();
        FaultPlan plan{"open", folder.c_str(), EIO, 1, FaultPlan::always};
        bool saved = false;
        if (atLoad) {
            {
                const Fault fault(plan);
                load("Object", values);
            }
            saved = m_manager.saveConfiguration("1.0");
        } else {
            load("Object", values);
            const Fault fault(plan);
            saved = m_manager.saveConfiguration("1.0");
        }
        int pinned = 0;
        if (std::filesystem::exists(m_user.toPath())) {
            const std::string bytes = Support::readFile(m_user);
            for (auto at = bytes.find("<v"); at != bytes.npos; at = bytes.find("<v", at + 1))
                ++pinned;
        }
        std::filesystem::remove(m_system.toPath());
        std::printf("%ssystem file unreadable %s: %d of %d values pinned, the save says %s\n",
                    m_what.c_str(), atLoad ? "at start" : "at the save", pinned, values,
                    saved ? "true" : "false");
    }

private:
    void TestBody() override {}

    std::shared_ptr<TestObject> load(const std::string& name, int values) {
        start(m_mode, m_twoFiles);
        return add(TestObject::make(name, [=](TestObject& object) {
            for (int i = 0; i < values; ++i)
                object.add("v" + std::to_string(i), 0);
        }));
    }
    static void set(const TestObject& object, int first, int count) {
        for (int i = first; i < first + count; ++i)
            object.value<int>("v" + std::to_string(i)).setValue(1);
    }
    static int countSet(const TestObject& object) {
        int count = 0;
        for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
            count += dynamic_cast<const ConfigurationValue<int>&>(**value).getValue();
        return count;
    }

    SaveMode m_mode;
    bool m_twoFiles;
    std::string m_what;
    Support::LogCapture m_managerLog{"ConfigurationManager"};
    Support::LogCapture m_readerLog{"SimpleConfigReader"};
    Support::LogCapture m_writerLog{"ConfigWriter"};
};

void count(SaveMode mode, bool twoFiles, int kills) {
    Generations(mode, twoFiles, 100).countKills(kills);
    Generations(mode, twoFiles, 5).countLoads(1000);
    Values values(mode, twoFiles);
    values.countTwoPrograms(false, 11);
    values.countTwoPrograms(true, 4);
    values.countAfterFailedLoad("open");
    values.countAfterFailedLoad("read");
    if (twoFiles) {
        values.countPinned(true);
        values.countPinned(false);
    }
}

} // namespace
} // namespace Orvant

/// Arguments: a mode or "all", and the number of kills.
int main(int count, char** arguments) try {
    testing::InitGoogleTest();
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    using Orvant::ConfigurationManager;
    const std::string only = count > 1 ? arguments[1] : "all";
    const int kills = count > 2 ? std::stoi(arguments[2]) : 300;
    for (const auto mode : {ConfigurationManager::InPlace, ConfigurationManager::Replace,
                            ConfigurationManager::Merge})
        for (const bool twoFiles : {false, true})
            if (only == "all" || only == Orvant::Support::nameOf(mode))
                Orvant::count(mode, twoFiles, kills);
    return 0;
} catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
}
