#include <ConfigurationFramework/SharedReference.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/model/FreshObject.h>

#include <utility>

namespace Orvant {

namespace {

std::shared_ptr<const ConfigurationObject> load(const ConfigurationObject& object,
                                                ConfigReader& reader) {
    auto reference = makeFresh(object);
    reader.getClassContents(object.getName(), *reference);
    return reference;
}

} // namespace

SharedReference::SharedReference(const ConfigurationObject& object, ConfigReader& reader)
    : m_object(object), m_reader(reader), m_outer(std::exchange(reader.m_sharedReference, this)) {}

SharedReference::~SharedReference() {
    m_reader.m_sharedReference = m_outer;
}

std::shared_ptr<const ConfigurationObject> SharedReference::of(const ConfigurationObject& object,
                                                               ConfigReader& reader) {
    SharedReference* const shared = reader.m_sharedReference;
    if (shared == nullptr || &shared->m_object != &object)
        return load(object, reader);
    if (shared->m_reference == nullptr)
        shared->m_reference = load(object, reader);
    return shared->m_reference;
}

} // namespace Orvant
