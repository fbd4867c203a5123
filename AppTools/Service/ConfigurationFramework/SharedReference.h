#pragma once

#include <memory>

namespace Orvant {

class ConfigReader;
class ConfigurationObject;

/// While it lives, one reference serves all questions about an object to a reader: whether the
/// object has something to save, and what.
class SharedReference {
public:
    SharedReference(const ConfigurationObject& object, const ConfigReader& reader);
    SharedReference(const SharedReference&) = delete;
    SharedReference& operator=(const SharedReference&) = delete;
    ~SharedReference();

    /// @return what the reader holds for the object, in a new object of its class
    /// @throws std::logic_error when the factory of the object returns null
    static std::shared_ptr<const ConfigurationObject> of(const ConfigurationObject& object,
                                                         ConfigReader& reader);
    /// Has the next question load a new one: the reader stands elsewhere, or has other sources.
    static void forget(const ConfigReader& reader);

private:
    static SharedReference* find(const ConfigurationObject& object, const ConfigReader& reader);

    /// Of this thread, the last one made: an object may save others while it is saved.
    static thread_local SharedReference* s_innermost;

    const ConfigurationObject& m_object;
    const ConfigReader& m_reader;
    SharedReference* const m_outer;
    std::shared_ptr<const ConfigurationObject> m_reference; ///< null until it is asked for
};

} // namespace Orvant
