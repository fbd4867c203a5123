#pragma once

#include <ConfigurationFramework/Settings.h>

#include <ManagerFixture.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Orvant::Support {

/// A child of a child with a key.
struct Tray : Settings<Tray> {
    Tray() : Settings("Tray", "A tray") {}
    Setting<int> sheets{this, "Sheets", "Sheets of paper", 100};
};

struct Plotter : Settings<Plotter> {
    Plotter() : Settings("Plotter", "A plotter") {}
    Setting<std::string> paper{this, "Paper", "Paper size", "A4"};
    Setting<int> copies{this, "Copies", "Number of copies", 1, Range{1, 99}};
    Setting<std::vector<std::string>> pens{this, "Pens", "Colours of the pens", {}};
    KeyedChildren<Tray> trays{this};
};

struct Scanner : Settings<Scanner> {
    Scanner() : Settings("Scanner", "A scanner") {}
    Setting<int> resolution{this, "Resolution", "Dots per inch", 300};
};

/// Stored inline, in the element of its parent.
struct Devices : Settings<Devices> {
    Devices() : Settings("") {}
    KeyedChildren<Scanner> scanners{this};
};

/// Has two kinds of children with keys, one of them in a child without a name.
struct View3D : Settings<View3D> {
    View3D() : Settings("View3D", "The 3D view") {}
    Setting<bool> showGrid{this, "ShowGrid", "Whether the grid is drawn", true};
    KeyedChildren<Plotter> plotters{this};
    Child<Devices> devices{this};
};

/// @return the keys, in the order of iteration
template <typename C>
std::vector<std::string> keysOf(const KeyedChildren<C>& children) {
    std::vector<std::string> keys;
    for (const auto& [key, child] : children)
        keys.push_back(key);
    return keys;
}

/// Keeps its settings in files that tests write and read.
class KeyedFixture : public ManagerFixture {
protected:
    KeyedFixture() { useTwoFiles(); }

    void writeSystem(const std::string& elements) const {
        writeFile(m_systemFile, document(elements));
    }
    void writeUser(const std::string& elements) const { writeFile(m_userFile, document(elements)); }
    std::string userText() const { return withoutFormatting(readFile(m_userFile)); }

    /// Starts the application anew with one object, from the same files.
    template <typename Object = View3D>
    std::shared_ptr<Object> start() {
        m_manager.reset();
        m_isOneFile ? useOneFile() : useTwoFiles();
        return add(std::make_shared<Object>());
    }
    void save() {
        ASSERT_TRUE(m_manager.saveConfiguration("1.0")) << m_manager.getSaveReport().text;
    }
    /// Has the user's file as the only one.
    void useUserFileAlone() {
        m_isOneFile = true;
        m_manager.setConfigurationFile(m_userFile);
    }

    /// What another process of the application sees and saves.
    class Process {
    public:
        explicit Process(ConfigurationManager manager)
            : m_manager(std::move(manager)), m_view(std::make_shared<View3D>()) {
            m_manager.addConfigurationObject(m_view, "View3D");
        }
        View3D* operator->() const { return m_view.get(); }
        void save() {
            ASSERT_TRUE(m_manager.saveConfiguration("1.0")) << m_manager.getSaveReport().text;
        }
        ConfigurationManager& manager() { return m_manager; }

    private:
        ConfigurationManager m_manager;
        std::shared_ptr<View3D> m_view;
    };

private:
    void useOneFile() { m_manager.setConfigurationFile(m_userFile); }

    bool m_isOneFile = false;
};

using Keys = std::vector<std::string>;

} // namespace Orvant::Support
