#pragma once

#include "Options.h"
#include "catalogue/SettingIndex.h"
#include "common/Output.h"

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/ConfigurationManager.h>

#include <memory>
#include <optional>

namespace Orvant::Tool {

/// What a verb works with: the options, the catalogue that they name, and the files.
class Session {
public:
    /// @param options must outlive this
    /// @throws Failure when there is no user of the name that is given
    explicit Session(const Options& options);

    const Options& options() const { return m_options; }
    const Output& output() const { return m_output; }

    /// @throws Failure(NoCatalogue) when there is none, or it is damaged
    const ConfigurationCatalogue& catalogue();
    /// @throws Failure(NoCatalogue) like catalogue()
    const SettingIndex& settings();
    /// @return what a path means
    /// @throws Failure(Usage) when the catalogue has no such setting or object
    FoundItem find(const std::string& path);
    /// @return the files that the options name, else those of the catalogue
    /// @throws Failure(NoCatalogue) like catalogue()
    StandardConfigurationFiles files();
    /// @return the system file, or that of an application with one
    /// @throws Failure(NoCatalogue) like catalogue(); Failure(Usage) where the options say that
    ///         there is no system file
    FileName administeredFile();

    /// Loads the objects of the catalogue from files, as the application does.
    /// @param files without a system file: the application has one file
    /// @return the manager of the process, which has forgotten what was loaded before
    ConfigurationManager& load(const StandardConfigurationFiles& files);
    /// Loads files() and refuses them unless they can be used.
    /// @throws Failure(FileError) when one is damaged, cannot be read or is of another version, or
    ///         when one that the options name does not exist
    ConfigurationManager& loadUsable();
    /// Loads files and refuses them unless they can be used, or are missing.
    /// @throws Failure(FileError) like loadUsable()
    ConfigurationManager& loadUsable(const StandardConfigurationFiles& files);

private:
    const Options& m_options;
    Output m_output;
    std::optional<ConfigurationCatalogue> m_catalogue;
    std::unique_ptr<const SettingIndex> m_settings;
};

} // namespace Orvant::Tool
