#pragma once

#include "SettingRowView.h"

#include <QScrollArea>

#include <functional>
#include <memory>
#include <vector>

namespace Ui {

/// The editors of one object.
class SettingsForm : public QScrollArea {
public:
    /// @param reset is called for a row whose button to reset it is pressed
    SettingsForm(QWidget* parent, std::function<void(const std::shared_ptr<SettingRow>&)> reset);

    /// Shows the rows of a group that a search finds; the same ones are only refreshed.
    /// @param group null: nothing is shown
    void show(const SettingsGroup* group, const QString& search);
    /// @return what the keyboard goes through, in order
    QList<QWidget*> tabStops() const;

private:
    void rebuild(const SettingsGroup* group, const SettingRows& rows);

    std::function<void(const std::shared_ptr<SettingRow>&)> m_reset;
    std::vector<std::unique_ptr<SettingRowView>> m_views;
    std::string m_path; ///< of the group
};

} // namespace Ui
