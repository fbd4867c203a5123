#pragma once

#include <ConfigurationFramework/XsdConfigReader.h>

#include <string>
#include <vector>

namespace Orvant::Tool {

/// @throws Failure(Usage) for an empty name, as a variable of a script has that is not set
void checkFileName(const std::string& name);

/// A schema file that has been read.
class SchemaFile {
public:
    /// @throws Failure(FileError) when it cannot be read; Failure(Usage) when the name is empty
    explicit SchemaFile(const std::string& name);

    const std::string& name() const { return m_name; }
    XsdConfigReader& reader() { return m_reader; }

    /// @return the names of all types
    std::vector<std::string> typeNames();
    /// @return what types use, directly or through others, and these; each once
    std::vector<std::string> typesUsedBy(const std::vector<std::string>& types);
    /// @throws Failure(Usage) when the file does not declare one of them
    void checkTypes(const std::vector<std::string>& types);
    /// @param what  "child" or "attribute"
    /// @param names what a type should have of it
    /// @param known what it has
    /// @throws Failure(Usage) when it does not have one of them
    void checkNames(const std::string& type, const std::string& what,
                    const std::vector<std::string>& names,
                    const std::vector<std::string>& known) const;

private:
    std::string m_name;
    XsdConfigReader m_reader;
};

} // namespace Orvant::Tool
