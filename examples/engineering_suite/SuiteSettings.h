#pragma once

#include <ConfigurationFramework/ConfigurationObject.h>

#include <string>

// The settings of an engineering suite, as its applications declare them.

namespace Suite {

using Orvant::ConfigurationObject;

/// The 3D view, with a child that has its own element and one that is stored inline.
class ViewSettings : public ConfigurationObject {
public:
    ViewSettings();
    ConfigurationObject* createConfigurationObject() const override { return new ViewSettings; }
};

/// The drawing editor.
class EditorSettings : public ConfigurationObject {
public:
    EditorSettings();
    ConfigurationObject* createConfigurationObject() const override { return new EditorSettings; }
};

/// One of the plotters of the site, told apart by their keys.
class PlotterSettings : public ConfigurationObject {
public:
    PlotterSettings();
    ConfigurationObject* createConfigurationObject() const override { return new PlotterSettings; }
};

/// What the machines of the site can do: for the administrator to decide.
class MachineLimits : public ConfigurationObject {
public:
    MachineLimits();
    ConfigurationObject* createConfigurationObject() const override { return new MachineLimits; }
};

/// Where licences and drawings come from.
class NetworkSettings : public ConfigurationObject {
public:
    NetworkSettings();
    ConfigurationObject* createConfigurationObject() const override { return new NetworkSettings; }
};

} // namespace Suite
