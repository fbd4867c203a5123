#include "SettingsTree.h"

#include "Padlock.h"
#include "SettingsSearch.h"

#include <QSignalBlocker>

#include <utility>

namespace Ui {

namespace {

constexpr int pathRole = Qt::UserRole;

/// Adds items for the groups that are found, and keeps which one is to be selected: that of the
/// path or the first.
class ItemMaker {
public:
    ItemMaker(const QString& search, std::string path)
        : m_search(search), m_path(std::move(path)) {}

    /// @return whether something was found
    bool add(const std::vector<SettingsGroup>& groups, QTreeWidgetItem& parent) {
        bool isFound = false;
        for (const SettingsGroup& group : groups)
            isFound = add(group, parent) || isFound;
        return isFound;
    }
    QTreeWidgetItem* selected() const { return m_isSame ? m_same : m_first; }

private:
    bool add(const SettingsGroup& group, QTreeWidgetItem& parent) {
        auto* const item = new QTreeWidgetItem(&parent);
        const bool isMatch = matches(group, m_search);
        if (isMatch && m_first == nullptr)
            m_first = item;
        if (!add(group.children, *item) && !isMatch) {
            delete item;
            return false;
        }
        item->setText(0, QString::fromStdString(group.title));
        item->setData(0, pathRole, QString::fromStdString(group.path));
        if (group.isLocked) {
            item->setIcon(0, QIcon(padlock()));
            item->setData(0, Qt::AccessibleDescriptionRole, lockedText);
            item->setToolTip(0, lockedText);
        }
        if (group.path == m_path) {
            m_same = item;
            m_isSame = isMatch || m_search.isEmpty();
        }
        return true;
    }

    QString m_search;
    std::string m_path;
    QTreeWidgetItem* m_first = nullptr;
    QTreeWidgetItem* m_same = nullptr;
    bool m_isSame = false;
};

} // namespace

SettingsTree::SettingsTree(QWidget* parent, const std::function<void()>& selected)
    : QTreeWidget(parent) {
    setObjectName("tree");
    setAccessibleName("Objects");
    setHeaderHidden(true);
    connect(this, &QTreeWidget::currentItemChanged, this, selected);
}

void SettingsTree::show(const std::vector<SettingsGroup>& groups, const QString& search) {
    const QSignalBlocker blocker(this);
    ItemMaker maker(search, current());
    clear();
    maker.add(groups, *invisibleRootItem());
    expandAll();
    setCurrentItem(maker.selected());
}

std::string SettingsTree::current() const {
    const QTreeWidgetItem* const item = currentItem();
    return item == nullptr ? "" : item->data(0, pathRole).toString().toStdString();
}

const SettingsGroup* SettingsTree::find(const std::vector<SettingsGroup>& groups,
                                        const std::string& path) {
    for (const SettingsGroup& group : groups) {
        if (group.path == path)
            return &group;
        if (const SettingsGroup* const found = find(group.children, path))
            return found;
    }
    return nullptr;
}

} // namespace Ui
