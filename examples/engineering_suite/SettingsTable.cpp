#include "SettingsTable.h"

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigurationValue.h>
#include <FileHandling/FileName.h>

#include <algorithm>
#include <array>
#include <iomanip>
#include <memory>
#include <sstream>

namespace Suite {

namespace {

using Orvant::AdvancedConfigReader;
using Orvant::ConfigurationObject;
using Orvant::ConfigurationValue;
using Orvant::ConfigurationValueBase;
using Row = std::array<std::string, 4>;

template <typename T>
const T& get(const ConfigurationValueBase& value) {
    return dynamic_cast<const ConfigurationValue<T>&>(value).getValue();
}

std::string text(const ConfigurationValueBase& value) {
    std::ostringstream out;
    out << std::boolalpha;
    switch (value.getValueType()) {
    case ConfigurationValueBase::BoolValue:
        out << get<bool>(value);
        break;
    case ConfigurationValueBase::IntValue:
        out << get<int>(value);
        break;
    case ConfigurationValueBase::UnsignedIntValue:
        out << get<unsigned int>(value);
        break;
    case ConfigurationValueBase::DoubleValue:
        out << get<double>(value);
        break;
    case ConfigurationValueBase::FloatValue:
        out << get<float>(value);
        break;
    case ConfigurationValueBase::StringValue:
        out << get<std::string>(value);
        break;
    case ConfigurationValueBase::StringVectorValue:
        for (const std::string& item : get<std::vector<std::string>>(value))
            out << '[' << item << ']';
        break;
    }
    return out.str();
}

/// The object as one file alone fills it.
std::unique_ptr<ConfigurationObject> fromOneFile(const Registered& setting, const std::string& file,
                                                 const Layers& layers) {
    std::unique_ptr<ConfigurationObject> object(setting.object->createConfigurationObject());
    AdvancedConfigReader reader;
    reader.addFileSource(file, {}, AdvancedConfigReader::User, layers.versions);
    if (setting.key)
        reader.getClassContents(object->getName(), *setting.key, *object);
    else
        reader.getClassContents(object->getName(), *object);
    return object;
}

/// Adds the rows of an object that the files hold as `system` and `user`.
void addRows(const std::string& place, const ConfigurationObject& object,
             const ConfigurationObject& system, const ConfigurationObject& user, bool parentLocked,
             std::vector<Row>& rows) {
    const bool objectLocked = parentLocked || !object.isEditable();
    auto inSystem = system.beginValueIterator();
    auto inUser = user.beginValueIterator();
    for (const ConfigurationValueBase* value : object.getConfigurationValues()) {
        const bool locked = objectLocked || !value->isEditable();
        const std::string source = !value->hasValue()                 ? "default"
                                   : !locked && (*inUser)->hasValue() ? "user"
                                   : (*inSystem)->hasValue()          ? "system"
                                                                      : "default";
        rows.push_back(
            {place + '/' + value->getName(), text(*value), source, locked ? "locked" : ""});
        ++inSystem;
        ++inUser;
    }
    auto systemChild = system.beginObjectIterator();
    auto userChild = user.beginObjectIterator();
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child) {
        std::string childPlace = place;
        if (const std::string& name = (*child)->getName(); !name.empty())
            childPlace.append("/").append(name);
        addRows(childPlace, **child, **systemChild++, **userChild++, objectLocked, rows);
    }
}

} // namespace

std::string settingsTable(const std::vector<Registered>& settings, const Layers& layers) {
    std::vector<Row> rows = {{"Setting", "Value", "Source", "Lock"}};
    for (const Registered& setting : settings) {
        const std::string& name = setting.object->getName();
        addRows(setting.key ? name + '[' + *setting.key + ']' : name, *setting.object,
                *fromOneFile(setting, layers.systemFile, layers),
                *fromOneFile(setting, layers.userFile, layers), false, rows);
    }
    Row underline;
    for (std::size_t column = 0; column < underline.size(); ++column) {
        std::size_t width = 0;
        for (const Row& row : rows)
            width = std::max(width, row[column].size());
        underline[column].assign(width, '-');
    }
    rows.insert(rows.begin() + 1, underline);

    std::ostringstream table;
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            table << std::left << std::setw(static_cast<int>(underline[column].size() + 2))
                  << row[column];
        table << '\n';
    }
    return table.str();
}

} // namespace Suite
