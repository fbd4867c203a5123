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

thread_local SharedReference* SharedReference::s_innermost = nullptr;

SharedReference::SharedReference(const ConfigurationObject& object, const ConfigReader& reader)
    : m_object(object), m_reader(reader), m_outer(std::exchange(s_innermost, this)) {}

SharedReference::~SharedReference() {
    s_innermost = m_outer;
}

SharedReference* SharedReference::find(const ConfigurationObject& object,
                                       const ConfigReader& reader) {
    SharedReference* shared = s_innermost;
    while (shared != nullptr && (&shared->m_object != &object || &shared->m_reader != &reader))
        shared = shared->m_outer;
    return shared;
}

std::shared_ptr<const ConfigurationObject> SharedReference::of(const ConfigurationObject& object,
                                                               ConfigReader& reader) {
    SharedReference* const shared = find(object, reader);
    if (shared == nullptr)
        return load(object, reader);
    if (shared->m_reference == nullptr)
        shared->m_reference = load(object, reader);
    return shared->m_reference;
}

void SharedReference::forget(const ConfigReader& reader) {
    for (SharedReference* shared = s_innermost; shared != nullptr; shared = shared->m_outer)
        if (&shared->m_reader == &reader)
            shared->m_reference.reset();
}

} // namespace Orvant
