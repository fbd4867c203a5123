#include <ConfigurationFramework/SettingVisitor.h>

#include <ConfigurationFramework/ConfigurationValueBase.h>
#include <ConfigurationFramework/Settings.h>

#include <SettingSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvant {
namespace {

using namespace Support;
using Strings = std::vector<std::string>;
using testing::ElementsAre;

struct Margin : Settings<Margin> {
    Margin() : Settings("") {}
    Setting<int> left{this, "Left", "", 1};
    Setting<int> right{this, "Right", "", 1};
};

struct Plotter : Settings<Plotter> {
    Plotter() : Settings("Plotter") {}
    Setting<int> pens{this, "Pens", "", 1};
};

struct Camera : Settings<Camera> {
    Camera() : Settings("Camera") {}
    Setting<double> angle{this, "Angle", "", 45.0};
    KeyedChildren<Plotter> plotters{this};
};

struct View : Settings<View> {
    View() : Settings("View") {}
    Child<Margin> margin{this};
    Setting<int> zoom{this, "Zoom", "", 1};
    Child<Camera> camera{this};
    Setting<int> grid{this, "Grid", "", 1, hidden};
};

/// Writes down what it visits.
class Recorder : public SettingVisitor {
public:
    void visitValue(ConfigurationValueBase& value) override { calls.push_back(value.getName()); }
    bool enterObject(ConfigurationObject& child, const std::optional<std::string>& key) override {
        calls.push_back("<" + child.getName() + (key ? ' ' + *key : "") + ">");
        return !refused.contains(child.getName() + key.value_or(""));
    }
    void leaveObject(ConfigurationObject& child) override {
        calls.push_back("</" + child.getName() + ">");
    }
    bool enterKind(ConfigurationObject& prototype) override {
        calls.push_back("<kind " + prototype.getName() + ">");
        return !refused.contains("kind");
    }
    void leaveKind(ConfigurationObject& prototype) override {
        calls.push_back("</kind " + prototype.getName() + ">");
    }

    Strings calls;
    std::set<std::string> refused;
};

TEST(SettingVisitor, VisitsValuesBeforeChildrenInOrder) {
    View view;
    view.camera->plotters.add("b");
    view.camera->plotters.add("a");
    Recorder recorder;
    visitSettings(view, recorder);
    EXPECT_THAT(recorder.calls,
                ElementsAre("Zoom", "Grid", "Left", "Right", "<Camera>", "Angle", "<kind Plotter>",
                            "Pens", "</kind Plotter>", "<Plotter a>", "Pens", "</Plotter>",
                            "<Plotter b>", "Pens", "</Plotter>", "</Camera>"));
}

TEST(SettingVisitor, LeavesOutWhatItDoesNotEnter) {
    View view;
    view.camera->plotters.add("a");
    view.camera->plotters.add("b");
    Recorder recorder;
    recorder.refused = {"kind", "Plottera"};
    visitSettings(view, recorder);
    EXPECT_THAT(recorder.calls,
                ElementsAre("Zoom", "Grid", "Left", "Right", "<Camera>", "Angle", "<kind Plotter>",
                            "<Plotter a>", "<Plotter b>", "Pens", "</Plotter>", "</Camera>"));
    recorder.calls.clear();
    recorder.refused = {"Camera"};
    visitSettings(view, recorder);
    EXPECT_THAT(recorder.calls, ElementsAre("Zoom", "Grid", "Left", "Right", "<Camera>"));
}

/// Only what it has to override.
class ValueRecorder : public SettingVisitor {
public:
    void visitValue(ConfigurationValueBase& value) override { calls.push_back(&value); }
    std::vector<ConfigurationValueBase*> calls;
};

TEST(SettingVisitor, EntersObjectsAndNoKindsByDefault) {
    View view;
    Plotter& plotter = view.camera->plotters.add("a");
    ValueRecorder recorder;
    visitSettings(view, recorder);
    EXPECT_THAT(recorder.calls, ElementsAre(&view.zoom.item(), &view.grid.item(),
                                            &view.margin->left.item(), &view.margin->right.item(),
                                            &view.camera->angle.item(), &plotter.pens.item()));
}

TEST(SettingVisitor, VisitsObjectsThatAreWrittenByHand) {
    TestObject room("Room");
    room.add("Size", 1).addChild(new View).addChild(&(new TestObject("Door"))->add("Open", true));
    Recorder recorder;
    recorder.refused = {"View"};
    visitSettings(room, recorder);
    EXPECT_THAT(recorder.calls, ElementsAre("Size", "<View>", "<Door>", "Open", "</Door>"));
}

TEST(SettingVisitor, PassesExceptionsOn) {
    class Thrower : public SettingVisitor {
        void visitValue(ConfigurationValueBase& value) override {
            throw std::runtime_error(value.getName());
        }
    } thrower;
    View view;
    EXPECT_EQ("Zoom", messageOf<std::runtime_error>([&] { visitSettings(view, thrower); }));
}

struct Limited : Settings<Limited> {
    Limited() : Settings("Limited") {}
    Setting<int> plain{this, "Plain", "A plain one", 1};
    Setting<int> labelled{this, "Labelled", "", 1, Label{"One with a label"}};
    Setting<int> copies{this, "Copies", "", 5, Range{-1, 10}};
    Setting<unsigned int> sheets{this, "Sheets", "", 5U, Range{0U, 4294967295U}};
    Setting<double> angle{this, "Angle", "", 0.1, Range{0.1, 1234567.875}};
    Setting<float> gray{this, "Gray", "", 0.1F, Range{0.1, 0.7}};
    Setting<std::string> paper{this, "Paper", "Paper", "A4", OneOf{"A4", "A3"}};
    Setting<Strings> sides{this, "Sides", "", {}, OneOf{"left", "right"}};
    Setting<double> scale{this, "Scale", "", 0.5, OneOf{0.5, 1.25}};
    Setting<bool> on{this, "On", "", true, OneOf{true}};
    Setting<int> even{
        this,       "Even", "", 2, Check{[](int n) { return n % 2 == 0; }, "an even number"},
        Range{0, 8}};
    Setting<int> odd{this, "Odd", "", 1, [](int n) { return n % 2 != 0; }};
    Setting<Unit> unit{this, "Unit", "", Unit::Millimetre, Label{"Unit of lengths"}};
    Setting<Unit> swapped{this, "Swapped", "", Unit::Inch, OneOf{Unit::Inch, Unit::Millimetre}};
};

/// Everything that dialogues can ask for.
class Catalogue : public SettingVisitor {
public:
    void visitValue(ConfigurationValueBase& value) override {
        const ConfigurationConstraint constraint = value.getConstraint();
        std::string line = value.getName() + " '" + constraint.label + "'";
        line += ' ' + constraint.minimum.value_or("") + ".." + constraint.maximum.value_or("");
        for (const ConfigurationChoice& choice : constraint.choices)
            line += ' ' + choice.text + '=' + choice.label;
        line += " if " + constraint.condition + ": " + constraint.describe();
        EXPECT_EQ(constraint.isLimited(), !constraint.describe().empty());
        lines.push_back(line);
    }
    Strings lines;
};

TEST(SettingVisitor, FindsLabelsAndRulesWhateverTheType) {
    Limited limited;
    Catalogue catalogue;
    visitSettings(limited, catalogue);
    EXPECT_THAT(
        catalogue.lines,
        ElementsAre(
            "Plain 'A plain one' .. if : ", "Labelled 'One with a label' .. if : ",
            "Copies '' -1..10 if : from -1 to 10",
            "Sheets '' 0..4294967295 if : from 0 to 4294967295",
            "Angle '' 0.1..1234567.875 if : from 0.1 to 1234567.875",
            "Gray '' 0.1..0.7 if : from 0.1 to 0.7",
            "Paper 'Paper' .. A4=A4 A3=A3 if : one of \"A4\", \"A3\"",
            "Sides '' .. left=left right=right if : one of \"left\", \"right\"",
            "Scale '' .. 0.5=0.5 1.25=1.25 if : one of \"0.5\", \"1.25\"",
            "On '' .. true=true if : one of \"true\"",
            "Even '' 0..8 if an even number: from 0 to 8 and an even number",
            "Odd '' .. if what its condition allows: what its condition allows",
            "Unit 'Unit of lengths' .. mm=Millimetres inch=inch if : one of \"mm\", \"inch\"",
            "Swapped '' .. inch=inch mm=Millimetres if : one of \"inch\", \"mm\""));
}

TEST(SettingVisitor, FindsTheRulesOfAClone) {
    const Limited limited;
    const std::unique_ptr<ConfigurationObject> clone(limited.clone());
    Catalogue catalogue;
    visitSettings(*clone, catalogue);
    EXPECT_EQ("Copies '' -1..10 if : from -1 to 10", catalogue.lines.at(2));
}

} // namespace
} // namespace Orvant
