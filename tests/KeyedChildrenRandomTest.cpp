// Whatever user and administrator do in turn: nothing that the user saved is lost, no lock is
// broken, and what was removed stays removed.

#include <ConfigurationFramework/Settings.h>

#include <KeyedSupport.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <tuple>

namespace Orvant {
namespace {

using Support::keysOf;
using Support::Plotter;
using Support::SaveMode;
using Support::View3D;

/// What the administrator says of a plotter.
struct SystemPlotter {
    int copies = 1;
    std::string paper = "A4";
    bool isLocked = false;
    bool isPaperLocked = false;

    bool hasLocks() const { return isLocked || isPaperLocked; }
};

/// Copies, paper, whether these are locked, and the keys of the trays.
using PlotterState = std::tuple<int, std::string, bool, bool, Support::Keys>;
using State = std::map<std::string, PlotterState>;

State stateOf(const View3D& view) {
    State state;
    for (const auto& [key, plotter] : view.plotters)
        state[key] = {plotter.copies, plotter.paper, plotter.copies.isLocked(),
                      plotter.paper.isLocked(), keysOf(plotter.trays)};
    return state;
}

class RandomKeyedChildren : public Support::KeyedFixture,
                            public testing::WithParamInterface<SaveMode> {
protected:
    RandomKeyedChildren() { m_manager.setSaveMode(GetParam()); }

    unsigned int upTo(unsigned int count) { return static_cast<unsigned int>(m_random()) % count; }
    std::string anyKey() { return std::string(1, static_cast<char>('a' + upTo(5))); }
    std::string anyPaper() { return "A" + std::to_string(upTo(6)); }

    void run(unsigned int seed) {
        m_random.seed(seed);
        m_system.clear();
        m_defaultEntry.reset();
        m_saved.clear();
        m_removed.clear();
        writeSystemFile();
        writeUser("");
        m_view = start();
        m_view->plotters.add("mine");
        for (int step = 0; step < 40 && !HasFatalFailure(); ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            act();
        }
    }

private:
    void act() {
        switch (upTo(9)) {
        case 0:
        case 1:
            return change(anyKey());
        case 2:
        case 3:
            return remove(anyKey());
        case 4:
            return administrate();
        case 5:
            return expectReloaded();
        case 6:
            return changeTrays(anyKey());
        default:
            return expectSaved();
        }
    }

    void change(const std::string& key) {
        Plotter& plotter = m_view->plotters.add(key);
        m_removed.erase(key);
        plotter.copies = static_cast<int>(upTo(9)) + 1;
        plotter.paper = anyPaper();
    }
    void changeTrays(const std::string& key) {
        Plotter* const plotter = m_view->plotters.find(key);
        if (plotter == nullptr || plotter->isLocked())
            return;
        const std::string tray = std::to_string(upTo(3));
        if (plotter->trays.find(tray) == nullptr)
            plotter->trays.add(tray);
        else
            plotter->trays.remove(tray);
    }
    void remove(const std::string& key) {
        m_view->plotters.remove(key);
        const bool mustStay = m_system.contains(key) && m_system[key].hasLocks();
        ASSERT_EQ(mustStay, m_view->plotters.find(key) != nullptr) << key;
        if (!mustStay)
            m_saved.erase(key);
    }

    /// The administrator edits the file, which is reloaded with all that is not saved.
    void administrate() {
        const State before = stateOf(*m_view);
        const std::string key = anyKey();
        if (upTo(4) == 0)
            m_system.erase(key);
        else
            m_system[key] = {static_cast<int>(upTo(9)) + 1, anyPaper(), upTo(4) == 0, upTo(4) == 0};
        if (upTo(3) == 0)
            m_defaultEntry = SystemPlotter{static_cast<int>(upTo(9)) + 1, anyPaper(), upTo(3) == 0,
                                           upTo(3) == 0};
        else if (upTo(3) == 0)
            m_defaultEntry.reset();
        writeSystemFile();
        ASSERT_TRUE(m_manager.reloadConfiguration());
        expectLocks();
        for (const auto& [own, state] : before)
            if (!m_system.contains(own) && own != key) {
                ASSERT_NE(nullptr, m_view->plotters.find(own)) << own;
            }
    }
    void writeSystemFile() const {
        std::string text;
        const auto add = [&](const std::string& attributes, const SystemPlotter& plotter) {
            text += "<Plotter" + attributes + (plotter.isLocked ? " editable='false'>" : ">") +
                    "<Copies>" + std::to_string(plotter.copies) + "</Copies><Paper" +
                    (plotter.isPaperLocked ? " editable='false'>" : ">") + plotter.paper +
                    "</Paper></Plotter>";
        };
        if (m_defaultEntry)
            add("", *m_defaultEntry);
        for (const auto& [key, plotter] : m_system)
            add(" key='" + key + "'", plotter);
        writeSystem("<View3D>" + text + "</View3D>");
    }

    void expectLocks() const {
        for (const auto& [key, expected] : m_system) {
            const Plotter* const plotter = m_view->plotters.find(key);
            if (plotter == nullptr) {
                ASSERT_FALSE(expected.hasLocks()) << key;
                continue;
            }
            ASSERT_EQ(expected.isLocked, plotter->copies.isLocked()) << key;
            ASSERT_EQ(expected.hasLocks(), plotter->paper.isLocked()) << key;
            if (expected.isLocked) {
                ASSERT_EQ(expected.copies, plotter->copies) << key;
            }
            if (expected.hasLocks()) {
                ASSERT_EQ(expected.paper, plotter->paper.get()) << key;
            }
        }
        for (const std::string& key : m_removed)
            if (!m_system.contains(key) || !m_system.at(key).hasLocks()) {
                ASSERT_EQ(nullptr, m_view->plotters.find(key)) << key;
            }
    }
    void expectReloaded() {
        const State before = stateOf(*m_view);
        ASSERT_TRUE(m_manager.reloadConfiguration());
        ASSERT_EQ(before, stateOf(*m_view));
    }

    void expectSaved() {
        save();
        const std::string text = Support::readFile(m_userFile);
        ASSERT_EQ(std::string::npos, text.find("<Plotter>"))
            << "a default entry of the system file\n"
            << text << Support::readFile(m_systemFile);
        save();
        ASSERT_EQ(text, Support::readFile(m_userFile));
        const State state = stateOf(*m_view);
        for (const auto& [key, plotter] : m_system)
            if (!state.contains(key))
                m_removed.insert(key);
        if (upTo(2) == 0)
            m_view = start();
        ASSERT_EQ(state, stateOf(*m_view)) << text << Support::readFile(m_systemFile);
        ASSERT_EQ(state, stateOf(*Process(anotherProcess()).operator->())) << text;
        for (const auto& [key, saved] : m_saved)
            ASSERT_TRUE(state.contains(key)) << key << " is lost\n" << text;
        for (const auto& [key, plotter] : state)
            if (!m_system.contains(key))
                m_saved[key] = plotter;
            else
                m_saved.erase(key);
        expectLocks();
        save();
        ASSERT_EQ(text, Support::readFile(m_userFile));
    }

    std::minstd_rand m_random;
    std::map<std::string, SystemPlotter> m_system;
    std::optional<SystemPlotter> m_defaultEntry;
    std::shared_ptr<View3D> m_view;
    State m_saved;                   ///< the user's own, in the file
    std::set<std::string> m_removed; ///< the system file's, in the user's file
};

INSTANTIATE_TEST_SUITE_P(, RandomKeyedChildren, Support::anySaveMode, Support::nameOfMode);

TEST_P(RandomKeyedChildren, AreNeitherLostNorUnlockedNorBack) {
    for (unsigned int seed = 1; seed <= 5 && !HasFatalFailure(); ++seed)
        run(seed);
}

} // namespace
} // namespace Orvant
