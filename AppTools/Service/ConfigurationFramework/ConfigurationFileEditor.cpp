#include <ConfigurationFramework/ConfigurationFileEditor.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigWriterImpl.h>
#include <ConfigurationFramework/SaveFailure.h>
#include <ConfigurationFramework/files/NewFile.h>
#include <ConfigurationFramework/files/RegularFile.h>
#include <ConfigurationFramework/reading/LocatedDocument.h>
#include <ConfigurationFramework/writing/DocumentEditor.h>
#include <ConfigurationFramework/writing/DocumentPrinter.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <algorithm>
#include <exception>
#include <iterator>
#include <system_error>
#include <utility>

namespace Orvant {

namespace {

using Report = ConfigurationSaveReport;
using Steps = ConfigurationElementPath;

std::string toString(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}

std::string whatOf(const ConfigurationProblem& problem) {
    std::string what = problem.file.toString() + ':';
    if (problem.line != 0)
        what += std::to_string(problem.line) + ':' + std::to_string(problem.column) + ':';
    return what + ' ' + problem.text;
}

/// @param what names the text in a sentence
XmlString checked(XmlText text, const std::string& what) {
    if (text.changed)
        throw std::invalid_argument(what + " holds characters that XML cannot hold");
    return std::move(text.text);
}

XmlString checkedVersion(const std::string& version) {
    return checked(toXmlText(version), "The version");
}

XmlString checkedComment(const std::string& comment) {
    return checked(toXmlComment(comment), "The comment");
}

/// @throws std::invalid_argument for what cannot be in a document
DocumentEditor::Path addressOf(const Steps& path) {
    DocumentEditor::Path address;
    for (const auto& [name, key] : path) {
        if (!isXmlName(name))
            throw std::invalid_argument('"' + name + "\" is not a name that XML allows");
        ElementId& id = address.emplace_back(ElementId{toXmlText(name).text, std::nullopt});
        if (key && !key->empty())
            id.key = checked(toXmlText(*key), "The key of \"" + name + '"');
    }
    return address;
}

/// @throws std::invalid_argument also for the root
DocumentEditor::Path addressBelowRoot(const Steps& path) {
    if (path.empty())
        throw std::invalid_argument("The root is no element to be edited");
    return addressOf(path);
}

/// Reads a file.
/// @return nothing where there is none
std::optional<std::string> read(const FileName& file) {
    FileBytes read = readBytes(file);
    if (read.error && read.error != std::errc::no_such_file_or_directory)
        throw ConfigurationFileError({ConfigurationProblem::Unreadable, file, 0, 0, "",
                                      "the file cannot be read: " + read.error.message()});
    return std::move(read.bytes);
}

/// Why a document that is not opened for editing is damaged.
ConfigurationProblem damageOf(const FileName& file, const std::string& bytes) {
    const LocatedDocument document(bytes);
    const auto error = document.error().value_or(
        LocatedDocument::Error{{}, "it takes too much memory to be edited"});
    return {ConfigurationProblem::Damaged,          file, error.place.line, error.place.column, "",
            "the file is damaged: " + error.message};
}

std::unique_ptr<ConfigWriterImpl> openDocument(const FileName& file,
                                               const std::optional<std::string>& bytes,
                                               const std::string& versionOfNew) {
    if (!bytes)
        return std::make_unique<ConfigWriterImpl>(versionOfNew);
    try {
        return ConfigWriterImpl::openBytes(*bytes);
    } catch (const ConfigException&) {
        throw ConfigurationFileError(damageOf(file, *bytes));
    }
}

/// Whether a file is as it was read.
bool isStill(const FileName& file, const std::optional<std::string>& bytes) {
    return bytes ? fileHolds(file, *bytes)
                 : readBytes(file).error == std::errc::no_such_file_or_directory;
}

Report storeNew(const FileName& target, const PrintedDocument& document) {
    if (!document.problem.empty())
        throw SaveFailure(Report::InvalidContent, document.problem);
    makeFolderOf(toPath(target));
    NewFile made(target);
    made.write(document.text);
    made.flush();
    made.finish();
    if (made.error())
        throw failureOf(made.error());
    return Report{Report::Saved};
}

/// @return what a save reports, or why it failed
template <typename Save>
Report reportOf(const FileName& target, Save save) {
    try {
        return save();
    } catch (const SaveFailure& e) {
        return notSaved(target, {e.reason(), e.error(), e.what()});
    } catch (const std::exception& e) {
        return notSaved(target, {Report::Failed, {}, e.what()});
    }
}

} // namespace

ConfigurationFileError::ConfigurationFileError(const ConfigurationProblem& problem)
    : std::runtime_error(whatOf(problem)),
      m_problem(std::make_shared<const ConfigurationProblem>(problem)) {}

ConfigurationFileError::~ConfigurationFileError() = default;

class ConfigurationFileEditor::Impl {
public:
    Impl(const FileName& file, const std::string& versionOfNew)
        : m_file(file),
          m_bytes(read(file)),
          m_document(openDocument(file, m_bytes, versionOfNew)),
          m_surroundings(surroundingsOf(*m_document->root().getOwnerDocument())) {}

    PrintedDocument print() const {
        PrintedDocument printed = m_document->print();
        if (!m_surroundings.after.empty() && !printed.text.ends_with('\n'))
            printed.text += '\n';
        printed.text.insert(0, m_surroundings.before);
        printed.text += m_surroundings.after;
        return printed;
    }

    Report save(std::chrono::milliseconds patience) {
        if (!m_isChanged)
            return {};
        PrintedDocument printed = print();
        const SaveLock lock(m_file, patience);
        if (!isStill(m_file, m_bytes))
            throw SaveFailure(Report::Failed, "somebody else changed it meanwhile",
                              std::make_error_code(std::errc::resource_unavailable_try_again));
        Report report = storeDocument(m_file, printed, false);
        lock.tellIfNotMade(report);
        m_bytes = std::move(printed.text);
        m_isChanged = false;
        return report;
    }

    /// Notes whether something was changed.
    /// @return that
    bool note(bool isChanged) {
        m_isChanged = m_isChanged || isChanged;
        return isChanged;
    }

    const FileName& file() const { return m_file; }
    bool exists() const { return m_bytes.has_value(); }
    bool isChanged() const { return m_isChanged; }
    ConfigWriterImpl& document() { return *m_document; }
    DocumentEditor& editor() { return m_editor; }

    const xercesc::DOMElement* find(const Steps& path) { return m_editor.find(addressOf(path)); }

private:
    FileName m_file;
    std::optional<std::string> m_bytes; ///< of the file as it was read or written; nothing: none
    std::unique_ptr<ConfigWriterImpl> m_document;
    DocumentSurroundings m_surroundings;
    DocumentEditor m_editor{m_document->root()};
    bool m_isChanged = false;
};

ConfigurationFileEditor::ConfigurationFileEditor(const FileName& file,
                                                 const std::string& versionOfNew) {
    checkedVersion(versionOfNew);
    m_impl = std::make_unique<Impl>(file, versionOfNew);
}

ConfigurationFileEditor::ConfigurationFileEditor(ConfigurationFileEditor&&) noexcept = default;
ConfigurationFileEditor&
ConfigurationFileEditor::operator=(ConfigurationFileEditor&&) noexcept = default;
ConfigurationFileEditor::~ConfigurationFileEditor() = default;

const FileName& ConfigurationFileEditor::file() const {
    return m_impl->file();
}

bool ConfigurationFileEditor::isNew() const {
    return !m_impl->exists();
}

bool ConfigurationFileEditor::isChanged() const {
    return m_impl->isChanged();
}

std::string ConfigurationFileEditor::version() const {
    return m_impl->document().version();
}

void ConfigurationFileEditor::setVersion(const std::string& version) {
    checkedVersion(version);
    const std::string former = m_impl->document().version();
    m_impl->document().setVersion(version);
    m_impl->note(m_impl->document().version() != former);
}

std::string ConfigurationFileEditor::asString() const {
    const PrintedDocument printed = m_impl->print();
    if (!printed.problem.empty())
        throw std::runtime_error(printed.problem);
    return printed.text;
}

bool ConfigurationFileEditor::exists(const ConfigurationElementPath& path) const {
    return m_impl->find(path) != nullptr;
}

std::optional<std::string>
ConfigurationFileEditor::text(const ConfigurationElementPath& path) const {
    const auto* const element = m_impl->find(path);
    const auto text = element == nullptr ? std::nullopt : textOf(*element);
    return text ? std::optional(toString(text->c_str())) : std::nullopt;
}

std::optional<std::vector<std::string>>
ConfigurationFileEditor::items(const ConfigurationElementPath& path) const {
    const auto* const element = m_impl->find(path);
    if (element == nullptr)
        return std::nullopt;
    std::vector<std::string> items;
    std::ranges::transform(itemsOf(*element), std::back_inserter(items),
                           [](const XmlString& item) { return toString(item.c_str()); });
    return items;
}

std::optional<std::string>
ConfigurationFileEditor::editable(const ConfigurationElementPath& path) const {
    const auto* const element = m_impl->find(path);
    if (element == nullptr || !element->hasAttribute(lockAttribute))
        return std::nullopt;
    return toString(element->getAttribute(lockAttribute));
}

void ConfigurationFileEditor::visitElements(
    const ConfigurationElementPath& path,
    const std::function<void(const ConfigurationElementPath&)>& visit) const {
    const DocumentEditor::Path address = addressOf(path);
    Steps visited = path;
    m_impl->editor().forEachBelow(address, [&](const ElementId& id, std::size_t depth) {
        visited.resize(path.size() + depth - 1);
        visited.push_back({toString(id.tag.c_str()),
                           id.key ? std::optional(toString(id.key->c_str())) : std::nullopt});
        visit(visited);
    });
}

void ConfigurationFileEditor::setText(const ConfigurationElementPath& path, const std::string& text,
                                      const std::string& comment) {
    m_impl->note(m_impl->editor().setText(
        addressBelowRoot(path), checked(toXmlText(text), "The text"), checkedComment(comment)));
}

void ConfigurationFileEditor::setItems(const ConfigurationElementPath& path,
                                       const std::vector<std::string>& items,
                                       const std::string& comment) {
    std::vector<XmlString> texts;
    std::ranges::transform(items, std::back_inserter(texts), [](const std::string& item) {
        return checked(toXmlText(item), "An item");
    });
    m_impl->note(m_impl->editor().setItems(addressBelowRoot(path), texts, checkedComment(comment)));
}

bool ConfigurationFileEditor::remove(const ConfigurationElementPath& path,
                                     const std::string& comment) {
    return m_impl->note(
        m_impl->editor().remove(addressBelowRoot(path), toXmlComment(comment).text));
}

void ConfigurationFileEditor::setLocked(const ConfigurationElementPath& path, bool locked) {
    const DocumentEditor::Path address = addressBelowRoot(path);
    m_impl->note(locked ? m_impl->editor().lock(address) : m_impl->editor().unlock(address));
}

bool ConfigurationFileEditor::move(const ConfigurationElementPath& from,
                                   const ConfigurationElementPath& to) {
    const DocumentEditor::Path source = addressBelowRoot(from);
    const DocumentEditor::Path target = addressBelowRoot(to);
    if (source.size() < target.size() && std::ranges::mismatch(source, target).in1 == source.end())
        throw std::invalid_argument("An element cannot be moved into itself");
    return m_impl->note(m_impl->editor().move(source, target));
}

ConfigurationSaveReport ConfigurationFileEditor::save(std::chrono::milliseconds patience) {
    return reportOf(m_impl->file(), [&] { return m_impl->save(patience); });
}

ConfigurationSaveReport ConfigurationFileEditor::saveAs(const FileName& file) const {
    return reportOf(file, [&] { return storeNew(file, m_impl->print()); });
}

} // namespace Orvant
