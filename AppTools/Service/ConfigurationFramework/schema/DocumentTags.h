#pragma once

#include <ConfigurationFramework/xml/FirstError.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {

/// The start tag of a document's root element.
struct RootTag {
    DocumentPlace place;                                         ///< of the '<'
    std::string name;                                            ///< with its prefix
    std::vector<std::pair<std::string, std::string>> attributes; ///< given or declared
    std::string text; ///< the bytes of the tag; empty if they are not what ASCII has for it

    std::string localName() const;
    /// @return the namespace that the attributes declare for the name; empty if they do not
    std::string nameSpace() const;
};

/// What is seen of the tags of a schema, up to its first error.
struct DocumentTags {
    /// How the schema is parsed; each is one of the two ways in which it is read.
    enum class Pass : bool {
        Measuring, ///< within the limits of schemas, without namespaces
        Reading,   ///< with namespaces, and building a DOM: only what the other pass accepts
    };
    /// A start tag whose element has an end tag, too.
    struct Open {
        std::string name;
        DocumentPlace place; ///< of the '<'
    };

    /// Xerces must be initialised.
    /// @param wanted position of the element that is to be found, from 0
    explicit DocumentTags(const std::string& bytes, Pass pass = Pass::Measuring,
                          std::optional<std::size_t> wanted = std::nullopt);

    std::optional<DocumentError> error;
    DocumentPlace last; ///< where the last thing before the error ended
    std::optional<RootTag> root;
    std::vector<Open> open;               ///< elements that had no end tag before the error
    std::optional<DocumentPlace> element; ///< where the wanted one begins
};

} // namespace Orvant
