#include "checking/NestedLists.h"

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/SimpleConfigReader.h>

#include <optional>
#include <span>

namespace Orvant::Tool {

namespace {

using Steps = std::span<const PathStep>;

bool hasElement(ConfigReader& reader, Steps steps);

/// Follows names from the element of an object, as a load does.
class Follower : public ConfigurationObject {
public:
    explicit Follower(Steps steps)
        : ConfigurationObject("", "", LoadAndSave, AllProducts), m_steps(steps) {}

    void loadContent(ConfigReader& reader) override { m_hasArrived = hasElement(reader, m_steps); }
    ConfigurationObject* createConfigurationObject() const override {
        return new Follower(m_steps);
    }
    bool hasArrived() const { return m_hasArrived; }

private:
    Steps m_steps;
    bool m_hasArrived = false;
};

/// @return whether a file has all elements on the way
bool hasElement(ConfigReader& reader, Steps steps) {
    if (steps.empty())
        return true;
    const PathStep& step = steps.front();
    Follower follower(steps.subspan(1));
    if (step.isKind || step.key)
        reader.getClassContents(step.name, step.key.value_or(""), follower);
    else
        reader.getClassContents(step.name, follower);
    return follower.hasArrived();
}

/// A reader of a file; none: the file is not used.
std::unique_ptr<SimpleConfigReader> readerOf(const FileName& file, Session& session) {
    try {
        return std::make_unique<SimpleConfigReader>(file, "",
                                                    session.catalogue().getAcceptedVersions());
    } catch (const ConfigException&) {
        return nullptr;
    }
}

struct List {
    const ConfigurationOrigin& origin;
    std::vector<PathStep> steps;
};

std::vector<List> listsAmong(const std::vector<ConfigurationOrigin>& origins, Session& session) {
    std::vector<List> lists;
    for (const ConfigurationOrigin& origin : origins)
        if (auto found = session.settings().find(origin.path);
            found && found->item->value != nullptr && found->item->value->isList())
            lists.push_back({origin, std::move(found->steps)});
    return lists;
}

} // namespace

std::vector<Finding> findNestedLists(Session& session, const StandardConfigurationFiles& files,
                                     const std::vector<ConfigurationOrigin>& origins) {
    const std::vector<List> lists = listsAmong(origins, session);
    std::vector<Finding> findings;
    if (lists.empty())
        return findings;
    for (const bool isSystem : {true, false}) {
        const FileName& file = isSystem ? files.system : files.user;
        const auto reader = file.empty() ? nullptr : readerOf(file, session);
        if (reader == nullptr)
            continue;
        for (const auto& [origin, steps] : lists)
            if ((isSystem ? origin.systemValue : origin.userValue) && !hasElement(*reader, steps))
                findings.push_back(
                    {Finding::Warning, "NestedList", file,
                     isSystem ? origin.systemLine : origin.userLine, 0, origin.path,
                     "the list is in the element of another object, where it is read all the same",
                     ""});
    }
    return findings;
}

} // namespace Orvant::Tool
