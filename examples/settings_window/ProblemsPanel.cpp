#include "ProblemsPanel.h"

#include <QBoxLayout>
#include <QFileInfo>
#include <QListWidget>

namespace Ui {

namespace {

constexpr int visibleLines = 3;

QString place(const Orvant::ConfigurationProblem& problem) {
    const QString file = QString::fromStdString(problem.file.toString());
    QString text = QFileInfo(file).fileName();
    if (problem.line != 0)
        text += QString(":%1:%2").arg(problem.line).arg(problem.column);
    if (!problem.path.empty())
        text += ": " + QString::fromStdString(problem.path);
    return text;
}

} // namespace

ProblemsPanel::ProblemsPanel(QWidget* parent)
    : QGroupBox("Problems of the last load", parent), m_list(new QListWidget(this)) {
    setObjectName("problems");
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    m_list->setObjectName("problemList");
    m_list->setAccessibleName(title());
    m_list->setWordWrap(true);
    m_list->setFixedHeight((visibleLines + 1) * fontMetrics().lineSpacing());
    hide();
}

void ProblemsPanel::show(const std::vector<Orvant::ConfigurationProblem>& problems) {
    m_list->clear();
    for (const Orvant::ConfigurationProblem& problem : problems) {
        auto* const item = new QListWidgetItem(
            place(problem) + ": " + QString::fromStdString(problem.text), m_list);
        item->setToolTip(QString::fromStdString(problem.file.toString()));
    }
    setVisible(!problems.empty());
}

} // namespace Ui
