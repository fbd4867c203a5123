#include <ObjectState.h>

#include <ValueVisit.h>

#include <locale>
#include <sstream>

namespace Orvant::Support {

namespace {

void write(std::ostream& out, const std::vector<std::string>& items) {
    for (const std::string& item : items)
        out << '[' << item << ']';
}

void write(std::ostream& out, const auto& value) {
    out << value;
}

void addStates(const ConfigurationObject& object, const std::string& path, bool locked, int digits,
               ObjectState& states) {
    locked = locked || !object.isEditable();
    const std::string prefix = path + object.getName() + '/';
    for (const ConfigurationValueBase* value : object.getConfigurationValues())
        states[prefix + value->getName()] = {textOf(*value, digits),
                                             locked || !value->isEditable()};
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child)
        addStates(**child, prefix, locked, digits, states);
}

} // namespace

std::string textOf(const ConfigurationValueBase& value, int digits) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(digits);
    visitValue(value, [&](const auto& typed) { write(out, typed.getValue()); });
    return out.str();
}

ObjectState stateOf(const ConfigurationObject& object, int digits) {
    ObjectState states;
    addStates(object, "", false, digits, states);
    return states;
}

} // namespace Orvant::Support
