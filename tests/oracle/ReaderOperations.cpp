#include "ReaderOperations.h"

#include <ReaderQuestions.h>

namespace Orvant::Support {

void askAtRandom(ConfigReader& reader, Random& random, std::ostream& record) {
    const std::string& name = anyOf(fewNames, random);
    const std::string& key = anyOf(fewKeys, random);
    const std::string& otherKey = anyOf(fewKeys, random);
    const auto operation = random() % 9;
    record << "operation " << operation << ' ' << name << ' ' << key << '\n';
    Recorder object(fewNames, 1, record);
    switch (operation) {
    case 0:
        record << reader.tagExists(name);
        return;
    case 1:
        record << reader.getClassContents(name, object);
        return;
    case 2:
        record << reader.getClassContents(name, key, object);
        return;
    case 3: {
        std::vector<ConfigurationObject*> objects(2, &object);
        record << reader.getClassContents(name, {key, otherKey}, objects);
        return;
    }
    case 4:
        record << reader.findAndGetClassContents(name, object);
        return;
    case 5:
        record << reader.findAndGetClassContents(name, key, object);
        return;
    case 6:
        record << reader.getClassContents(object);
        return;
    case 7:
        record << reader.createConfigurationObjects(name, [&](const std::string& found) {
            record << "callback " << found << '\n';
            askEverything(reader, "Value", record);
        });
        return;
    default:
        askEverything(reader, name, record);
    }
}

} // namespace Orvant::Support
