#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Orvant::Support {

/// One of the filters of XsdConfigReader with its arguments.
struct SchemaFilter {
    enum Kind { Elements, ChildElement, ChildAttributes };
    Kind kind;
    std::string type;
    std::vector<std::string> names;
};

/// Makes random schema files of the suite and filters for them, the same for the same seed.
class SchemaGenerator {
public:
    enum Kind {
        Odd,  ///< whatever lines a file may hold, most of it no valid schema
        Valid ///< valid schemas in the order in which the reader writes
    };

    SchemaGenerator(std::uint32_t seed, Kind kind);

    std::string schema();
    /// @return a filter whose names are mostly those of the last schema
    SchemaFilter filter();

private:
    using Attributes = std::vector<std::pair<std::string, std::string>>;

    /// True once in `n` times.
    bool oneIn(unsigned int n) { return m_random() % n == 0; }
    bool oddOneIn(unsigned int n) { return m_kind == Odd && oneIn(n); }
    const std::string& anyOf(const std::vector<std::string>& texts) {
        return texts[m_random() % texts.size()];
    }
    std::vector<std::string> someOf(const std::vector<std::string>& texts);
    std::string prefixed(const std::string& typeName);
    std::string elementType();
    std::string attributeType();
    std::string fresh(const std::string& prefix) { return prefix + std::to_string(++m_count); }

    void put(const std::string& line);
    void open(const std::string& name, const Attributes& attributes = {});
    void close(const std::string& name);
    void leaf(const std::string& name, const Attributes& attributes);
    /// @param spread whether each attribute is on a line of its own
    std::string tag(const std::string& name, const Attributes& attributes, bool spread);

    void odd();
    void annotation();
    void element(int depth);
    void elements(const std::string& compositor, int depth);
    void attributes();
    void extension(int depth);
    void restriction();
    void complexType(const Attributes& typeAttributes, int depth);
    void simpleType(std::size_t index);
    void rootElement();

    std::mt19937 m_random;
    Kind m_kind;
    std::string m_lines;
    std::string m_lineEnd;
    std::string m_indentation;
    bool m_prefixDeclared = true;
    bool m_wild = false;
    unsigned int m_count = 0;
    std::vector<std::string> m_complexTypes;
    std::vector<std::string> m_simpleTypes;
    std::vector<std::string> m_plainSimpleTypes; ///< those that may be restricted to any text
    std::size_t m_current = 0;                   ///< index of the complex type being made
    std::vector<std::string> m_childNames;
    std::vector<std::string> m_attributeNames;
};

} // namespace Orvant::Support
