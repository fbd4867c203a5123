#include "SettingRowView.h"

#include "Padlock.h"

#include <QGridLayout>
#include <QLabel>
#include <QToolButton>

#include <utility>

namespace Ui {

namespace {

enum Column { LabelColumn, EditorColumn, OriginColumn, ResetColumn };

constexpr const char* notApplied = "not applied";

QString originText(const SettingRow& row) {
    if (row.isEdited())
        return notApplied;
    switch (row.layer()) {
    case Orvant::ConfigurationOrigin::Default:
        return "default";
    case Orvant::ConfigurationOrigin::System:
        return "system";
    case Orvant::ConfigurationOrigin::User:
        return "user";
    }
    return "";
}

/// A text as a label has to be given it, which takes '&' for a mark.
QString literal(const std::string& text) {
    return QString::fromStdString(text).replace("&", "&&");
}

} // namespace

SettingRowView::SettingRowView(std::shared_ptr<SettingRow> row, QGridLayout& grid,
                               std::function<void(const std::shared_ptr<SettingRow>&)> reset)
    : m_row(std::move(row)), m_shown(m_row->shown()) {
    QWidget* const parent = grid.parentWidget();
    const QString path = QString::fromStdString(m_row->path());
    const QString description = QString::fromStdString(m_row->description());

    m_editor = makeEditor(*m_row, parent, [this](SettingValue value) {
        m_row->enter(value);
        m_shown = std::move(value);
        refresh();
    });
    m_editor.show(m_shown);
    m_editor.widget->setObjectName(path);
    m_editor.widget->setToolTip(description);
    m_editor.widget->setAccessibleName(QString::fromStdString(m_row->constraint().label));

    auto* const label = new QLabel(literal(m_row->constraint().label), parent);
    label->setBuddy(m_editor.widget);
    label->setToolTip(description);

    m_origin = new QLabel(parent);
    m_origin->setObjectName(path + ".origin");
    m_origin->setMinimumWidth(m_origin->fontMetrics().horizontalAdvance(notApplied));
    m_reset = new QToolButton(parent);
    m_reset->setObjectName(path + ".reset");
    m_reset->setText("Reset");
    m_reset->setFocusPolicy(Qt::StrongFocus);
    m_reset->setAccessibleName("Reset " + m_editor.widget->accessibleName());
    QObject::connect(m_reset, &QToolButton::clicked, m_reset,
                     [this, reset = std::move(reset)] { reset(m_row); });

    auto* const notes = new QHBoxLayout;
    m_padlock = new QLabel(parent);
    m_padlock->setPixmap(padlock());
    m_note = new QLabel(parent);
    m_note->setObjectName(path + ".note");
    m_note->setTextFormat(Qt::PlainText);
    m_note->setWordWrap(true);
    notes->setSpacing(4);
    notes->addWidget(m_padlock);
    notes->addWidget(m_note, 1);

    const QSizePolicy size = m_editor.widget->sizePolicy();
    const bool isWide = (size.expandingDirections() & Qt::Horizontal) != 0;
    const bool isTall = size.verticalPolicy() != QSizePolicy::Fixed;
    const Qt::Alignment beside = isTall ? Qt::AlignTop : Qt::AlignVCenter;
    const int line = grid.rowCount();
    grid.addWidget(label, line, LabelColumn, beside);
    grid.addWidget(m_editor.widget, line, EditorColumn, isWide ? Qt::Alignment() : Qt::AlignLeft);
    grid.addWidget(m_origin, line, OriginColumn, beside);
    grid.addWidget(m_reset, line, ResetColumn, beside);
    grid.addLayout(notes, line + 1, EditorColumn, 1, -1);
    refresh();
}

QList<QWidget*> SettingRowView::tabStops() const {
    QList<QWidget*> stops =
        m_editor.widget->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    stops.removeIf([](const QWidget* child) { return child->focusPolicy() == Qt::NoFocus; });
    if (m_editor.widget->focusProxy() == nullptr)
        stops = {m_editor.widget};
    return stops << m_reset;
}

void SettingRowView::refresh() {
    if (m_shown != m_row->shown()) {
        m_shown = m_row->shown();
        m_editor.show(m_shown);
    }
    const bool isLocked = m_row->isLocked();
    m_editor.widget->setEnabled(!isLocked);
    m_reset->setEnabled(!isLocked);
    m_origin->setText(originText(*m_row));

    const QString text = note();
    m_note->setText(text);
    m_note->setVisible(!text.isEmpty());
    m_note->setStyleSheet(isLocked ? "color: gray" : "color: #b00020");
    m_padlock->setVisible(isLocked);
    QString spoken = m_editor.widget->toolTip() + ". Origin: " + m_origin->text();
    if (!text.isEmpty())
        spoken += ". " + text;
    m_editor.widget->setAccessibleDescription(spoken);
}

QString SettingRowView::note() const {
    return m_row->isLocked() ? lockedText : QString::fromStdString(m_row->refusal());
}

} // namespace Ui
