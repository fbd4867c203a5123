#include <ConfigurationFramework/schema/ReadProblem.h>

#include <ConfigurationFramework/schema/DocumentTags.h>
#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/SchemaFileFailure.h>
#include <ConfigurationFramework/schema/StartTagProblem.h>
#include <ConfigurationFramework/xml/ByteOrderMark.h>
#include <ConfigurationFramework/xml/XercesSession.h>
#include <ConfigurationFramework/xml/XmlText.h>
#include <ConfigurationFramework/xsd/ParsingChecks.h>

#include <FileHandling/FileName.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <cstddef>
#include <source_location>
#include <string_view>

#include <xsd/cxx/exceptions.hxx>

namespace Orvant {

namespace {

using OV_XsdReader::MisfitElement;

const Logging s_log("SchemaParsing");

XsdReadProblem problemAt(const DocumentPlace& place, const std::string& message) {
    return {place.line, place.column, message};
}

XsdReadProblem problemOf(const DocumentError& error) {
    return problemAt(error.place, error.message);
}

/// @return the name of the encoding of a document that ASCII is no part of
std::string encodingOf(std::string_view bytes) {
    using namespace std::string_view_literals;
    const auto startsWithOneOf = [&bytes](const auto&... starts) {
        return (bytes.starts_with(starts) || ...);
    };
    // What UTF-32 begins with begins like UTF-16.
    if (startsWithOneOf("\xFF\xFE\0\0"sv, "\0\0\xFE\xFF"sv, "<\0\0\0"sv, "\0\0\0<"sv))
        return "UTF-32";
    if (startsWithOneOf("\xFF\xFE"sv, "\xFE\xFF"sv, "<\0"sv, "\0<"sv))
        return "UTF-16";
    return "an encoding that ASCII is no part of";
}

/// Whether the lines of a document end as they did on systems of long ago.
bool hasOnlyCarriageReturns(const std::string& bytes) {
    return bytes.find('\r') != std::string::npos && bytes.find('\n') == std::string::npos;
}

/// A line of a document, in UTF-16; lines are what Xerces counts.
XmlString lineOf(std::string_view bytes, unsigned int number) {
    bytes = withoutByteOrderMark(bytes);
    const auto endOfLine = [&bytes] { return bytes.substr(0, bytes.find_first_of("\r\n")); };
    for (; number > 1; --number) {
        bytes.remove_prefix(endOfLine().size());
        bytes.remove_prefix(bytes.starts_with("\r\n") ? 2 : std::min<std::size_t>(1, bytes.size()));
    }
    return XercesHelperFunctions::stringToXmlCh(std::string(endOfLine()));
}

/// @return what follows at a place of a document; empty if there is no such place
std::string textAt(const std::string& bytes, const DocumentPlace& place) {
    const XmlString line = lineOf(bytes, place.line);
    return place.column == 0 || place.column > line.size()
               ? std::string()
               : XercesHelperFunctions::xmlChToString(line.c_str() + place.column - 1);
}

/// @return the problem of an element that does not fit the model, in what was parsed
XsdReadProblem problemOf(const MisfitElement* misfit, const std::string& parsed) {
    if (misfit == nullptr)
        return {0, 0, "the file cannot be read"};
    const DocumentTags tags(parsed, DocumentTags::Pass::Measuring, misfit->position());
    return problemAt(tags.element.value_or(DocumentPlace()), misfit->message());
}

/// A file of the suite, and what its lines are rewritten to.
class SuiteFile {
public:
    explicit SuiteFile(const std::string& bytes)
        : m_bytes(bytes), m_rewritten(LineRewriting::rewrittenForReader(bytes)) {}

    XsdReadProblem problem(const MisfitElement* misfit) const {
        const DocumentTags original(m_bytes);
        if (original.error)
            return problemOf(*original.error);
        if (original.root->text.empty())
            return {1, 1,
                    "the file is in " + encodingOf(m_bytes) +
                        ", which readXSD(true) cannot rewrite: save it in UTF-8, or let "
                        "readAnyXSD() read it"};
        const DocumentTags tags(m_rewritten);
        if (tags.root && !isSchemaTag(*tags.root, SchemaDialect::Suite))
            return problemAt(original.root->place,
                             describeStartTag(*original.root, SchemaDialect::Suite));
        if (tags.error)
            return problemOfRewriting(tags);
        if (const DocumentTags read(m_rewritten, DocumentTags::Pass::Reading); read.error)
            return inFile(problemOf(*read.error));
        return inFile(Orvant::problemOf(misfit, m_rewritten));
    }

private:
    /// The problem of a file that is well-formed, but not as it was rewritten.
    XsdReadProblem problemOfRewriting(const DocumentTags& tags) const {
        if (hasOnlyCarriageReturns(m_bytes))
            return problemOfLineEnds();
        if (tags.open.empty())
            return inFile(problemOf(*tags.error));
        const auto& [name, place] = tags.open.back();
        for (const char* prefix : {"xs:", "ov:"}) {
            const std::string start = '<' + name;
            if (name.starts_with(prefix) && hasTag(place, start))
                return problemOfTag(place, start, prefix);
            const std::string end = std::string("</").append(prefix).append(name);
            if (hasTag(tags.last, end))
                return problemOfTag(tags.last, end, prefix);
        }
        return inFile(problemOf(*tags.error));
    }
    /// To the rewriting, all of the file is one line.
    XsdReadProblem problemOfLineEnds() const {
        return {1, static_cast<unsigned int>(lineOf(m_bytes, 1).size()) + 1,
                "the lines end with a carriage return only, which readXSD(true) does not take for "
                "the end of a line: let them end with a line feed. readAnyXSD() reads the file as "
                "it is"};
    }
    bool hasTag(const DocumentPlace& place, const std::string& tag) const {
        const std::string text = textAt(m_rewritten, place);
        return text.starts_with(tag) && text.find_first_of(" \t/>", tag.size()) <= tag.size();
    }
    /// A tag kept its prefix while the other tag of its element lost it.
    XsdReadProblem problemOfTag(const DocumentPlace& place, const std::string& tag,
                                const std::string& prefix) const {
        return inFile(problemAt(place, "the tag " + tag + "> keeps its prefix, since " + prefix +
                                           " stands before it on its line, and the other tag of "
                                           "its element does not: each element's tags must stand "
                                           "on lines of their own. readAnyXSD() reads the file as "
                                           "it is"));
    }

    /// Moves a problem to where the file has what was rewritten: the text up to the end of the line
    /// is the same, but for what was taken out of it.
    XsdReadProblem inFile(XsdReadProblem problem) const {
        if (problem.column == 0)
            return problem;
        const XmlString line = lineOf(m_bytes, problem.line);
        const XmlString rewritten = lineOf(m_rewritten, problem.line);
        std::size_t at = line.size();
        for (std::size_t i = rewritten.size(); i >= problem.column; --i) {
            at = at == 0 ? XmlString::npos : line.rfind(rewritten[i - 1], at - 1);
            if (at == XmlString::npos)
                return problem; // The start tag of the schema was replaced.
        }
        problem.column = static_cast<unsigned int>(at) + 1;
        return problem;
    }

    const std::string& m_bytes;
    std::string m_rewritten;
};

XsdReadProblem problemOfDocument(const std::string& bytes, SchemaDialect dialect,
                                 const MisfitElement* misfit) {
    const DocumentTags tags(bytes);
    if (tags.error)
        return problemOf(*tags.error);
    if (const DocumentTags read(bytes, DocumentTags::Pass::Reading); read.error)
        return problemOf(*read.error);
    if (!isSchemaTag(*tags.root, dialect))
        return problemAt(tags.root->place, describeStartTag(*tags.root, dialect));
    return problemOf(misfit, bytes);
}

XsdReadProblem problemOfText(const std::string& bytes, SchemaDialect dialect,
                             const MisfitElement* misfit = nullptr) {
    if (bytes.empty())
        return {1, 1, "the file is empty"};
    const XercesSession session(s_log, std::source_location::current());
    return dialect == SchemaDialect::Suite ? SuiteFile(bytes).problem(misfit)
                                           : problemOfDocument(bytes, dialect, misfit);
}

XsdReadProblem describe(const std::string& bytes, SchemaDialect dialect,
                        const std::exception_ptr& caught) {
    try {
        std::rethrow_exception(caught);
    } catch (const SchemaFileFailure& e) {
        return {0, 0, e.reason()};
    } catch (const FileNameException&) {
        return {0, 0, "no file can have this name"};
    } catch (const MisfitElement& e) {
        return problemOfText(bytes, dialect, &e);
    } catch (const xsd::cxx::exception&) {
        return problemOfText(bytes, dialect);
    } catch (const std::exception& e) {
        return {0, 0, e.what()};
    } catch (...) { // an exception of Xerces
        return problemOfText(bytes, dialect);
    }
}

} // namespace

XsdReadProblem describeReadProblem(const std::string& bytes, SchemaDialect dialect,
                                   const std::exception_ptr& caught) {
    try {
        return describe(bytes, dialect, caught);
    } catch (...) {
        // Parsing again can take more memory than there is. So short a text takes none.
        return {0, 0, "cannot be read"};
    }
}

} // namespace Orvant
