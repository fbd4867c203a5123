#pragma once

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <FileHandling/FileName.h>

#include <gtest/gtest.h>

#include <concepts>
#include <optional>
#include <ostream>
#include <string>

namespace Orvant::Support {

/// Base of the parameters of a test: what the test is called.
struct TestCase {
    TestCase(const char* caseName) : name(caseName) {}

    std::string name;
};

/// Prints a case in messages of failed tests.
template <std::derived_from<TestCase> Case>
void PrintTo(const Case& testCase, std::ostream* out) {
    *out << testCase.name;
}

/// Names each test after its parameter.
template <typename Case>
std::string nameOf(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

/// @param body what is in the root element
/// @param dtd  declarations of the document's internal DTD
/// @return a document of version 1.0
inline std::string configuration(const std::string& body, const std::string& dtd = "") {
    const std::string doctype = dtd.empty() ? "" : "<!DOCTYPE Configuration [" + dtd + "]>";
    return doctype + "<Configuration version=\"1.0\">" + body + "</Configuration>";
}

inline SimpleConfigReader openString(const std::string& document) {
    return SimpleConfigReader(FileName(), document, {"1.0"});
}

inline SimpleConfigReader openBody(const std::string& body, const std::string& dtd = "") {
    return openString(configuration(body, dtd));
}

inline SimpleConfigReader openFile(const FileName& file) {
    return SimpleConfigReader(file, "", {"1.0"});
}

/// @return the ConfigException that a call throws, nothing when it throws none
template <typename Call>
std::optional<ConfigException> refusal(Call call) {
    try {
        call();
        return std::nullopt;
    } catch (const ConfigException& e) {
        return e;
    }
}

/// @return the text of a child element, nothing when it cannot be read
template <typename Reader>
std::optional<std::string> readString(Reader& reader, const std::string& name) {
    std::string value;
    bool editable = true;
    if (reader.getString(name, value, editable) != ConfigurationAccessResult::Success)
        return std::nullopt;
    return value;
}

/// @return the number in a child element, nothing when it cannot be read
template <typename Reader>
std::optional<int> readInt(Reader& reader, const std::string& name) {
    int value = 0;
    bool editable = true;
    if (reader.getInt(name, value, editable) != ConfigurationAccessResult::Success)
        return std::nullopt;
    return value;
}

} // namespace Orvant::Support
