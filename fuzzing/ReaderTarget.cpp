// Any bytes as a document: it is opened by all that open one or by none, and whatever is asked is
// answered, the same by a reader of one document and by a layered one that has just this one.

#include "FuzzTarget.h"

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <ReaderQuestions.h>
#include <ReaderSupport.h>

#include <algorithm>
#include <sstream>

namespace Orvant::Fuzzing {

namespace {

const std::list<std::string> versions = {"", "1", "1.0", "1.1", "2.0", "2.1"};

/// @return some of the texts that stand after a mark, up to a character that ends one
std::vector<std::string> textsAfter(const std::string& mark, const std::string& ends,
                                    const std::string& document, std::vector<std::string> texts) {
    constexpr std::size_t most = 6;
    for (auto at = document.find(mark); at != document.npos && texts.size() < most;
         at = document.find(mark, at + 1)) {
        const auto first = at + mark.size();
        const auto end = std::min(document.find_first_of(ends, first), document.size());
        const std::string text = document.substr(first, end - first);
        if (!text.empty() && std::ranges::find(texts, text) == texts.end())
            texts.push_back(text);
    }
    return texts;
}

std::string answersOf(ConfigReader& reader, const std::vector<std::string>& names,
                      const std::vector<std::string>& keys) {
    std::ostringstream record;
    Support::Recorder object(names, 1, record);
    record << reader.getClassContents(object);
    for (const std::string& name : names) {
        record << reader.findAndGetClassContents(name, object)
               << reader.createConfigurationObjects(name, [&](const std::string& key) {
                      record << key;
                      Support::askEverything(reader, name, record);
                  });
        for (const std::string& key : keys)
            record << reader.findAndGetClassContents(name, key, object)
                   << reader.getClassContents(name, key, object);
    }
    for (const std::string& name : names)
        record << reader.tagExists(name) << reader.getClassContents(object);
    return record.str();
}

} // namespace

void runTarget(std::span<const std::uint8_t> input) {
    const std::string document(input.begin(), input.end());
    auto refusal =
        Support::refusal([&] { const SimpleConfigReader reader(FileName(), document, versions); });
    const auto writerRefusal =
        Support::refusal([&] { const ConfigWriter writer(FileName(), document); });
    const bool isDocument = !refusal || refusal->getType() == ConfigException::InvalidVersion;
    require(isDocument == !writerRefusal, "readers and writers open the same documents");

    AdvancedConfigReader layered;
    const auto added =
        layered.addStringSource(document, {}, AdvancedConfigReader::System, versions);
    require((added == ConfigurationAccessResult::Success) == !refusal,
            "a document is a source if it can be opened");
    if (refusal)
        return;

    const auto names = textsAfter("<", " \t\r\n/>", document, {"item"});
    const auto keys = textsAfter("key=\"", "\"", document, {""});
    SimpleConfigReader simple(FileName(), document, versions);
    const std::string expected = answersOf(simple, names, keys);
    const std::string actual = answersOf(layered, names, keys);
    require(expected == actual, "a single source is read as a document by itself", expected,
            actual);
}

} // namespace Orvant::Fuzzing
