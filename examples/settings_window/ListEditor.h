#pragma once

#include <QWidget>

#include <functional>
#include <string>
#include <vector>

class QListWidget;

namespace Ui {

/// Edits a list of texts: an item is changed where it stands, and there are buttons to add, remove
/// and move items.
class ListEditor : public QWidget {
public:
    /// @param edited is told what the user made of the list
    ListEditor(QWidget* parent, std::function<void(std::vector<std::string>)> edited);

    /// Shows other items; nobody is told.
    void setItems(const std::vector<std::string>& items);

private:
    void add();
    void remove();
    void move(int offset);
    void tell();

    QListWidget* m_list;
    std::function<void(std::vector<std::string>)> m_edited;
};

} // namespace Ui
