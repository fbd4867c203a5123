#include <faults/Fault.h>
#include <faults/FaultSupport.h>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <tuple>

namespace Orvant {
namespace {

using Report = ConfigurationSaveReport;
using Support::Fault;
using Support::nameOf;
using Support::SaveMode;
using Support::TestObject;
using testing::AnyOf;
using testing::Eq;
using testing::HasSubstr;
using testing::Not;
using testing::Values;

/// What is saved, compared with what the user's file holds.
enum class Change { NewFile, Longer, Shorter };

constexpr const char* all[] = {"open",   "read",      "write", "close", "fsync",
                               "rename", "ftruncate", "stat",  "fstat"};
constexpr int errors[] = {EIO, ENOSPC, EINTR, EACCES, EMFILE, EDQUOT, FaultPlan::half};

std::string describe(const FaultPlan& plan) {
    return std::string(plan.call) + " number " + std::to_string(plan.first) +
           (plan.times == FaultPlan::always ? " and all that follow: " : ": ") +
           (plan.error == FaultPlan::half ? "half" : std::strerror(plan.error));
}

class FailingCalls : public Support::FaultFixture,
                     public testing::WithParamInterface<std::tuple<SaveMode, bool, Change>> {
protected:
    FailingCalls() {
        loadAndChange();
        EXPECT_TRUE(save());
        m_new = user();
        if (m_twoFiles) {
            std::filesystem::remove(m_system.toPath());
            loadAndChange(false);
            EXPECT_TRUE(save());
            m_newWithoutSystem = user();
        }
    }

    /// Tries each fault of the calls on a folder's files.
    /// @param run one attempt, with a fault that it has to apply
    template <typename Run>
    void forEachFault(const std::filesystem::path& folder, Run run) {
        const std::string path = folder.string();
        for (const char* const call : all) {
            FaultPlan none{.call = call, .path = path.c_str()};
            run(none);
            for (int first = 1; first <= none.seen; ++first)
                for (const int error : errors)
                    for (const int times : {1, FaultPlan::always}) {
                        FaultPlan plan{call, path.c_str(), error, first, times};
                        SCOPED_TRACE(describe(plan));
                        run(plan);
                        if (HasFailure())
                            return;
                    }
        }
    }

    /// Puts the files back as they were at first.
    void putFiles() {
        for (const auto& folder : {m_userFolder, m_systemFolder})
            for (const auto& entry : std::filesystem::directory_iterator(folder))
                std::filesystem::remove(entry.path());
        if (m_old)
            Support::writeFile(m_user, *m_old);
        if (m_twoFiles)
            Support::writeFile(m_system,
                               Support::document("<Test><number>20</number><locked "
                                                 "editable=\"false\">30</locked></Test>"));
    }

    /// Forgets all, and registers the object.
    void load() {
        start(m_mode, m_twoFiles);
        m_object = add(TestObject::make("Test", [](TestObject& object) {
            object.add("number", 1).add("locked", 1).add("text", std::string());
        }));
    }
    void change() {
        m_object->value<std::string>("text").setValue(
            std::string(m_change == Change::Shorter ? 10 : 100, 'n'));
    }
    void loadAndChange(bool putFilesFirst = true) {
        if (putFilesFirst)
            putFiles();
        else if (std::filesystem::remove(m_user.toPath()); m_old)
            Support::writeFile(m_user, *m_old);
        load();
        change();
    }
    bool save() { return m_manager.saveConfiguration("1.0"); }

    std::optional<std::string> user() const {
        return std::filesystem::exists(m_user.toPath()) ? std::optional(Support::readFile(m_user))
                                                        : std::nullopt;
    }

    void expectOldOrNew(bool saved) {
        const Report& report = m_manager.getSaveReport();
        EXPECT_EQ(saved ? m_new : m_old, user()) << saved << report.text;
        if (saved)
            EXPECT_EQ(Report::Saved, report.reason) << report.text;
        else
            // Neither file is ever damaged or of another version.
            EXPECT_THAT(report.reason, Not(AnyOf(Report::Saved, Report::NothingToSave,
                                                 Report::Damaged, Report::OtherVersion)))
                << report.text;
        if (!saved || report.writtenInPlace != (m_mode == ConfigurationManager::InPlace)) {
            EXPECT_THAT(report.text, HasSubstr(m_user.toString()));
        }
        EXPECT_EQ(user() ? Strings{"settings.xml"} : Strings(), besideUserFile());
    }
    void expectSavedNow() {
        EXPECT_TRUE(save()) << m_manager.getSaveReport().text;
        EXPECT_EQ(m_new, user());
        EXPECT_EQ(Strings{"settings.xml"}, besideUserFile());
    }

    /// Whether the object is as both files have it.
    bool isLoaded() const {
        const int number = m_object->value<int>("number").getValue();
        const int locked = m_object->value<int>("locked").getValue();
        return number == (m_old ? 10 : m_twoFiles ? 20 : 1) && locked == (m_twoFiles ? 30 : 1);
    }

    using Strings = std::vector<std::string>;

    const SaveMode m_mode = std::get<0>(GetParam());
    const bool m_twoFiles = std::get<1>(GetParam());
    const Change m_change = std::get<2>(GetParam());
    /// What the user's file holds at first.
    const std::optional<std::string> m_old =
        m_change == Change::NewFile ? std::nullopt
                                    : std::optional(Support::document(
                                          "<!-- mine --><Test><number>10</number><text>" +
                                          std::string(m_change == Change::Shorter ? 100 : 10, 'o') +
                                          "</text></Test><Foreign><x>1</x></Foreign>"));
    std::optional<std::string> m_new;              ///< what a save leaves there
    std::optional<std::string> m_newWithoutSystem; ///< the same where there is no system file
    std::shared_ptr<TestObject> m_object;
    const Support::LogCapture m_managerLog{"ConfigurationManager"};
    const Support::LogCapture m_readerLog{"SimpleConfigReader"};
    const Support::LogCapture m_writerLog{"ConfigWriter"};
};

std::string nameOfCase(const testing::TestParamInfo<FailingCalls::ParamType>& info) {
    const auto& [mode, twoFiles, change] = info.param;
    return nameOf(mode) + (twoFiles ? "TwoFiles" : "OneFile") +
           (change == Change::NewFile  ? "NewFile"
            : change == Change::Longer ? "Longer"
                                       : "Shorter");
}

INSTANTIATE_TEST_SUITE_P(, FailingCalls,
                         testing::Combine(Support::anySaveMode, testing::Bool(),
                                          Values(Change::NewFile, Change::Longer, Change::Shorter)),
                         nameOfCase);

TEST_P(FailingCalls, LeaveTheOldOrTheNewFileWhenASaveFails) {
    for (const auto& folder : {m_userFolder, m_systemFolder})
        forEachFault(folder, [&](FaultPlan& plan) {
            loadAndChange();
            bool saved = false;
            {
                const Fault fault(plan);
                saved = save();
            }
            expectOldOrNew(saved);
            expectSavedNow();
        });
}

TEST_P(FailingCalls, KeepSavesFromErasingWhatWasNotLoaded) {
    for (const auto& folder : {m_userFolder, m_systemFolder})
        forEachFault(folder, [&](FaultPlan& plan) {
            putFiles();
            {
                const Fault fault(plan);
                load();
            }
            const bool loaded = isLoaded();
            change();
            const bool saved = save();
            EXPECT_EQ(loaded, saved) << m_manager.getSaveReport().text;
            expectOldOrNew(saved);
            if (!loaded) {
                EXPECT_EQ(Report::NotLoaded, m_manager.getSaveReport().reason);
            }
            load();
            EXPECT_TRUE(isLoaded());
            change();
            expectSavedNow();
        });
}

TEST_P(FailingCalls, LoseNothingWhenTheyLastFromTheLoadToTheSave) {
    for (const auto& folder : {m_userFolder, m_systemFolder})
        forEachFault(folder, [&](FaultPlan& plan) {
            putFiles();
            bool saved = false;
            {
                const Fault fault(plan);
                load();
                change();
                saved = save();
            }
            // A system file that could be read at neither time is as good as none.
            if (saved && folder == m_systemFolder)
                EXPECT_THAT(user(), AnyOf(Eq(m_new), Eq(m_newWithoutSystem)));
            else
                expectOldOrNew(saved);
            load();
            change();
            expectSavedNow();
        });
}

} // namespace
} // namespace Orvant
