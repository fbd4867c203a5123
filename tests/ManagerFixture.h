#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>

#include <TestSupport.h>

#include <gtest/gtest.h>

#include <chrono>
#include <list>
#include <memory>
#include <string>

namespace Orvant::Support {

using SaveMode = ConfigurationManager::SaveMode;

inline const auto anySaveMode = testing::Values(
    ConfigurationManager::InPlace, ConfigurationManager::Replace, ConfigurationManager::Merge);

inline std::string nameOf(SaveMode mode) {
    return mode == ConfigurationManager::InPlace   ? "InPlace"
           : mode == ConfigurationManager::Replace ? "Replace"
                                                   : "Merge";
}

/// Names a test by its save mode.
inline std::string nameOfMode(const testing::TestParamInfo<SaveMode>& info) {
    return nameOf(info.param);
}

/// The manager, empty and without files at the start of each test and again at its end: there is
/// only one for the whole process.
class ManagerFixture : public testing::Test {
protected:
    ManagerFixture() {
        m_manager.reset();
        m_manager.setValidVersionList({"1.0"});
    }
    ~ManagerFixture() override {
        m_manager.reset();
        m_manager.setValidVersionList(m_formerVersions);
        m_manager.setSaveMode(ConfigurationManager::InPlace);
        m_manager.setLockTimeout(std::chrono::seconds(5));
        m_manager.setSystemFileRequired(false);
    }

    /// Registers an object under its own name.
    template <typename Object>
    std::shared_ptr<Object> add(std::shared_ptr<Object> object) {
        m_manager.addConfigurationObject(object, object->getName());
        return object;
    }

    /// Registers an object under a name and key.
    template <typename Object>
    std::shared_ptr<Object> add(std::shared_ptr<Object> object, const std::string& name,
                                const std::string& key) {
        m_manager.addConfigurationObject(object, name, key);
        return object;
    }

    /// @return a manager of the same files, versions and modes without objects, as another process
    ///         has it
    ConfigurationManager anotherProcess() const {
        ConfigurationManager other = m_manager;
        for (const ConfigurationRegistration& registration : other.getRegistrations())
            registration.key ? other.removeConfigurationObject(registration.name, *registration.key)
                             : other.removeConfigurationObject(registration.name);
        return other;
    }

    void useOneFile() { m_manager.setConfigurationFile(m_file); }
    void useTwoFiles() { m_manager.setSystemAndUserConfigurationFile(m_systemFile, m_userFile); }

    const TemporaryDirectory m_directory;
    const FileName m_file = m_directory.file("settings.xml");
    const FileName m_systemFile = m_directory.file("system.xml");
    const FileName m_userFile = m_directory.file("user.xml");
    ConfigurationManager& m_manager = ConfigurationManager::getInstance();

private:
    const std::list<std::string> m_formerVersions = m_manager.getValidVersions();
};

} // namespace Orvant::Support
