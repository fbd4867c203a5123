#include "WriterOperations.h"

#include "DomConfigReader.h"

namespace Orvant::Support {

std::shared_ptr<TestObject> randomLoadedObject(Random& random) {
    auto object = randomObject(anyOf(fewNames, random), random);
    if (oneIn(2, random)) {
        DomConfigReader reader(randomDocument("<Configuration>", random, 3));
        reader.getClassContents(object->getName(), *object);
    }
    if (oneIn(2, random))
        setRandomValues(*object, random);
    return object;
}

} // namespace Orvant::Support
