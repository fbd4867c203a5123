// A system's and a user's document, a way to save and what a user changes, and perhaps what another
// process writes meanwhile: no lock is broken, what is saved is what is loaded the next time, saved
// again it is the same file, and a merge keeps both what was changed here and what was written
// there.

#include "FuzzInput.h"
#include "FuzzTarget.h"

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <FileHandling/FileUtilities.h>
#include <ObjectState.h>
#include <TestSupport.h>
#include <ValueVisit.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

namespace Orvant::Fuzzing {

namespace {

using Support::ObjectState;
using Support::TestObject;
using Registrations = std::vector<ConfigurationRegistration>;
using Strings = std::vector<std::string>;

const std::list<std::string> versions = {"1.0", "1.1", "2.0", "2.1"};

/// The objects of the engineering suite's and the editor's files.
Registrations makeObjects() {
    const auto view = TestObject::make("ViewSettings", [](TestObject& object) {
        object.add<std::string>("Background", "white").add("ShowGrid", true);
        object.add<std::string>("LengthUnit", "mm").add("Decimals", 2);
        object.addChild(new TestObject(*TestObject::make("Camera", [](TestObject& camera) {
            camera.add("FieldOfView", 45.0).add("Perspective", false).add("Presets", Strings());
        })));
        object.addChild(new TestObject(
            *TestObject::make("", [](TestObject& inlined) { inlined.add("Zoom", 1.5F); })));
    });
    const auto editor = TestObject::make("EditorSettings", [](TestObject& object) {
        object.add("AutosaveSeconds", 60U).add("RecentFiles", Strings{"a", "b"});
        object.addChild(new TestObject(*TestObject::make(
            "Window", [](TestObject& window) { window.add("RecentFiles", Strings()); })));
    });
    const auto plotter = [] {
        return TestObject::make("Plotter", [](TestObject& object) {
            object.add("Copies", 1).add<std::string>("Paper", "A4");
        });
    };
    const auto limits = TestObject::make("MachineLimits", [](TestObject& object) {
        object.add("MaxFeed", 2000).add("MaxSpindle", 8000U);
    });
    const auto other = TestObject::make("Editor", [](TestObject& object) {
        object.add("AutosaveSeconds", 60).add("GridSpacing", 2.5).add("SnapToGrid", false);
        object.addChild(new TestObject(*TestObject::make(
            "Network", [](TestObject& network) { network.add<std::string>("Server", ""); })));
    });
    return {{view, "ViewSettings"},           {editor, "EditorSettings"},
            {plotter(), "Plotter", "Hall 1"}, {plotter(), "Plotter", "Office"},
            {limits, "MachineLimits"},        {other, "Editor"}};
}

std::string labelOf(const ConfigurationRegistration& registration) {
    return registration.name + '[' + registration.key.value_or("") + "]/";
}

ObjectState stateOf(const Registrations& registrations, int digits) {
    ObjectState all;
    for (const ConfigurationRegistration& registration : registrations)
        for (const auto& [path, state] : Support::stateOf(*registration.object, digits))
            all[labelOf(registration) + path] = state;
    return all;
}

std::string textOf(const ObjectState& states) {
    std::ostringstream out;
    for (const auto& [path, state] : states) {
        out << path << ' ';
        PrintTo(state, &out);
        out << '\n';
    }
    return out.str();
}

/// The files of the process; one manager, so one pair of them.
struct Files {
    const Support::TemporaryDirectory directory;
    const FileName system = directory.file("system.xml");
    const FileName user = directory.file("user.xml");
};

Files& files() {
    static Files instance;
    return instance;
}

/// Writes a file, or takes it away where nothing is to be written.
void place(const FileName& file, const std::string& bytes) {
    if (bytes.empty())
        FileUtilities::remove(file);
    else
        Support::writeFile(file, bytes);
}

/// Starts the application anew.
Registrations load() {
    auto& manager = ConfigurationManager::getInstance();
    manager.reset();
    manager.setValidVersionList(versions);
    manager.setSystemAndUserConfigurationFile(files().system, files().user);
    Registrations registrations = makeObjects();
    manager.addConfigurationObjects(registrations);
    return registrations;
}

/// @return those of the objects that are found
Registrations loadFrom(AdvancedConfigReader& reader, const Registrations& registrations) {
    Registrations found;
    for (const ConfigurationRegistration& registration : registrations) {
        ConfigurationObject& object = *registration.object;
        const auto result =
            registration.key ? reader.getClassContents(registration.name, *registration.key, object)
                             : reader.getClassContents(registration.name, object);
        if (result == ConfigurationAccessResult::Success)
            found.push_back(registration);
    }
    return found;
}

/// @return what the system's file alone says of the objects that it holds
ObjectState stateOfSystem() {
    AdvancedConfigReader reader;
    reader.addFileSource(files().system, {}, AdvancedConfigReader::System, versions);
    return stateOf(loadFrom(reader, makeObjects()), Support::writtenDigits);
}

/// @return what both files say
ObjectState stateOfFiles() {
    AdvancedConfigReader reader;
    reader.addFileSource(files().system, {}, AdvancedConfigReader::System, versions);
    reader.addFileSource(files().user, {}, AdvancedConfigReader::User, versions);
    const Registrations registrations = makeObjects();
    loadFrom(reader, registrations);
    return stateOf(registrations, Support::writtenDigits);
}

/// @return the bytes of the user's file; nothing when there is none
std::string bytesOfUser() {
    return FileUtilities::exists(files().user) ? Support::readFile(files().user) : "";
}

void requireLocks(const ObjectState& system, const ObjectState& loaded) {
    for (const auto& [path, state] : system) {
        const Support::ValueState& actual = loaded.at(path);
        require(actual.locked == state.locked, "just what the system's file locks is locked", path);
        require(!state.locked || actual == state, "a locked value is the system's", path,
                state.text, actual.text);
    }
}

/// Sets a value to what a text says, if it says anything for its type.
void set(ConfigurationValueBase& value, const std::string& text) {
    Support::visitValue(value, [&]<typename T>(ConfigurationValue<T>& typed) {
        if constexpr (std::is_same_v<T, Strings>) {
            typed.setValue(Strings(text.size() % 4, text));
        } else if constexpr (std::is_same_v<T, std::string>) {
            typed.setValue(text);
        } else {
            std::istringstream in(text);
            T number{};
            if (in >> number)
                typed.setValue(number);
        }
    });
}

void collectUnlocked(ConfigurationObject& object, std::vector<ConfigurationValueBase*>& values) {
    if (!object.isEditable())
        return;
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        if ((*value)->isEditable())
            values.push_back(*value);
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child)
        collectUnlocked(**child, values);
}

/// A text that a document holds as it is.
std::string plain(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c < ' ' && c != '\t' && c != '\n' && c != '\r'; }, '?');
    return text;
}

/// Does what a user does: changes what is not locked, and resets.
/// @return whether there were resets
bool change(const Registrations& registrations, Operations& operations) {
    bool resets = false;
    while (!operations.atEnd()) {
        const auto& registration = registrations[operations.takeNumber(registrations.size())];
        const std::size_t choice = operations.takeNumber(16);
        if (choice < 2) {
            ConfigurationManager::getInstance().resetConfigurationObject(registration.name,
                                                                         choice == 1);
            resets = true;
            continue;
        }
        std::vector<ConfigurationValueBase*> values;
        collectUnlocked(*registration.object, values);
        const std::string text = plain(operations.takeText());
        if (!values.empty())
            set(*values[choice % values.size()], text);
    }
    return resets;
}

bool isSource(const FileName& file, const std::list<std::string>& accepted = versions) {
    AdvancedConfigReader reader;
    return reader.addFileSource(file, {}, AdvancedConfigReader::User, accepted) ==
           ConfigurationAccessResult::Success;
}

/// An element without a key stands in for those whose objects no longer differ from the system's
/// and so are not written.
bool hasDefaultPlotter() {
    AdvancedConfigReader reader;
    reader.addFileSource(files().user, {}, AdvancedConfigReader::User, versions);
    std::set<std::string> keys;
    reader.getKeys("Plotter", keys);
    return keys.contains("");
}

const std::string savedVersion = "2.1";

bool save() {
    return ConfigurationManager::getInstance().saveConfiguration(savedVersion);
}

void requireSameAfterRestart(const Registrations& saved, const ObjectState& system) {
    const std::string bytes = bytesOfUser();
    const ObjectState before = stateOf(saved, Support::writtenDigits);
    const ObjectState exactlyBefore = stateOf(saved, Support::allDigits);
    const Registrations loaded = load();
    requireLocks(system, stateOf(loaded, Support::writtenDigits));
    require(before == stateOf(loaded, Support::writtenDigits), "what is saved is loaded again",
            textOf(before), textOf(stateOf(loaded, Support::writtenDigits)), bytes);
    require(save(), "what was saved can be saved", bytes);
    // What was rounded for the file may now be what the system says.
    if (exactlyBefore == stateOf(loaded, Support::allDigits))
        require(bytes == bytesOfUser(), "a save after a restart changes nothing", bytes,
                bytesOfUser());
}

void requireNoLitter() {
    const auto names = Support::filesIn(files().directory);
    const std::set<std::string> known = {"system.xml", "user.xml", "user.xml.lock"};
    for (const std::string& name : names)
        require(known.contains(name), "a save leaves no other files", name);
}

void requireUnchanged(const std::string& bytes) {
    require(bytesOfUser() == bytes,
            "a save that fails, or has nothing to save, leaves the file as it was", bytes);
}

/// Merges changes into what another process wrote.
/// @param before the state in which the objects were loaded
/// @param others bytes of the user's file by now
void requireMerge(const Registrations& registrations, const ObjectState& before,
                  const std::string& others) {
    const ObjectState changed = stateOf(registrations, Support::writtenDigits);
    place(files().user, others);
    if (!isSource(files().user) || hasDefaultPlotter())
        return;
    ObjectState expected = stateOfFiles();
    for (auto& [path, state] : expected)
        if (changed.at(path) != before.at(path))
            state = changed.at(path);
    require(save(), "what another process wrote can be merged with", others);
    const std::string merged = Support::readFile(files().user);
    const ObjectState loaded = stateOf(load(), Support::writtenDigits);
    require(loaded == expected, "a merge keeps what was changed here and written there",
            textOf(before), textOf(expected), textOf(loaded), others, merged);
}

} // namespace

void runTarget(std::span<const std::uint8_t> input) {
    const auto parts = partsOf(input, 4);
    place(files().system, parts[0]);
    place(files().user, parts[1]);
    const bool userIsRead = parts[1].empty() || isSource(files().user);
    const ObjectState system = stateOfSystem();

    auto& manager = ConfigurationManager::getInstance();
    Operations operations(parts[2]);
    const auto mode = static_cast<ConfigurationManager::SaveMode>(operations.takeNumber(3));
    const bool merges = mode == ConfigurationManager::Merge;
    const bool hasOperations = !operations.atEnd();
    manager.setSaveMode(mode);
    const Registrations registrations = load();
    const ObjectState before = stateOf(registrations, Support::writtenDigits);
    requireLocks(system, before);
    const bool resets = change(registrations, operations);
    requireLocks(system, stateOf(registrations, Support::writtenDigits));

    const bool defaultPlotter = hasDefaultPlotter();
    if (merges && userIsRead && !parts[1].empty() && !parts[3].empty() && !resets) {
        requireMerge(registrations, before, parts[3]);
        return;
    }
    const bool isCurrent = isSource(files().user, {savedVersion});
    const bool saved = save();
    requireNoLitter();
    if (!saved || (merges && isCurrent && !hasOperations))
        requireUnchanged(parts[1]);
    if (!saved)
        return;
    require(userIsRead || !merges, "a merge spares a file that cannot be read", parts[1]);
    const std::string bytes = bytesOfUser();
    require(save() && bytes == bytesOfUser(), "a second save changes nothing", bytes,
            bytesOfUser());
    // A merge takes what a reset leaves for the state that was loaded, so it does not write it.
    if (userIsRead && !defaultPlotter && !(merges && resets))
        requireSameAfterRestart(registrations, system);
}

} // namespace Orvant::Fuzzing
