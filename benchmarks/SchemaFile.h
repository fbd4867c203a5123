#pragma once

#include "TemporaryDirectory.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Orvant::Benchmarks {

/// A generated schema of the suite on disk, until the end of the scope. Ten types each describe one
/// station of a machine: seven complex ones with sequences, attributes and extensions, three
/// enumerations. A station needs all of its types, and has the next station as an optional child.
class SchemaFile {
public:
    /// @param types number of types, a multiple of 10
    explicit SchemaFile(std::size_t types);

    std::size_t types() const { return m_types; }
    std::string file() const { return m_directory.file("schema.xsd"); }
    std::string newFile() const { return m_directory.file("reduced.xsd"); }

    /// @return names of the types of every second station, to which `typesOfEverySecondStation`
    ///         types belong
    std::vector<std::string> everySecondStation() const;
    std::size_t typesOfEverySecondStation() const;

private:
    std::size_t m_types;
    TemporaryDirectory m_directory;
};

} // namespace Orvant::Benchmarks
