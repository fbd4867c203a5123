#pragma once

#include <ConfigurationFramework/Settings.h>

#include <array>
#include <string>
#include <vector>

// The settings of an application that plans work on machines.

namespace Workshop {

enum class Unit { Millimetre, Inch };

} // namespace Workshop

template <>
struct Orvant::EnumTexts<Workshop::Unit> {
    static constexpr std::array texts = {
        Orvant::EnumText{Workshop::Unit::Millimetre, "mm", "Millimetres"},
        Orvant::EnumText{Workshop::Unit::Inch, "inch", "Inches"}};
};

namespace Workshop {

using Orvant::Label;
using Orvant::Range;
using Orvant::Setting;

struct Camera : Orvant::Settings<Camera> {
    Camera() : Settings("Camera", "Camera") {}
    Setting<double> fieldOfView{this, "FieldOfView",     "Field of view in degrees",
                                45.0, Range{1.0, 170.0}, Label{"Field of view"}};
    Setting<bool> perspective{this, "Perspective", "Whether distant things look smaller", true};
};

struct View3D : Orvant::Settings<View3D> {
    View3D() : Settings("View3D", "The 3D view") {}
    Setting<Unit> unit{this, "LengthUnit", "What lengths are shown in", Unit::Millimetre,
                       Label{"Unit of lengths"}};
    Setting<std::vector<std::string>> toolbars{
        this, "Toolbars", "Toolbars above the drawing", {"File", "Edit"}};
    Setting<int> starts{this, "Starts", "Number of starts so far", 0, Orvant::hidden};
    Orvant::Child<Camera> camera{this};
};

struct Network : Orvant::Settings<Network> {
    Network() : Settings("Network", "Servers") {}
    Setting<std::string> licenceServer{this, "LicenceServer", "Host that licences come from",
                                       "localhost", Label{"Licence server"}};
    Setting<int> timeout{this, "Timeout", "Seconds to wait for an answer", 30, Range{1, 600}};
};

/// One for each machine.
struct Machine : Orvant::Settings<Machine> {
    Machine() : Settings("Machine", "A machine") {}
    Setting<int> maxFeed{this, "MaxFeed",       "Largest feed in mm/min",
                         5000, Range{1, 20000}, Label{"Largest feed"}};
    Setting<std::string> spindle{this, "Spindle", "Name of its spindle", "Standard"};
};

} // namespace Workshop
