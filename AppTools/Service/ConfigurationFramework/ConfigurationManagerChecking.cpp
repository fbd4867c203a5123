#include <ConfigurationFramework/ConfigurationManagerChecking.h>

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ValueText.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <map>
#include <optional>
#include <set>
#include <utility>

namespace Orvant {

namespace {

using Element = DocumentTree::Element;

constexpr const char* nothingLoaded = "no file was loaded";

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

/// A value as it stands in a sentence.
std::string shown(const std::string& text, const PlacedSetting& setting) {
    return shownText(text, *setting.value);
}

} // namespace

/// The check of one document.
class ConfigurationManagerChecking::Document {
public:
    Document(const LocatedLayers& layers, FileLayer layer,
             const std::vector<PlacedSetting>& settings);

    void check(std::vector<ConfigurationProblem>& problems);

private:
    /// What an element is to readers.
    enum class Role { Group, Value, List, Item, Ignored };
    struct State {
        Role role = Role::Ignored;
        std::string path = {};
    };
    /// The settings of one tag in an element.
    struct Declaration {
        bool isKeyed = false;
        std::set<std::string> keys = {};
    };

    const LocatedDocument::Item& item(Element element) const { return m_document.items()[element]; }
    std::string pathOf(Element element) const;
    void add(ConfigurationProblem::Kind kind, Element element, const std::string& text);
    void checkSetting(Element element, const PlacedSetting& setting);
    void checkText(Element element, const PlacedSetting& setting);
    void checkOther(Element element);
    void checkUndeclared(Element element);
    void checkLock(Element element, const std::string& obstacle);
    bool isTaken(const PlacedSetting& setting) const;
    std::string replacementOf(const PlacedSetting& setting) const;
    std::string takenFrom(FileLayer layer, const PlacedSetting& setting) const;

    const LocatedLayers& m_layers;
    FileLayer m_layer;
    LocatedDocument& m_document;
    DocumentTree& m_tree;
    std::vector<const PlacedSetting*> m_settings; ///< by element; null: none is read from it
    std::map<Element, std::map<std::string, Declaration>> m_declarations; ///< by parent and tag
    std::vector<State> m_states;                                          ///< by element
    std::vector<ConfigurationProblem>* m_problems = nullptr;
};

ConfigurationManagerChecking::Document::Document(const LocatedLayers& layers, FileLayer layer,
                                                 const std::vector<PlacedSetting>& settings)
    : m_layers(layers),
      m_layer(layer),
      m_document(*layers.document(layer)),
      m_tree(m_document.tree()),
      m_settings(m_document.items().size(), nullptr),
      m_states(m_document.items().size()) {
    for (const PlacedSetting& setting : settings) {
        const Element element = setting.elements[layer];
        if (element != DocumentTree::none && m_settings[element] == nullptr)
            m_settings[element] = &setting;
        if (setting.parents[layer] == DocumentTree::none)
            continue;
        Declaration& declaration = m_declarations[setting.parents[layer]][setting.tag];
        if (setting.key) {
            declaration.isKeyed = true;
            declaration.keys.insert(throughDocument(*setting.key));
        }
    }
}

void ConfigurationManagerChecking::Document::check(std::vector<ConfigurationProblem>& problems) {
    m_problems = &problems;
    m_states[DocumentTree::root] = {Role::Group};
    checkLock(DocumentTree::root, "the root cannot be locked");
    for (Element element = DocumentTree::root + 1; element < m_states.size(); ++element) {
        if (item(element).tag.empty()) // a reference to an entity
            m_states[element] = m_states[item(element).parent];
        else if (const PlacedSetting* const setting = m_settings[element])
            checkSetting(element, *setting);
        else
            checkOther(element);
    }
}

std::string ConfigurationManagerChecking::Document::pathOf(Element element) const {
    const std::string& parent = m_states[item(element).parent].path;
    return (parent.empty() ? "" : parent + '/') + m_document.name(element);
}

void ConfigurationManagerChecking::Document::add(ConfigurationProblem::Kind kind, Element element,
                                                 const std::string& text) {
    const DocumentPlace& place = item(element).place;
    m_problems->push_back({kind, m_layers.file(m_layer).file(), place.line, place.column,
                           m_states[element].path, text});
}

void ConfigurationManagerChecking::Document::checkSetting(Element element,
                                                          const PlacedSetting& setting) {
    m_states[element] = {setting.isOpaque  ? Role::Ignored
                         : setting.isGroup ? Role::Group
                         : setting.isList  ? Role::List
                                           : Role::Value,
                         setting.path};
    if (setting.value != nullptr && setting.isLoaded)
        checkText(element, setting);
    checkLock(element, setting.obstacleToLock(m_layer, m_layers));
}

void ConfigurationManagerChecking::Document::checkText(Element element,
                                                       const PlacedSetting& setting) {
    const Conversion conversion = convert(m_document, element, *setting.value);
    const std::string said = saidIn(m_document, element, setting.isList);
    const std::string end = "; " + replacementOf(setting);
    switch (conversion.kind) {
    case Conversion::Whole:
        break;
    case Conversion::Partly:
        add(ConfigurationProblem::PartlyConverted, element,
            said + (isTaken(setting) ? " was read as " : " reads as ") +
                shown(conversion.result, setting) + (isTaken(setting) ? "" : end));
        break;
    case Conversion::OutOfRange:
    case Conversion::NotAllowed:
        add(ConfigurationProblem::OutOfRange, element,
            refusalOf(conversion, said, *setting.value) + end);
        break;
    case Conversion::None:
    case Conversion::NoText:
        add(ConfigurationProblem::NotConverted, element,
            refusalOf(conversion, said, *setting.value) + end);
        break;
    }
}

/// Whether the value comes from this file.
bool ConfigurationManagerChecking::Document::isTaken(const PlacedSetting& setting) const {
    return m_layers.layers().mayLoad() && setting.decidingLayer(m_layers) == m_layer;
}

/// What is taken where a text of this file is not a value as it stands.
std::string
ConfigurationManagerChecking::Document::replacementOf(const PlacedSetting& setting) const {
    if (!m_layers.layers().mayLoad())
        return nothingLoaded;
    const auto layer = setting.decidingLayer(m_layers);
    return (layer ? takenFrom(*layer, setting)
                  : "the default " + shown(defaultTextOf(*setting.value), setting)) +
           " was taken";
}

std::string ConfigurationManagerChecking::Document::takenFrom(FileLayer layer,
                                                              const PlacedSetting& setting) const {
    LocatedDocument& document = *m_layers.document(layer);
    const Element element = setting.elements[layer];
    const Conversion conversion = convert(document, element, *setting.value);
    std::string result = shown(conversion.result, setting);
    if (layer == m_layer)
        return result;
    return (layer == SystemLayer ? "the system file's " : "the user file's ") +
           saidIn(document, element, setting.isList) +
           (conversion.kind == Conversion::Whole ? "" : ", read as " + result + ',');
}

/// Checks an element that no setting is read from.
void ConfigurationManagerChecking::Document::checkOther(Element element) {
    const State& parent = m_states[item(element).parent];
    const bool isInList = parent.role == Role::List;
    m_states[element] = {Role::Ignored, parent.path};
    if (isInList && item(element).tag == "item") {
        m_states[element].role = Role::Item;
        checkLock(element, "an item of a list cannot be locked");
    } else if (parent.role != Role::Ignored) {
        m_states[element].path = pathOf(element);
        checkUndeclared(element);
        checkLock(element, "the element is not loaded");
    }
}

void ConfigurationManagerChecking::Document::checkUndeclared(Element element) {
    const Element parent = item(element).parent;
    const std::string& tag = item(element).tag;
    const auto declarations = m_declarations.find(parent);
    const Declaration* const declaration =
        declarations == m_declarations.end() || !declarations->second.contains(tag)
            ? nullptr
            : &declarations->second.at(tag);
    const std::string& key = m_tree.key(element);
    if (item(parent).tag.empty())
        add(ConfigurationProblem::Unknown, element,
            quoted(tag) + " comes from an entity, where it is not read; it was ignored");
    else if (declaration == nullptr)
        add(ConfigurationProblem::Unknown, element,
            "no registered object declares " + quoted(tag) + "; it was ignored");
    else if (!declaration->isKeyed || declaration->keys.contains(key))
        add(ConfigurationProblem::Twice, element,
            "only the first " + quoted(tag) + " is read; this one was ignored");
    else if (!key.empty())
        add(ConfigurationProblem::Unknown, element,
            "no registered object declares " + quoted(tag) + " with the key " + quoted(key) +
                "; it was ignored");
    else if (m_tree.findChildWithoutKey(parent, tag) != element)
        add(ConfigurationProblem::Twice, element,
            "only the last " + quoted(tag) + " without a key is read; this one was ignored");
}

/// @param obstacle why a lock has no effect; empty: it has one
void ConfigurationManagerChecking::Document::checkLock(Element element,
                                                       const std::string& obstacle) {
    const std::optional<std::string>& editable = item(element).editable;
    if (!editable || editable == "true")
        return;
    if (editable != "false")
        add(ConfigurationProblem::OddLock, element,
            "editable=" + quoted(*editable) + " is neither true nor false; " +
                (m_layers.layers().mayLoad() ? "true was taken" : nothingLoaded));
    else if (!obstacle.empty())
        add(ConfigurationProblem::OddLock, element,
            "editable=\"false\" has no effect: " + obstacle);
}

std::vector<ConfigurationProblem> ConfigurationManagerChecking::problems() const {
    std::vector<ConfigurationProblem> problems;
    for (const FileLayer layer : {SystemLayer, UserLayer}) {
        if (m_layers.document(layer) != nullptr)
            Document(m_layers, layer, m_settings.settings()).check(problems);
        else
            checkFile(layer, problems);
    }
    return problems;
}

/// Tells why a file was not loaded.
void ConfigurationManagerChecking::checkFile(FileLayer layer,
                                             std::vector<ConfigurationProblem>& problems) const {
    const LayerDocument& file = m_layers.file(layer);
    const bool isRequired = layer == SystemLayer && m_layers.layers().isSystemRequired;
    const auto add = [&](ConfigurationProblem::Kind kind, const DocumentPlace& place,
                         const std::string& text) {
        problems.push_back(
            {kind, file.file(), place.line, place.column, "",
             text + "; " + (isRequired ? nothingLoaded : "nothing of the file was loaded")});
    };
    if (!file.exists()) {
        if (isRequired)
            add(ConfigurationProblem::Unreadable, {}, "the required system file is missing");
        return;
    }
    if (file.error()) {
        add(ConfigurationProblem::Unreadable, {},
            "the file cannot be read: " + file.error().message());
        return;
    }
    const LocatedDocument document(file.bytes());
    if (const auto& error = document.error()) {
        add(ConfigurationProblem::Damaged, error->place, "the file is damaged: " + error->message);
        return;
    }
    std::string accepted;
    for (const std::string& version : file.acceptedVersions())
        accepted += (accepted.empty() ? "" : ", ") + quoted(version);
    add(ConfigurationProblem::OtherVersion, {},
        "the version " + quoted(document.version()) + " is not accepted, only " +
            (accepted.empty() ? "none" : accepted) + " is");
}

} // namespace Orvant
