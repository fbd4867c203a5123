#pragma once

#include "SettingsModel.h"

#include <functional>

class QWidget;

namespace Ui {

/// The widget that edits a value.
struct SettingEditor {
    QWidget* widget; ///< owned by its parent
    /// Shows another value; nobody is told.
    std::function<void(const SettingValue&)> show;
};

/// Makes an editor by type and choices: a check box, a spin box with the range, a line, a combo box
/// with the labels of the choices, or a list.
/// @param edited is told what the user enters, as the value's type
SettingEditor makeEditor(const SettingRow& row, QWidget* parent,
                         const std::function<void(SettingValue)>& edited);

} // namespace Ui
