#include <ConfigurationFramework/SettingVisitor.h>

#include <ConfigurationFramework/ConfigurationObject.h>

#include <cstddef>

namespace Orvant {

SettingVisitor::~SettingVisitor() = default;

bool SettingVisitor::enterObject(ConfigurationObject& /*child*/,
                                 const std::optional<std::string>& /*key*/) {
    return true;
}

void SettingVisitor::leaveObject(ConfigurationObject& /*child*/) {}

bool SettingVisitor::enterKind(ConfigurationObject& /*prototype*/) {
    return false;
}

void SettingVisitor::leaveKind(ConfigurationObject& /*prototype*/) {}

bool SettingVisitor::enterInline(ConfigurationObject& /*child*/) {
    return true;
}

void SettingVisitor::leaveInline(ConfigurationObject& /*child*/) {}

void visitSettings(ConfigurationObject& object, SettingVisitor& visitor) {
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        visitor.visitValue(**value);
    ConfigurationObject* const prototype = object.getChildPrototype();
    if (prototype != nullptr && visitor.enterKind(*prototype)) {
        visitSettings(*prototype, visitor);
        visitor.leaveKind(*prototype);
    }
    for (std::size_t i = 0; i < object.getConfigurationObjectsSize(); ++i) {
        ConfigurationObject& child = *object.beginObjectIterator()[static_cast<std::ptrdiff_t>(i)];
        if (child.getName().empty()) {
            if (visitor.enterInline(child)) {
                visitSettings(child, visitor);
                visitor.leaveInline(child);
            }
        } else if (visitor.enterObject(child, object.getChildKey(i))) {
            visitSettings(child, visitor);
            visitor.leaveObject(child);
        }
    }
}

} // namespace Orvant
