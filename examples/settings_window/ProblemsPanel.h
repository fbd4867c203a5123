#pragma once

#include <ConfigurationFramework/ConfigurationProblem.h>

#include <QGroupBox>

#include <vector>

class QListWidget;

namespace Ui {

/// What in the files did not take effect at the last load; hidden when there is nothing.
class ProblemsPanel : public QGroupBox {
public:
    explicit ProblemsPanel(QWidget* parent);

    void show(const std::vector<Orvant::ConfigurationProblem>& problems);

private:
    QListWidget* m_list;
};

} // namespace Ui
