#include "SettingsWindow.h"
#include "PlannerSettings.h"

#include "TestSupport.h"

#include <ConfigurationFramework/ConfigurationManager.h>

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

/// How GoogleTest prints texts.
void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace {

using Orvant::ConfigurationManager;
using Orvant::ConfigurationObject;
using Orvant::Setting;
using Orvant::Support::RunningProduct;
using Orvant::Support::TemporaryDirectory;
using Ui::SettingsWindow;

constexpr const char* version = "1.0";
constexpr std::chrono::seconds patience(10); // of tests that wait for the system

const std::string emptyDocument = Orvant::Support::document("");

/// The planner's settings, with the manager's files in a folder of their own.
class Planning {
public:
    Planning(ConfigurationManager& manager, const Orvant::FileName& systemFile,
             const Orvant::FileName& userFile) {
        manager.reset();
        manager.setValidVersionList({version});
        manager.setSaveMode(ConfigurationManager::Merge);
        manager.setSystemAndUserConfigurationFile(systemFile, userFile);
        manager.addConfigurationObjects(
            {{view, "View"}, {library, "Library"}, {plotting, "Plotting"}});
    }

    std::shared_ptr<Planner::View> view = std::make_shared<Planner::View>();
    std::shared_ptr<Planner::Library> library = std::make_shared<Planner::Library>();
    std::shared_ptr<Planner::Plotting> plotting = std::make_shared<Planner::Plotting>();
};

class SettingsWindowTest : public testing::Test {
public:
    SettingsWindowTest() = default;
    SettingsWindowTest(const SettingsWindowTest&) = delete;
    SettingsWindowTest& operator=(const SettingsWindowTest&) = delete;
    ~SettingsWindowTest() override {
        m_window.reset();
        manager.reset();
    }

protected:
    /// Opens a window for the example's files.
    void open() {
        open(Orvant::Support::readFile(EXAMPLE_DIR "/data/system.xml"),
             Orvant::Support::readFile(EXAMPLE_DIR "/data/user.xml"));
    }
    void open(const std::string& systemDocument, const std::string& userDocument) {
        Orvant::Support::writeFile(systemFile, systemDocument);
        Orvant::Support::writeFile(userFile, userDocument);
        planning = std::make_unique<Planning>(manager, systemFile, userFile);
        openWindow();
    }
    /// Opens a window for another object.
    void open(const std::shared_ptr<ConfigurationObject>& object,
              const std::string& userDocument = emptyDocument) {
        Orvant::Support::writeFile(userFile, userDocument);
        manager.reset();
        manager.setValidVersionList({version});
        manager.setConfigurationFile(userFile);
        manager.addConfigurationObject(object, object->getName());
        openWindow();
    }

    SettingsWindow& window() const { return *m_window; }

    template <typename Widget>
    Widget& find(const char* name) const {
        auto* const found = m_window->findChild<Widget*>(name);
        if (found == nullptr)
            throw std::logic_error(std::string("The window has no ") + name);
        return *found;
    }
    bool has(const char* name) const { return m_window->findChild<QWidget*>(name) != nullptr; }
    QString text(const char* name) const { return find<QLabel>(name).text(); }
    QString status() const { return text("status"); }

    void select(const QString& title) const {
        auto& tree = find<QTreeWidget>("tree");
        const auto found = tree.findItems(title, Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(found.size(), 1) << title.toStdString();
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {},
                          tree.visualItemRect(found.front()).center());
        QApplication::processEvents(); // lays out
    }
    /// @return the titles in the tree, each with a blank for each item around it
    QStringList titles() const {
        QStringList all;
        for (QTreeWidgetItemIterator item(&find<QTreeWidget>("tree")); *item != nullptr; ++item) {
            QString indentation;
            for (const auto* parent = (*item)->parent(); parent != nullptr;
                 parent = parent->parent())
                indentation += ' ';
            all << indentation + (*item)->text(0);
        }
        return all;
    }
    void press(const char* name) const { find<QAbstractButton>(name).click(); }
    void type(const char* name, const QString& text) const {
        auto& editor = find<QWidget>(name);
        QTest::keyClick(&editor, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&editor, text);
    }
    /// Has another process's settings saved.
    void saveElsewhere(const std::function<void(Planning&)>& change) const {
        ConfigurationManager other(manager);
        Planning theirs(other, systemFile, userFile);
        change(theirs);
        ASSERT_TRUE(other.saveConfiguration(version)) << other.getSaveReport().text;
    }
    static bool waitFor(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition,
                               static_cast<int>(std::chrono::milliseconds(patience).count()));
    }

    TemporaryDirectory folder;
    Orvant::FileName systemFile = folder.file("system.xml");
    Orvant::FileName userFile = folder.file("user.xml");
    ConfigurationManager& manager = ConfigurationManager::getInstance();
    std::unique_ptr<Planning> planning;

private:
    void openWindow() {
        m_window = std::make_unique<SettingsWindow>(
            manager, std::vector<Orvant::FileName>{systemFile, userFile}, version);
        m_window->resize(860, 520);
        m_window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    }

    std::unique_ptr<SettingsWindow> m_window;
};

using SettingsWindowEditing = SettingsWindowTest;
using SettingsWindowShowing = SettingsWindowTest;
using SettingsWindowFiles = SettingsWindowTest;
using SettingsWindowKeyboard = SettingsWindowTest;
using SettingsWindowPicture = SettingsWindowTest;

// --- Showing

TEST_F(SettingsWindowShowing, TreeHasObjectsChildrenAndKeyedChildren) {
    open();
    EXPECT_EQ(titles(), QStringList({"Libraries of parts", "Plotting", " Plotter: Hall 1",
                                     " Plotter: Office", "View", " Camera"}));
}

TEST_F(SettingsWindowShowing, EditorsGoByTypeRangeAndChoices) {
    open();
    select("View");
    EXPECT_FALSE(find<QCheckBox>("View/ShowGrid").isChecked());
    const auto& spacing = find<QDoubleSpinBox>("View/GridSpacing");
    EXPECT_EQ(spacing.minimum(), 0.1);
    EXPECT_EQ(spacing.maximum(), 100);
    EXPECT_EQ(spacing.text(), "0.5");
    const auto& steps = find<QSpinBox>("View/UndoSteps");
    EXPECT_EQ(steps.maximum(), 1000);
    EXPECT_EQ(steps.value(), 200);
    const auto& unit = find<QComboBox>("View/LengthUnit");
    EXPECT_EQ(unit.count(), 3);
    EXPECT_EQ(unit.currentText(), "Metres");
    EXPECT_EQ(unit.toolTip(), "What lengths are shown in");
    select("Libraries of parts");
    EXPECT_EQ(find<QLineEdit>("Library/Server").text(), "parts.example");
    EXPECT_EQ(find<QDoubleSpinBox>("Library/TimeoutSeconds").text(), "60");
    const auto& folders = *find<QWidget>("Library/Folders").findChild<QListWidget*>();
    ASSERT_EQ(folders.count(), 2);
    EXPECT_EQ(folders.item(1)->text(), "Hall 3");
    select("Plotter: Office");
    EXPECT_EQ(find<QComboBox>("Plotting/Plotter[Office]/Paper").currentText(), "A4");
}

struct Numbers : Orvant::Settings<Numbers> {
    Numbers() : Settings("Numbers") {}
    Setting<float> single{this, "Single", "A short number", 0.1F};
    Setting<double> large{this, "Large", "A large number", 1e300};
    Setting<unsigned int> count{this, "Count", "A count", 4'000'000'000U};
    Setting<int> size{this, "Size", "One of some", 16, Orvant::OneOf{16, 32}};
    Setting<double> factor{this, "Factor", "One of some", 0.5, Orvant::OneOf{0.5, 1.5}};
};

TEST_F(SettingsWindowShowing, NumbersHaveAsManyDigitsAsTheyNeed) {
    const auto numbers = std::make_shared<Numbers>();
    open(numbers);
    EXPECT_EQ(find<QDoubleSpinBox>("Numbers/Single").text(), "0.1");
    EXPECT_EQ(find<QDoubleSpinBox>("Numbers/Large").text(), "1e+300");
    EXPECT_EQ(find<QDoubleSpinBox>("Numbers/Count").text(), "4000000000");

    type("Numbers/Single", "0.3");
    type("Numbers/Large", "-2.5e-3");
    type("Numbers/Count", "4294967295");
    QTest::keyClick(&find<QWidget>("Numbers/Size"), Qt::Key_Down);
    QTest::keyClick(&find<QWidget>("Numbers/Factor"), Qt::Key_Down);
    press("apply");
    EXPECT_EQ(numbers->single, 0.3F);
    EXPECT_EQ(numbers->large, -2.5e-3);
    EXPECT_EQ(numbers->count, 4'294'967'295U);
    EXPECT_EQ(numbers->size, 32);
    EXPECT_EQ(numbers->factor, 1.5);
}

TEST_F(SettingsWindowShowing, OriginsAreBesideTheValues) {
    open();
    select("View");
    EXPECT_EQ(text("View/ShowGrid.origin"), "user");
    EXPECT_EQ(text("View/UndoSteps.origin"), "system");
    EXPECT_EQ(text("View/GridSpacing.origin"), "default");
    QTest::mouseClick(&find<QWidget>("View/ShowGrid"), Qt::LeftButton);
    EXPECT_EQ(text("View/ShowGrid.origin"), "not applied");
}

struct OtherProduct : Orvant::Settings<OtherProduct> {
    OtherProduct() : Settings("Other", "", LoadAndSave, Product1) {}
    Setting<int> inside{this, "Inside", "In a child of another product", 1};
};

struct OtherInline : Orvant::Settings<OtherInline> {
    OtherInline() : Settings("", "", LoadAndSave, Product1) {}
    Setting<int> inside{this, "InsideInline", "In an inline child of another product", 1};
};

struct Products : Orvant::Settings<Products> {
    Products() : Settings("Products") {}
    Setting<int> shown{this, "Shown", "Of this product", 1, Product0};
    Setting<int> others{this, "Others", "Of another product", 1, Product1};
    Setting<int> unseen{this, "Unseen", "Hidden", 1, Orvant::hidden};
    Orvant::Child<OtherProduct> child{this};
    Orvant::Child<OtherInline> inlineChild{this};
};

TEST_F(SettingsWindowShowing, HiddenValuesAndThoseOfOtherProductsAreLeftOut) {
    const RunningProduct product(0);
    open(std::make_shared<Products>());
    EXPECT_EQ(titles(), QStringList("Products"));
    EXPECT_TRUE(has("Products/Shown"));
    EXPECT_FALSE(has("Products/Others"));
    EXPECT_FALSE(has("Products/Unseen"));
    EXPECT_FALSE(has("Products/InsideInline"));
}

TEST_F(SettingsWindowShowing, SearchFindsLabelsNamesAndPaths) {
    open();
    const auto search = [&](const QString& text) {
        find<QLineEdit>("search").clear();
        QTest::keyClicks(&find<QLineEdit>("search"), text);
        return titles();
    };
    EXPECT_EQ(search("field OF view"), QStringList({"View", " Camera"})); // a label
    EXPECT_TRUE(has("View/Camera/FieldOfView"));
    EXPECT_FALSE(has("View/Camera/Perspective"));
    EXPECT_EQ(search("timeoutSec"), QStringList("Libraries of parts")); // a name
    EXPECT_TRUE(has("Library/TimeoutSeconds"));
    EXPECT_EQ(search("[Office]/C"), QStringList({"Plotting", " Plotter: Office"})); // a path
    EXPECT_EQ(text("heading"), "Plotter: Office");
    EXPECT_EQ(search("nowhere"), QStringList());
    EXPECT_EQ(text("heading"), "Nothing found");
    EXPECT_EQ(search("").size(), 6);
}

TEST_F(SettingsWindowShowing, ProblemsOfTheLastLoadHaveAPanel) {
    open();
    const auto& problems = *find<QGroupBox>("problems").findChild<QListWidget*>();
    ASSERT_EQ(problems.count(), 2);
    EXPECT_TRUE(find<QGroupBox>("problems").isVisible());
    EXPECT_TRUE(problems.item(0)->text().startsWith("user.xml:4:5: Library/TimeoutSeconds: "))
        << problems.item(0)->text().toStdString();
    EXPECT_TRUE(problems.item(1)->text().contains("View/GridSpacing"));
}

TEST_F(SettingsWindowShowing, WithoutProblemsThereIsNoPanel) {
    open(emptyDocument, emptyDocument);
    EXPECT_FALSE(find<QGroupBox>("problems").isVisible());
}

// --- Editing

TEST_F(SettingsWindowEditing, ClicksAndKeysChangeValuesWhichSaveWrites) {
    open();
    select("View");
    QTest::mouseClick(&find<QCheckBox>("View/ShowGrid"), Qt::LeftButton);
    type("View/GridSpacing", "2.5");
    QTest::keyClick(&find<QComboBox>("View/LengthUnit"), Qt::Key_Down);
    EXPECT_FALSE(planning->view->showGrid) << "before it is applied";
    select("Libraries of parts");
    auto& folders = *find<QWidget>("Library/Folders").findChild<QListWidget*>();
    press("add");
    QTest::keyClicks(QApplication::focusWidget(), "South & North");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    press("up");
    folders.setCurrentRow(0);
    press("remove");
    select("Plotter: Hall 1");
    QTest::keyClick(&find<QDoubleSpinBox>("Plotting/Plotter[Hall 1]/Copies"), Qt::Key_Up);

    QTest::mouseClick(&find<QPushButton>("apply"), Qt::LeftButton);
    EXPECT_EQ(status(), "Applied.");
    EXPECT_TRUE(planning->view->showGrid);
    EXPECT_EQ(planning->view->gridSpacing, 2.5);
    EXPECT_EQ(planning->view->unit, Planner::Unit::Inch);
    EXPECT_EQ(planning->library->folders.get(),
              (std::vector<std::string>{"South & North", "Hall 3"}));
    EXPECT_EQ(planning->plotting->plotters.find("Hall 1")->copies, 2U);

    QTest::mouseClick(&find<QPushButton>("save"), Qt::LeftButton);
    EXPECT_EQ(status(), "Saved.");
    EXPECT_EQ(Orvant::Support::readFile(userFile),
              Orvant::Support::readFile(EXAMPLE_DIR "/expected/user.xml"));
}

TEST_F(SettingsWindowEditing, SaveAppliesFirst) {
    open(emptyDocument, emptyDocument);
    select("View");
    QTest::mouseClick(&find<QCheckBox>("View/ShowGrid"), Qt::LeftButton);
    QTest::keyClick(&window(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_FALSE(planning->view->showGrid);
    EXPECT_NE(Orvant::Support::readFile(userFile).find("<ShowGrid>false</ShowGrid>"),
              std::string::npos);
    EXPECT_EQ(text("View/ShowGrid.origin"), "user");
}

TEST_F(SettingsWindowEditing, LockedSettingsSaySoAndStay) {
    open();
    select("Libraries of parts");
    auto& server = find<QLineEdit>("Library/Server");
    EXPECT_FALSE(server.isEnabled());
    EXPECT_FALSE(find<QToolButton>("Library/Server.reset").isEnabled());
    EXPECT_EQ(text("Library/Server.note"), "locked by the administrator");
    EXPECT_TRUE(find<QLabel>("Library/Server.note").isVisible());
    EXPECT_TRUE(server.accessibleDescription().contains("locked by the administrator"));
    type("Library/Server", "elsewhere");
    select("Camera"); // its object is locked
    EXPECT_EQ(text("View/Camera/Perspective.note"), "locked by the administrator");
    QTest::mouseClick(&find<QCheckBox>("View/Camera/Perspective"), Qt::LeftButton);
    press("save");
    EXPECT_EQ(planning->library->server.get(), "parts.example");
    EXPECT_TRUE(planning->view->camera->perspective);
}

struct Inner : Orvant::Settings<Inner> {
    Inner() : Settings("") { setEditable(false); }
    Setting<int> value{this, "Value", "A value in an inline child", 1};
};

struct Outer : Orvant::Settings<Outer> {
    Outer() : Settings("Outer") {}
    Setting<int> open{this, "Open", "A value that is not locked", 1};
    Orvant::Child<Inner> inner{this};
};

TEST_F(SettingsWindowEditing, InlineChildrenMayBeLockedByThemselves) {
    open(std::make_shared<Outer>());
    EXPECT_TRUE(find<QSpinBox>("Outer/Open").isEnabled());
    EXPECT_FALSE(find<QSpinBox>("Outer/Value").isEnabled());
}

TEST_F(SettingsWindowEditing, WhatARuleRefusesIsShownAndNotApplied) {
    open(emptyDocument, emptyDocument);
    select("Libraries of parts");
    type("Library/Server", "two words");
    EXPECT_EQ(text("Library/Server.note"), "It must be a name without blanks.");
    EXPECT_TRUE(
        find<QLineEdit>("Library/Server").accessibleDescription().contains("without blanks"));
    type("Library/TimeoutSeconds", "77");
    press("apply");
    EXPECT_EQ(status(), "Not applied: “Server”.");
    EXPECT_EQ(planning->library->server.get(), "localhost");
    EXPECT_EQ(planning->library->timeout, 77U);
    EXPECT_EQ(find<QLineEdit>("Library/Server").text(), "two words");
    type("Library/Server", "one");
    EXPECT_FALSE(find<QLabel>("Library/Server.note").isVisible());
    press("apply");
    EXPECT_EQ(planning->library->server.get(), "one");
}

TEST_F(SettingsWindowEditing, RangesCannotBeLeft) {
    open(emptyDocument, emptyDocument);
    select("View");
    auto& steps = find<QSpinBox>("View/UndoSteps");
    type("View/UndoSteps", "5000"); // the last digit is not taken
    QTest::keyClick(&steps, Qt::Key_Return);
    EXPECT_EQ(steps.value(), 500);
    auto& spacing = find<QDoubleSpinBox>("View/GridSpacing");
    type("View/GridSpacing", "7");
    type("View/GridSpacing", "700");
    QTest::keyClick(&spacing, Qt::Key_Return);
    EXPECT_EQ(spacing.value(), 70);
}

TEST_F(SettingsWindowEditing, ResetGoesBackToTheSystemFileOrTheDefault) {
    open(Orvant::Support::document("<Library><TimeoutSeconds>60</TimeoutSeconds></Library>"),
         Orvant::Support::document("<Library><Server>mine</Server><TimeoutSeconds>90"
                                   "</TimeoutSeconds></Library>"));
    select("Libraries of parts");
    QTest::mouseClick(&find<QToolButton>("Library/TimeoutSeconds.reset"), Qt::LeftButton);
    EXPECT_EQ(find<QDoubleSpinBox>("Library/TimeoutSeconds").value(), 60);
    EXPECT_EQ(find<QLineEdit>("Library/Server").text(), "mine");
    EXPECT_EQ(planning->library->timeout, 90U) << "before it is applied";
    QTest::mouseClick(&find<QToolButton>("Library/Server.reset"), Qt::LeftButton);
    press("save");
    EXPECT_EQ(planning->library->timeout, 60U);
    EXPECT_EQ(planning->library->server.get(), "localhost");
    EXPECT_EQ(text("Library/TimeoutSeconds.origin"), "system");
    EXPECT_EQ(text("Library/Server.origin"), "default");
}

TEST_F(SettingsWindowEditing, ResetOfAllLeavesWhatIsLocked) {
    open();
    planning->plotting->plotters.find("Hall 1")->copies = 9;
    press("resetAll");
    press("save");
    EXPECT_TRUE(planning->view->showGrid);
    EXPECT_EQ(planning->view->unit, Planner::Unit::Millimetre);
    EXPECT_EQ(planning->view->undoSteps, 200);
    EXPECT_EQ(planning->library->server.get(), "parts.example");
    EXPECT_EQ(planning->library->folders.get(), std::vector<std::string>{"Standard"});
    EXPECT_EQ(planning->plotting->plotters.find("Hall 1")->copies, 1U);
    EXPECT_EQ(planning->plotting->plotters.find("Hall 1")->paper.get(), "A0");
    EXPECT_EQ(planning->plotting->plotters.find("Office")->paper.get(), "A3");
    EXPECT_EQ(planning->view->camera->fieldOfView, 60.0);
}

TEST_F(SettingsWindowEditing, WatchersAreToldWhenItIsApplied) {
    open(emptyDocument, emptyDocument);
    std::vector<int> told;
    const auto watch =
        planning->view->undoSteps.onChange([&](int steps) { told.push_back(steps); });
    select("View");
    type("View/UndoSteps", "7");
    EXPECT_TRUE(told.empty());
    press("apply");
    EXPECT_EQ(told, std::vector<int>{7});
}

TEST_F(SettingsWindowEditing, WhatAWatcherThrowsIsShown) {
    open(emptyDocument, emptyDocument);
    const auto watch = planning->view->undoSteps.onChange(
        [](int /*steps*/) { throw std::runtime_error("No memory for so many steps"); });
    select("View");
    type("View/UndoSteps", "700");
    press("apply");
    EXPECT_EQ(status(), "No memory for so many steps");
    EXPECT_EQ(planning->view->undoSteps, 700);
    EXPECT_EQ(text("View/UndoSteps.origin"), "user");
}

TEST_F(SettingsWindowEditing, ObjectsOfOtherClassesAreEditedToo) {
    const auto object = Orvant::Support::TestObject::make(
        "Old", [](auto& old) { old.add("Title", std::string("none")).add("Size", 3U); });
    open(object);
    type("Old/Title", "R&D");
    type("Old/Size", "4");
    press("save");
    EXPECT_EQ(object->value<std::string>("Title").getValue(), "R&D");
    EXPECT_EQ(object->value<unsigned int>("Size").getValue(), 4U);
    EXPECT_NE(Orvant::Support::readFile(userFile).find("R&amp;D"), std::string::npos);
}

// --- Files

TEST_F(SettingsWindowFiles, WhatOthersSaveIsShownAndWhatIsEnteredStays) {
    open();
    select("View");
    type("View/GridSpacing", "4");
    for (const int fields : {1, 2}) { // a save replaces the file: it has to be watched again
        saveElsewhere([&](Planning& theirs) {
            theirs.view->unit = fields == 1 ? Planner::Unit::Inch : Planner::Unit::Millimetre;
            theirs.view->gridSpacing = 50.0 * fields;
            theirs.plotting->plotters.add("Hall " + std::to_string(fields + 1));
        });
        EXPECT_TRUE(waitFor([&] {
            return find<QComboBox>("View/LengthUnit").currentText() ==
                   (fields == 1 ? "Inches" : "Millimetres");
        }));
        EXPECT_EQ(planning->view->gridSpacing, 50.0 * fields);
        EXPECT_EQ(find<QDoubleSpinBox>("View/GridSpacing").value(), 4);
        EXPECT_EQ(text("View/GridSpacing.origin"), "not applied");
    }
    EXPECT_TRUE(titles().contains(" Plotter: Hall 3"));
    EXPECT_EQ(status(), "What another program saved was taken over.");
}

TEST_F(SettingsWindowFiles, WhatTheAdministratorLocksMeanwhileIsLocked) {
    open(emptyDocument, emptyDocument);
    select("View");
    type("View/UndoSteps", "5");
    Orvant::Support::writeFile(systemFile,
                               Orvant::Support::document("<View><UndoSteps editable=\"false\">8"
                                                         "</UndoSteps></View>"));
    EXPECT_TRUE(waitFor([&] { return !find<QSpinBox>("View/UndoSteps").isEnabled(); }));
    EXPECT_EQ(find<QSpinBox>("View/UndoSteps").value(), 8);
    press("apply");
    EXPECT_EQ(planning->view->undoSteps, 8);
}

TEST_F(SettingsWindowFiles, AFileThatIsMadeLaterIsNoticed) {
    open(emptyDocument, emptyDocument);
    std::filesystem::remove(userFile.toPath());
    QTest::qWait(200);
    saveElsewhere([](Planning& theirs) { theirs.library->server = "new"; });
    EXPECT_TRUE(waitFor([&] { return planning->library->server.get() == "new"; }));
}

TEST_F(SettingsWindowFiles, FilesThatCannotBeUsedAreReported) {
    open(emptyDocument, emptyDocument);
    Orvant::Support::writeFile(userFile, "<Configuration");
    EXPECT_TRUE(waitFor([&] { return status() == "The files were changed, but cannot be used."; }));
}

TEST_F(SettingsWindowFiles, ARefusedSaveSaysWhy) {
    open();
    select("View");
    QTest::mouseClick(&find<QCheckBox>("View/ShowGrid"), Qt::LeftButton);
    Orvant::Support::writeFile(userFile, "<Configuration");
    press("save");
    EXPECT_FALSE(manager.getSaveReport().text.empty());
    EXPECT_EQ(status().toStdString(), manager.getSaveReport().text);
    EXPECT_EQ(Orvant::Support::readFile(userFile), "<Configuration");
}

// --- Keyboard and screen reader

TEST_F(SettingsWindowKeyboard, LabelsAreBuddiesAndWhatIsSpokenIsComplete) {
    open();
    select("View");
    std::set<QWidget*> withLabel;
    for (const auto* const label : window().findChildren<QLabel*>())
        withLabel.insert(label->buddy());
    for (const char* const path :
         {"search", "View/ShowGrid", "View/GridSpacing", "View/LengthUnit"})
        EXPECT_TRUE(withLabel.contains(&find<QWidget>(path))) << path;
    const auto* const spoken =
        QAccessible::queryAccessibleInterface(&find<QWidget>("View/UndoSteps"));
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->text(QAccessible::Name), "Undo steps");
    EXPECT_EQ(spoken->text(QAccessible::Description),
              "How many changes can be taken back. Origin: system. locked by the administrator");
}

TEST_F(SettingsWindowKeyboard, TabGoesThroughTheWindowInOrder) {
    open();
    select("Libraries of parts");
    find<QLineEdit>("search").setFocus();
    QStringList visited;
    for (int i = 0; i < 13; ++i) {
        visited << QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(visited.join(' '), "search tree items add remove up down Library/Folders.reset "
                                 "Library/TimeoutSeconds Library/TimeoutSeconds.reset problemList "
                                 "resetAll apply");
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "save");
}

TEST_F(SettingsWindowKeyboard, FindGoesToTheSearch) {
    open();
    find<QTreeWidget>("tree").setFocus();
    QTest::keyClick(&window(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(find<QLineEdit>("search").hasFocus());
}

// --- The picture in the pages

/// With SETTINGS_WINDOW_PICTURE in the environment, makes the picture in the pages anew.
TEST_F(SettingsWindowPicture, IsThatOfThePages) {
    open();
    select("View");
    type("View/GridSpacing", "2.5");
    find<QWidget>("View/GridSpacing").clearFocus();
    const QImage picture = window().grab().toImage();
    if (qEnvironmentVariableIsSet("SETTINGS_WINDOW_PICTURE")) {
        ASSERT_TRUE(picture.save(PICTURE));
    }
    const QImage inPages(PICTURE);
    EXPECT_EQ(inPages.size(), picture.size());
    std::set<QRgb> colours;
    for (int x = 0; x < picture.width(); ++x)
        for (int y = 0; y < picture.height(); ++y)
            colours.insert(picture.pixel(x, y));
    EXPECT_GT(colours.size(), 50U) << "fonts differ between machines, but there is something";
    EXPECT_LT(std::filesystem::file_size(PICTURE), 60'000U);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", "1");
    QLocale::setDefault(QLocale::c());
    QApplication::setStyle("Fusion");
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
