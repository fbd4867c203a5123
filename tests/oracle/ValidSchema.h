#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace Orvant::Support {

/// A random valid schema of many constructs, most of which the schema document model does not hold;
/// the same for the same seed.
class ValidSchema {
public:
    explicit ValidSchema(std::uint32_t seed);

    const std::string& text() const { return m_text; }
    const std::vector<std::string>& types() const { return m_types; }
    const std::vector<std::string>& parts() const { return m_parts; }
    /// @return some of these names
    std::vector<std::string> someOf(const std::vector<std::string>& names);
    std::string anyOf(const std::vector<std::string>& names) {
        return names[m_random() % names.size()];
    }

private:
    /// A complex type that others can be derived from.
    struct Base {
        std::string name;
        std::vector<std::string> children; ///< each as it is written
        std::vector<std::string> attributes;
    };

    bool oneIn(unsigned int n) { return m_random() % n == 0; }
    std::string fresh(const std::string& prefix);
    std::string part(const std::string& prefix);
    std::string typeOfChild();
    std::string typeOfAttribute();
    std::string child(const std::string& occurrence);
    std::string attribute();
    std::vector<std::string> children();
    std::vector<std::string> attributes();
    std::string content(std::size_t index);
    std::string extension();
    std::string restriction();
    void addSimpleType(const std::string& name);
    void addGroups();
    void addRoots();

    std::mt19937 m_random;
    std::string m_text;
    std::vector<std::string> m_types; ///< simple and complex
    std::vector<std::string> m_simpleTypes;
    std::vector<std::string> m_atomicTypes;
    std::vector<std::string> m_complexTypes;
    std::vector<std::string> m_parts; ///< names of children and attributes
    std::vector<Base> m_bases;
    unsigned int m_count = 0;
};

} // namespace Orvant::Support
