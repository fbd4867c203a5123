#pragma once

#include "SettingsModel.h"

#include <QTreeWidget>

#include <functional>
#include <string>
#include <vector>

namespace Ui {

/// The objects and their children.
class SettingsTree : public QTreeWidget {
public:
    /// @param selected is called when another object is selected
    SettingsTree(QWidget* parent, const std::function<void()>& selected);

    /// Shows the groups that a search finds something in, and those around them. The selection
    /// stays or goes to the first of these.
    void show(const std::vector<SettingsGroup>& groups, const QString& search);
    /// @return path of the selected group; empty: nothing is found
    std::string current() const;
    /// @return the group of a path in the tree; null when there is none
    static const SettingsGroup* find(const std::vector<SettingsGroup>& groups,
                                     const std::string& path);
};

} // namespace Ui
