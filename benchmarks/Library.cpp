#include "Library.h"

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <list>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

namespace Orvant::Benchmarks {

namespace {

const std::list<std::string> s_versions{documentVersion};

/// What makes a value of each type.
constexpr auto makers = forEachType<Value>([]<typename T>() {
    return +[](const std::string& name) -> ConfigurationValueBase* {
        return new ConfigurationValue<T>(
            name, "Parameter of the tool", T{}, ConfigurationItemBase::Visible,
            ConfigurationItemBase::LoadAndSave, ConfigurationItemBase::AllProducts);
    };
});

class ToolSettings : public ConfigurationObject {
public:
    ToolSettings(const std::string& name, std::size_t values)
        : ConfigurationObject(name, "Settings of a tool", LoadAndSave, AllProducts) {
        for (std::size_t value = 0; value < values; ++value)
            addConfigurationValue(makers[value % makers.size()](valueName(value)));
    }
    ConfigurationObject* createConfigurationObject() const override {
        return new ToolSettings(getName(), getConfigurationValuesSize());
    }
};

template <typename T>
ConfigurationValue<T>& valueIn(const ConfigurationObject& object, std::size_t value) {
    return static_cast<ConfigurationValue<T>&>(
        **(object.beginValueIterator() + static_cast<std::ptrdiff_t>(value)));
}

double weightOfAll(const std::vector<ConfigurationRegistration>& registrations) {
    double sum = 0.0;
    for (const auto& registration : registrations) {
        const ConfigurationObject& object = *registration.object;
        for (std::size_t value = 0; value < object.getConfigurationValuesSize(); ++value)
            std::visit([&]<typename T>(
                           const T&) { sum += weightOf(valueIn<T>(object, value).getValue()); },
                       valueOf(0, value, 0));
    }
    return sum;
}

ConfigurationManager& managerOf(const SettingsFiles& files) {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList(s_versions);
    manager.setSystemAndUserConfigurationFile(files.systemXml(), files.userXml());
    return manager;
}

/// The objects; dropping them also removes them from the manager.
Loaded keep(std::vector<ConfigurationRegistration> registrations) {
    const std::shared_ptr<std::vector<ConfigurationRegistration>> held(
        new std::vector(std::move(registrations)),
        [](const std::vector<ConfigurationRegistration>* kept) {
            delete kept;
            ConfigurationManager::getInstance().reset();
        });
    return {held, [objects = held.get()] { return weightOfAll(*objects); }};
}

} // namespace

std::vector<ConfigurationRegistration> declare(Shape shape) {
    std::vector<ConfigurationRegistration> registrations;
    registrations.reserve(shape.objects);
    for (std::size_t object = 0; object < shape.objects; ++object)
        registrations.push_back(
            {std::make_shared<ToolSettings>(objectName(object), shape.values), objectName(object)});
    return registrations;
}

Loaded loadInBatch(const SettingsFiles& files) {
    auto registrations = declare(files.shape());
    managerOf(files).addConfigurationObjects(registrations);
    return keep(std::move(registrations));
}

Loaded loadOneByOne(const SettingsFiles& files) {
    auto registrations = declare(files.shape());
    auto& manager = managerOf(files);
    for (const auto& registration : registrations)
        manager.addConfigurationObject(registration.object, registration.name);
    return keep(std::move(registrations));
}

int readOne(const SettingsFiles& files) {
    const auto [object, value] = probeOf(files.shape());
    AdvancedConfigReader reader;
    reader.addFileSource(files.systemXml(), {objectName(object)}, AdvancedConfigReader::System,
                         s_versions);
    reader.addFileSource(files.userXml(), {objectName(object)}, AdvancedConfigReader::User,
                         s_versions);
    int number = 0;
    bool editable = true;
    reader.getInt(valueName(value), number, editable);
    return number;
}

bool checkUserFile(const SettingsFiles& files) {
    return !managerOf(files).hasUserConfigFileErrors();
}

LibraryStore::LibraryStore(const SettingsFiles& files, SaveMode mode)
    : m_registrations(declare(files.shape())) {
    ConfigurationManager::getInstance().setSaveMode(mode);
    managerOf(files).addConfigurationObjects(m_registrations);
}

LibraryStore::~LibraryStore() {
    ConfigurationManager::getInstance().reset();
    ConfigurationManager::getInstance().setSaveMode(SaveMode::InPlace);
}

void LibraryStore::set(std::size_t object, std::size_t value, const Value& newValue) {
    std::visit(
        [&]<typename T>(const T& held) {
            valueIn<T>(*m_registrations[object].object, value).setValue(held);
        },
        newValue);
}

bool LibraryStore::save() {
    return ConfigurationManager::getInstance().saveConfiguration(documentVersion);
}

bool LibraryStore::saveInFull(const std::string& file) {
    return ConfigurationManager::getInstance().saveConfigurationToFile(file, documentVersion);
}

} // namespace Orvant::Benchmarks
