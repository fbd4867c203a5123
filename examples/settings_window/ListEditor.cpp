#include "ListEditor.h"

#include <QBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>

#include <cstddef>
#include <utility>

namespace Ui {

namespace {

QListWidgetItem* makeItem(const QString& text) {
    auto* const item = new QListWidgetItem(text);
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    return item;
}

} // namespace

ListEditor::ListEditor(QWidget* parent, std::function<void(std::vector<std::string>)> edited)
    : QWidget(parent), m_list(new QListWidget(this)), m_edited(std::move(edited)) {
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list, 1);
    auto* const buttons = new QVBoxLayout;
    layout->addLayout(buttons);
    const auto addButton = [&](const QString& text, const char* name, auto action) {
        auto* const button = new QPushButton(text, this);
        button->setObjectName(name);
        connect(button, &QPushButton::clicked, this, action);
        buttons->addWidget(button);
    };
    addButton("Add", "add", [this] { add(); });
    addButton("Remove", "remove", [this] { remove(); });
    addButton("Up", "up", [this] { move(-1); });
    addButton("Down", "down", [this] { move(1); });
    buttons->addStretch();

    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    m_list->setObjectName("items");
    m_list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored); // as high as the buttons
    connect(m_list, &QListWidget::itemChanged, this, [this] { tell(); });
    setFocusProxy(m_list);
}

void ListEditor::setItems(const std::vector<std::string>& items) {
    const QSignalBlocker blocker(m_list);
    const int current = m_list->currentRow();
    m_list->clear();
    for (const std::string& item : items)
        m_list->addItem(makeItem(QString::fromStdString(item)));
    m_list->setCurrentRow(current);
}

void ListEditor::add() {
    auto* const item = makeItem("");
    m_list->addItem(item);
    m_list->setCurrentItem(item);
    m_list->editItem(item); // an empty one is told when its text is there
}

void ListEditor::remove() {
    delete m_list->takeItem(m_list->currentRow());
    tell();
}

void ListEditor::move(int offset) {
    const int from = m_list->currentRow();
    const int to = from + offset;
    if (from < 0 || to < 0 || to >= m_list->count())
        return;
    m_list->insertItem(to, m_list->takeItem(from));
    m_list->setCurrentRow(to);
    tell();
}

void ListEditor::tell() {
    std::vector<std::string> items;
    items.reserve(static_cast<std::size_t>(m_list->count()));
    for (int i = 0; i < m_list->count(); ++i)
        items.push_back(m_list->item(i)->text().toStdString());
    m_edited(std::move(items));
}

} // namespace Ui
