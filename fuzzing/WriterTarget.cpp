// Any operations of a writer, on a new document or on one that is opened: what is printed is opened
// by writers and readers, and printed again it is the same.

#include "FuzzInput.h"
#include "FuzzTarget.h"

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ReaderSupport.h>

#include <algorithm>
#include <memory>

#include <xercesc/dom/DOMException.hpp>

namespace Orvant::Fuzzing {

namespace {

/// @param start a document, or the version of a new one
std::unique_ptr<ConfigWriter> makeWriter(const std::string& start) {
    if (!start.starts_with('<'))
        return std::make_unique<ConfigWriter>(start);
    try {
        return std::make_unique<ConfigWriter>(FileName(), start);
    } catch (const ConfigException&) {
        return nullptr;
    }
}

std::string takeName(Operations& operations) {
    static const std::vector<std::string> names = {"A", "B", "Value", "item", "ViewSettings"};
    const std::size_t choice = operations.takeNumber(names.size() + 1);
    return choice < names.size() ? names[choice] : operations.takeText();
}

/// A parser takes every carriage return of a comment for a line feed; unlike in a text, there is no
/// way to write one.
std::string takeComment(Operations& operations) {
    std::string comment = operations.takeText();
    std::ranges::replace(comment, '\r', '\n');
    return comment;
}

void operate(ConfigWriter& writer, Operations& operations) {
    const std::size_t operation = operations.takeNumber(14);
    const std::string name = takeName(operations);
    const std::string text = operations.takeText();
    const std::string comment = takeComment(operations);
    switch (operation) {
    case 0:
        return writer.createNode(name, comment);
    case 1:
        return writer.createKeyedNode(name, text, comment);
    case 2:
        return writer.createNodeAndMakeCurrent(name, comment);
    case 3:
        return writer.createKeyedNodeAndMakeCurrent(name, text, comment);
    case 4:
        return void(writer.setCurrentNode(name));
    case 5:
        return void(writer.setCurrentKeyedNode(name, text));
    case 6:
        return writer.deleteNodes(name, text);
    case 7:
        return writer.putString(text);
    case 8:
        return writer.putStringVector(name, {text, comment, ""}, comment);
    case 9:
        return writer.putInFront(name, [&] { writer.putString(name, text, comment); });
    case 10:
        return writer.putElement(name, comment, [&] { operate(writer, operations); });
    case 11:
        return writer.putElementUnlessEmpty(name, comment, [&] { operate(writer, operations); });
    case 12:
        return writer.putDouble(name, static_cast<double>(text.size()) / 7, comment);
    default:
        return writer.putString(name, text, comment);
    }
}

/// Names that XML does not know raise the DOM's exception; nothing is done then.
void operateIfValid(ConfigWriter& writer, Operations& operations) {
    try {
        operate(writer, operations);
    } catch (const xercesc::DOMException&) {
        return;
    }
}

/// @return a document in which an element that holds an empty text is printed as one that holds
///         nothing, which it is when it is opened again
std::string withShortTags(std::string document) {
    for (auto at = document.find("></"); at != document.npos; at = document.find("></", at + 1))
        document.replace(at, document.find('>', at + 1) - at, "/");
    return document;
}

} // namespace

void runTarget(std::span<const std::uint8_t> input) {
    const auto parts = partsOf(input, 2);
    const auto writer = makeWriter(parts[0]);
    if (writer == nullptr)
        return;
    Operations operations(parts[1]);
    while (!operations.atEnd())
        operateIfValid(*writer, operations);

    const std::string printed = writer->getAsString();
    if (printed.empty())
        return;
    require(printed == writer->getAsString(), "printing changes nothing", printed,
            writer->getAsString());
    auto refusal = Support::refusal([&] { Support::openString(printed); });
    require(!refusal || refusal->getType() == ConfigException::InvalidVersion,
            "a reader opens what is printed", printed);
    const auto reopened = makeWriter(printed);
    require(reopened != nullptr, "a writer opens what is printed", printed);
    const std::string again = reopened->getAsString();
    require(withShortTags(printed) == withShortTags(again), "what is opened is printed as it was",
            printed, again);
    require(again == makeWriter(again)->getAsString(), "what is printed again stays as it is",
            again);
}

} // namespace Orvant::Fuzzing
