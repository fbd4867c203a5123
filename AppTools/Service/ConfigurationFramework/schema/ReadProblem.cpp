#include <ConfigurationFramework/schema/ReadProblem.h>

#include <ConfigurationFramework/schema/DocumentTags.h>
#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/SchemaFileFailure.h>
#include <ConfigurationFramework/schema/StartTagProblem.h>
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

bool isUtf16(std::string_view bytes) {
    using namespace std::string_view_literals;
    return bytes.starts_with("\xFF\xFE"sv) || bytes.starts_with("\xFE\xFF"sv) ||
           bytes.starts_with("<\0"sv) || bytes.starts_with("\0<"sv);
}

/// A line of a document, in UTF-16; lines are what Xerces counts.
XmlString lineOf(std::string_view bytes, unsigned int number) {
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
        if (isUtf16(m_bytes))
            return {1, 1,
                    "the file is in UTF-16, which readXSD(true) cannot rewrite: save it in UTF-8, "
                    "or let readAnyXSD() read it"};
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
    const XercesSession session(s_log, std::source_location::current());
    return dialect == SchemaDialect::Suite ? SuiteFile(bytes).problem(misfit)
                                           : problemOfDocument(bytes, dialect, misfit);
}

} // namespace

XsdReadProblem describeReadProblem(const std::string& bytes, SchemaDialect dialect,
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

} // namespace Orvant
