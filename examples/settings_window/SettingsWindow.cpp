#include "SettingsWindow.h"

#include "ProblemsPanel.h"
#include "SettingsForm.h"
#include "SettingsTree.h"

#include <QAccessible>
#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>

#include <exception>
#include <utility>

namespace Ui {

namespace {

constexpr int treeWidth = 220;
constexpr int formWidth = 600;

QString refusedText(const SettingRows& refused) {
    QString text = "Not applied: ";
    for (const auto& row : refused)
        text += (row == refused.front() ? "“" : ", “") +
                QString::fromStdString(row->constraint().label) + "”";
    return text + ".";
}

} // namespace

SettingsWindow::SettingsWindow(Orvant::ConfigurationManager& manager,
                               const std::vector<Orvant::FileName>& files, std::string version)
    : m_manager(manager),
      m_version(std::move(version)),
      m_model(manager),
      m_watch(files, [this] { attempt([this] { takeOver(); }); }) {
    setWindowTitle("Settings");
    makeWidgets();
    refresh();
    m_search->setFocus();
}

void SettingsWindow::makeWidgets() {
    auto* const layout = new QVBoxLayout(this);
    auto* const searchLine = new QHBoxLayout;
    layout->addLayout(searchLine);
    m_search = new QLineEdit(this);
    m_search->setObjectName("search");
    m_search->setClearButtonEnabled(true);
    m_search->setPlaceholderText("Label, name or path of a setting");
    auto* const label = new QLabel("S&earch:", this);
    label->setBuddy(m_search);
    searchLine->addWidget(label);
    searchLine->addWidget(m_search);
    connect(m_search, &QLineEdit::textChanged, this, [this] { showGroups(); });
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, m_search,
            [this] { m_search->setFocus(Qt::ShortcutFocusReason); });

    auto* const splitter = new QSplitter(this);
    layout->addWidget(splitter, 1);
    m_tree = new SettingsTree(splitter, [this] { showSelected(); });
    m_form =
        new SettingsForm(splitter, [this](const auto& row) { attempt([&] { reset({row}); }); });
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({treeWidth, formWidth});

    m_problems = new ProblemsPanel(this);
    layout->addWidget(m_problems);

    auto* const buttons = new QHBoxLayout;
    layout->addLayout(buttons);
    m_status = new QLabel(this);
    m_status->setObjectName("status");
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    buttons->addWidget(m_status, 1);
    m_firstButton = makeButton("&Reset all", "resetAll", [this] { reset(m_model.rows()); });
    buttons->addWidget(m_firstButton);
    buttons->addWidget(makeButton("&Apply", "apply", [this] { apply(); }));
    buttons->addWidget(makeButton("&Save", "save", [this] { save(); }));
    connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, this,
            [this] { attempt([this] { save(); }); });
}

QPushButton* SettingsWindow::makeButton(const QString& text, const char* name,
                                        std::function<void()> action) {
    auto* const button = new QPushButton(text, this);
    button->setObjectName(name);
    connect(button, &QPushButton::clicked, this,
            [this, action = std::move(action)] { attempt(action); });
    return button;
}

void SettingsWindow::refresh() {
    m_model.update();
    m_problems->show(m_manager.getLoadProblems());
    showGroups();
}

void SettingsWindow::showGroups() {
    m_tree->show(m_model.groups(), m_search->text());
    showSelected();
}

void SettingsWindow::showSelected() {
    m_form->show(SettingsTree::find(m_model.groups(), m_tree->current()), m_search->text());
    setTabOrders();
}

/// Editors are made after the buttons, and would come after them.
void SettingsWindow::setTabOrders() {
    QWidget* last = m_tree;
    for (QWidget* const stop : m_form->tabStops()) {
        setTabOrder(last, stop);
        last = stop;
    }
}

void SettingsWindow::reset(const SettingRows& rows) {
    m_model.reset(rows);
    showSelected();
    say("Apply or save what was reset.");
}

void SettingsWindow::apply() {
    const SettingRows refused = m_model.apply();
    refresh();
    say(refused.empty() ? "Applied." : refusedText(refused));
}

void SettingsWindow::save() {
    const SettingRows refused = m_model.apply();
    const bool isSaved = m_manager.saveConfiguration(m_version);
    const QString report = QString::fromStdString(m_manager.getSaveReport().text);
    refresh();
    QString text = isSaved && report.isEmpty() ? "Saved." : report;
    if (!refused.empty())
        text += " " + refusedText(refused);
    say(text);
}

void SettingsWindow::takeOver() {
    if (!m_manager.haveFilesChanged())
        return;
    const bool isTakenOver = m_manager.reloadConfiguration();
    refresh();
    say(isTakenOver ? "What another program saved was taken over."
                    : "The files were changed, but cannot be used.");
}

/// An exception, of a watcher of a setting for example, is shown instead of ending the program.
void SettingsWindow::attempt(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        showGroups(); // what was done before
        say(QString::fromUtf8(error.what()));
    }
}

void SettingsWindow::say(const QString& text) {
    m_status->setText(text);
    QAccessibleEvent event(m_status, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

} // namespace Ui
