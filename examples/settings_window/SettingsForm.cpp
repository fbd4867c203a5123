#include "SettingsForm.h"

#include "SettingsSearch.h"

#include <QGridLayout>
#include <QLabel>

#include <algorithm>
#include <utility>

namespace Ui {

SettingsForm::SettingsForm(QWidget* parent,
                           std::function<void(const std::shared_ptr<SettingRow>&)> reset)
    : QScrollArea(parent), m_reset(std::move(reset)) {
    setObjectName("form");
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
}

void SettingsForm::show(const SettingsGroup* group, const QString& search) {
    SettingRows rows;
    if (group != nullptr)
        std::ranges::copy_if(group->rows, std::back_inserter(rows),
                             [&](const auto& row) { return matches(*row, search); });
    const std::string path = group == nullptr ? "" : group->path;
    const bool isSame =
        widget() != nullptr && path == m_path &&
        std::ranges::equal(m_views, rows, {}, [](const auto& view) { return view->row(); });
    m_path = path;
    if (!isSame)
        return rebuild(group, rows);
    for (const auto& view : m_views)
        view->refresh();
}

QList<QWidget*> SettingsForm::tabStops() const {
    QList<QWidget*> stops;
    for (const auto& view : m_views)
        stops << view->tabStops();
    return stops;
}

void SettingsForm::rebuild(const SettingsGroup* group, const SettingRows& rows) {
    setWidget(new QWidget); // before the views: the former widgets call them
    m_views.clear();
    auto* const grid = new QGridLayout(widget());
    grid->setColumnStretch(1, 1);
    grid->setHorizontalSpacing(12);
    auto* const heading = new QLabel(widget());
    heading->setObjectName("heading");
    heading->setTextFormat(Qt::PlainText);
    heading->setText(group == nullptr ? "Nothing found" : QString::fromStdString(group->title));
    QFont font = heading->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    heading->setFont(font);
    grid->addWidget(heading, 0, 0, 1, -1);
    for (const auto& row : rows)
        m_views.push_back(std::make_unique<SettingRowView>(row, *grid, m_reset));
    grid->setRowStretch(grid->rowCount(), 1);
    widget()->show();
}

} // namespace Ui
