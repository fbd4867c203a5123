#pragma once

#include <string>

#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/EntityResolver.hpp>
#include <xercesc/util/SecurityManager.hpp>

namespace Orvant {

class FileName;

/// Keeps a parser to the document that it is given: whatever is external (entities, a DTD) resolves
/// to nothing, so that no file is read and no connection made, and more than
/// `maxEntityReferences` entity references are a parse error, so that a document of a few lines
/// cannot fill the memory. Must outlive the parser.
class ParserConfinement : public xercesc::EntityResolver {
public:
    static constexpr XMLSize_t maxEntityReferences = 10'000;

    ParserConfinement();

    /// Confines a parser. Changes none of its features.
    void apply(xercesc::XercesDOMParser& parser);

    xercesc::InputSource* resolveEntity(const XMLCh* publicId, const XMLCh* systemId) override;

private:
    xercesc::SecurityManager m_securityManager;
};

/// Parses a file.
/// @throws xercesc::XMLException when the file is not a regular file or cannot be read
/// @throws FileNameException for a name that no file system could hold
/// and whatever the parser throws
void parseFile(xercesc::XercesDOMParser& parser, const FileName& file);

/// Parses a document in memory.
/// @param content the document, up to its first NUL
/// @throws whatever the parser throws
void parseString(xercesc::XercesDOMParser& parser, const std::string& content);

} // namespace Orvant
