#pragma once

#include <ConfigurationFramework/Settings.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

// The settings of an application that plans factories.

namespace Planner {

enum class Unit { Millimetre, Metre, Inch };

} // namespace Planner

template <>
struct Orvant::EnumTexts<Planner::Unit> {
    static constexpr std::array texts = {
        Orvant::EnumText{Planner::Unit::Millimetre, "mm", "Millimetres"},
        Orvant::EnumText{Planner::Unit::Metre, "m", "Metres"},
        Orvant::EnumText{Planner::Unit::Inch, "inch", "Inches"}};
};

namespace Planner {

using Orvant::Label;
using Orvant::Range;
using Orvant::Setting;

struct Camera : Orvant::Settings<Camera> {
    Camera() : Settings("Camera", "Camera") {}
    Setting<double> fieldOfView{this, "FieldOfView",     "Field of view in degrees",
                                45.0, Range{1.0, 170.0}, Label{"Field of view"}};
    Setting<bool> perspective{this, "Perspective", "Whether distant things look smaller", true,
                              Label{"Perspective"}};
};

struct View : Orvant::Settings<View> {
    View() : Settings("View", "View") {}
    Setting<bool> showGrid{this, "ShowGrid", "Whether the grid is drawn", true, Label{"Show grid"}};
    Setting<double> gridSpacing{this, "GridSpacing",     "Distance of the grid's lines",
                                0.5,  Range{0.1, 100.0}, Label{"Grid spacing"}};
    Setting<Unit> unit{this, "LengthUnit", "What lengths are shown in", Unit::Millimetre,
                       Label{"Unit of lengths"}};
    Setting<int> undoSteps{this, "UndoSteps",    "How many changes can be taken back",
                           50,   Range{0, 1000}, Label{"Undo steps"}};
    Setting<std::vector<std::string>> toolbars{
        this, "Toolbars", "Toolbars above the drawing", {"File", "Edit"}, Label{"Toolbars"}};
    Setting<int> starts{this, "Starts", "Number of starts so far", 0, Orvant::hidden};
    Orvant::Child<Camera> camera{this};
};

struct Library : Orvant::Settings<Library> {
    Library() : Settings("Library", "Libraries of parts") {}
    Setting<std::string> server{
        this,
        "Server",
        "Host that the parts come from",
        "localhost",
        Label{"Server"},
        Orvant::Check{[](const std::string& name) { return name.find(' ') == std::string::npos; },
                      "a name without blanks"}};
    Setting<std::vector<std::string>> folders{this,
                                              "Folders",
                                              "Where parts are looked for, in this order",
                                              {"Standard"},
                                              Label{"Folders"}};
    Setting<unsigned int> timeout{this, "TimeoutSeconds", "How long an answer may take",
                                  30,   Range{1, 600},    Label{"Timeout in seconds"}};
};

struct Plotter : Orvant::Settings<Plotter> {
    Plotter() : Settings("Plotter", "Plotter") {}
    Setting<std::string> paper{this,
                               "Paper",
                               "Size of the sheets",
                               "A3",
                               Orvant::OneOf{"A0", "A1", "A2", "A3", "A4"},
                               Label{"Paper"}};
    Setting<unsigned int> copies{this, "Copies",     "Copies of each sheet",
                                 1,    Range{1, 99}, Label{"Copies"}};
};

struct Plotting : Orvant::Settings<Plotting> {
    Plotting() : Settings("Plotting", "Plotting") {}
    Setting<bool> colour{this, "Colour", "Whether sheets are plotted in colour", true,
                         Label{"Colour"}};
    Orvant::KeyedChildren<Plotter> plotters{this};
};

} // namespace Planner
