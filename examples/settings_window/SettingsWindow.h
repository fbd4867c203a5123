#pragma once

#include "FileWatch.h"
#include "SettingsModel.h"

#include <ConfigurationFramework/ConfigurationManager.h>

#include <QWidget>

#include <functional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;

namespace Ui {

class ProblemsPanel;
class SettingsForm;
class SettingsTree;

/// Shows and edits the settings of whatever objects are registered.
class SettingsWindow : public QWidget {
public:
    /// @param manager its objects are registered; must outlive the window
    /// @param files   those of the manager, to take over what others save
    /// @param version what saves are given
    /// @throws what ConfigurationManager::explain() throws
    SettingsWindow(Orvant::ConfigurationManager& manager,
                   const std::vector<Orvant::FileName>& files, std::string version);

    /// Shows what the application changed in the objects, or registered, meanwhile.
    void refresh();

private:
    void makeWidgets();
    QPushButton* makeButton(const QString& text, const char* name, std::function<void()> action);
    void showGroups();
    void showSelected();
    void setTabOrders();

    void reset(const SettingRows& rows);
    void apply();
    void save();
    void takeOver();
    void attempt(const std::function<void()>& action);
    void say(const QString& text);

    Orvant::ConfigurationManager& m_manager;
    std::string m_version;
    SettingsModel m_model;
    QLineEdit* m_search = nullptr;
    SettingsTree* m_tree = nullptr;
    SettingsForm* m_form = nullptr;
    ProblemsPanel* m_problems = nullptr;
    QLabel* m_status = nullptr;
    QPushButton* m_firstButton = nullptr;
    FileWatch m_watch;
};

} // namespace Ui
