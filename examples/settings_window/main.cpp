// A settings window that is made from the registered objects alone, for the settings of a planner.

#include "PlannerSettings.h"
#include "SettingsWindow.h"

#include <ConfigurationFramework/ConfigurationManager.h>

#include <QApplication>

#include <memory>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    //! [window]
    const Orvant::FileName systemFile = "system.xml";
    const Orvant::FileName userFile = "user.xml";
    auto& manager = Orvant::ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(Orvant::ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile(systemFile, userFile);
    manager.addConfigurationObjects({{std::make_shared<Planner::View>(), "View"},
                                     {std::make_shared<Planner::Library>(), "Library"},
                                     {std::make_shared<Planner::Plotting>(), "Plotting"}});
    Ui::SettingsWindow window(manager, {systemFile, userFile}, "1.0");
    window.show();
    //! [window]
    return QApplication::exec();
}
