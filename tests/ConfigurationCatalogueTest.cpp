#include <ConfigurationFramework/ConfigurationCatalogue.h>

#include "ManagerFixture.h"
#include "SettingSupport.h"

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/Settings.h>

#include <gmock/gmock.h>

#include <fstream>
#include <iostream>
#include <sstream>

using namespace Orvant;
using ::testing::HasSubstr;

namespace {

struct Machine : Settings<Machine> {
    Machine() : Settings("Machine", "A machine") {}
    Setting<double> maxFeed{this, "MaxFeed", "Feed, mm/min", 5000.0, Range{1, 20000}};
};

struct Camera : Settings<Camera> {
    Camera() : Settings("Camera", "The camera") {}
    Setting<double> angle{this, "FieldOfView", "Angle, degrees",
                          60.1, Range{1, 170}, Label{"Field of view"}};
    Setting<Support::Unit> unit{this, "Unit", "Unit of length", Support::Unit::Inch};
};

struct View : Settings<View> {
    View() : Settings("View3D", "The view, \"3D\"\nand more") {}
    Setting<unsigned> big{this, "Big", "Big\tnumber", 4000000000U, hidden};
    Setting<std::vector<std::string>> recent{this, "Recent", "Recent files", {"a<b", " c "}};
    Setting<std::string> text{this, "Text", "Text", "two\nlines",
                              Check{[](const std::string& t) { return !t.empty(); }, "not empty"}};
    Child<Camera> camera{this};
    KeyedChildren<Machine> machines{this};
};

std::string textOf(const ConfigurationCatalogue& catalogue) {
    std::ostringstream stream;
    catalogue.write(stream);
    return stream.str();
}

class ConfigurationCatalogueTest : public ::testing::Test {};

} // namespace

TEST_F(ConfigurationCatalogueTest, Smoke) {
    ConfigurationCatalogue catalogue("planner", {"1.0", "2.0"}, "2.0");
    catalogue.add(View(), "View3D");
    catalogue.add(Machine(), "Machine", true);
    catalogue.addFormerPath("View3D/FOV", "View3D/Camera/FieldOfView");
    const std::string text = textOf(catalogue);
    std::cout << text;
    std::ofstream("catalogue.xml") << text;
    EXPECT_EQ(textOf(ConfigurationCatalogue::read("catalogue.xml")), text);
}
