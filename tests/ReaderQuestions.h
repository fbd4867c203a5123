#pragma once

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigurationObject.h>

#include <ostream>
#include <string>
#include <vector>

namespace Orvant::Support {

/// Asks a reader everything that needs only a name and writes the answers down. The values start at
/// something that no document holds, to show what is overwritten.
void askEverything(ConfigReader& reader, const std::string& name, std::ostream& record);

/// Writes down all that it is asked while it is loaded, and loads a child below it.
class Recorder : public ConfigurationObject {
public:
    /// @param names  what to ask for
    /// @param depth  levels of children to ask
    /// @param record where the answers go
    Recorder(const std::vector<std::string>& names, int depth, std::ostream& record)
        : ConfigurationObject("Recorder", "", LoadAndSave, AllProducts),
          m_names(names),
          m_depth(depth),
          m_record(record) {}

    void loadContent(ConfigReader& reader) override;
    ConfigurationObject* createConfigurationObject() const override {
        return new Recorder(m_names, m_depth, m_record);
    }

private:
    const std::vector<std::string>& m_names;
    int m_depth;
    std::ostream& m_record;
};

} // namespace Orvant::Support
