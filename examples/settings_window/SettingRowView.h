#pragma once

#include "SettingEditor.h"

#include <QList>

#include <functional>
#include <memory>

class QGridLayout;
class QLabel;
class QToolButton;

namespace Ui {

/// A row of the form: label, editor, where the value comes from, and a button to reset it; below
/// them what is to be said about it.
class SettingRowView {
public:
    /// @param row   what is shown
    /// @param grid  gets the widgets, at its end
    /// @param reset is called for the row when its button is pressed
    SettingRowView(std::shared_ptr<SettingRow> row, QGridLayout& grid,
                   std::function<void(const std::shared_ptr<SettingRow>&)> reset);
    SettingRowView(const SettingRowView&) = delete;
    SettingRowView& operator=(const SettingRowView&) = delete;
    ~SettingRowView() = default;

    const std::shared_ptr<SettingRow>& row() const { return m_row; }
    /// @return what the keyboard goes through, in order
    QList<QWidget*> tabStops() const;
    /// Shows what the row is by now. An editor that shows it already is left alone: the user may be
    /// in the midst of a word.
    void refresh();

private:
    QString note() const;

    std::shared_ptr<SettingRow> m_row;
    SettingValue m_shown;
    SettingEditor m_editor;
    QLabel* m_origin;
    QToolButton* m_reset;
    QLabel* m_padlock;
    QLabel* m_note;
};

} // namespace Ui
