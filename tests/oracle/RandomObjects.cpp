#include "RandomObjects.h"

#include <ValueVisit.h>

#include <array>

namespace Orvant::Support {

namespace {

using Strings = std::vector<std::string>;

/// What a random object consists of, to make it again and again.
struct Shape {
    struct Value {
        std::string name;
        ConfigurationValueBase::ValueType type;
        ConfigurationItemBase::Persistence persistence;
        std::string description;
        ConfigurationItemBase::ProductType products = ConfigurationItemBase::AllProducts;
    };
    std::string name;
    ConfigurationItemBase::Persistence persistence;
    std::vector<Value> values;
    std::vector<Shape> children;
    ConfigurationItemBase::ProductType products = ConfigurationItemBase::AllProducts;
};

Shape randomShape(const std::string& name, int depth, Random& random) {
    using Base = ConfigurationValueBase;
    constexpr std::array types = {Base::BoolValue,         Base::IntValue,   Base::UnsignedIntValue,
                                  Base::DoubleValue,       Base::FloatValue, Base::StringValue,
                                  Base::StringVectorValue, Base::StringValue};
    Shape shape{.name = name,
                .persistence = ConfigurationItemBase::LoadAndSave,
                .values = {},
                .children = {}};
    for (const std::string& valueName : fewNames)
        if (oneIn(3, random))
            shape.values.push_back({valueName, anyOf(types, random), randomPersistence(random),
                                    oneIn(3, random) ? "about " + valueName : "",
                                    randomProducts(random)});
    if (depth == 0)
        return shape;
    for (auto count = random() % 3; count > 0; --count) {
        const std::string childName = oneIn(5, random) ? "" : anyOf(fewNames, random);
        shape.children.push_back(randomShape(childName, depth - 1, random));
        shape.children.back().persistence = randomPersistence(random);
        shape.children.back().products = randomProducts(random);
    }
    return shape;
}

Shape plainShape(const std::string& name, int depth, Random& random) {
    using Base = ConfigurationValueBase;
    constexpr std::array types = {Base::BoolValue,   Base::IntValue,   Base::UnsignedIntValue,
                                  Base::DoubleValue, Base::FloatValue, Base::StringValue};
    Shape shape{.name = name,
                .persistence = ConfigurationItemBase::LoadAndSave,
                .values = {},
                .children = {}};
    for (const std::string& itemName : fewNames)
        if (depth > 0 && oneIn(3, random))
            shape.children.push_back(plainShape(itemName, depth - 1, random));
        else if (oneIn(2, random))
            shape.values.push_back({itemName, anyOf(types, random),
                                    ConfigurationItemBase::LoadAndSave,
                                    oneIn(3, random) ? "about " + itemName : ""});
    return shape;
}

void addValue(TestObject& object, const Shape::Value& value) {
    const auto add = [&](const auto& defaultValue) {
        object.add(value.name, defaultValue, value.persistence, value.products, value.description);
    };
    switch (value.type) {
    case ConfigurationValueBase::BoolValue:
        return add(true);
    case ConfigurationValueBase::IntValue:
        return add(12);
    case ConfigurationValueBase::UnsignedIntValue:
        return add(7U);
    case ConfigurationValueBase::DoubleValue:
        return add(1.5);
    case ConfigurationValueBase::FloatValue:
        return add(0.25F);
    case ConfigurationValueBase::StringValue:
        return add(std::string("text"));
    case ConfigurationValueBase::StringVectorValue:
        break;
    }
    add(Strings{"1", "text"});
}

std::shared_ptr<TestObject> make(const Shape& shape) {
    return TestObject::make(
        shape.name,
        [shape](TestObject& object) {
            for (const Shape::Value& value : shape.values)
                addValue(object, value);
            for (const Shape& child : shape.children)
                object.addChild(make(child)->createConfigurationObject());
        },
        shape.persistence, shape.products);
}

void setRandom(ConfigurationValueBase& value, Random& random) {
    visitValue(value, [&]<typename T>(ConfigurationValue<T>& typed) {
        if constexpr (std::is_same_v<T, std::string>)
            typed.setValue(randomText(random));
        else if constexpr (std::is_same_v<T, Strings>)
            typed.setValue(Strings(random() % 3, randomText(random)));
        else if constexpr (std::is_same_v<T, bool>)
            typed.setValue(oneIn(2, random));
        else if constexpr (std::is_floating_point_v<T>)
            typed.setValue(static_cast<T>(random()) / 1024);
        else
            typed.setValue(static_cast<T>(random()));
    });
}

} // namespace

ConfigurationItemBase::Persistence randomPersistence(Random& random) {
    if (!oneIn(6, random))
        return ConfigurationItemBase::LoadAndSave;
    return static_cast<ConfigurationItemBase::Persistence>(random() % 4);
}

ConfigurationItemBase::ProductType randomProducts(Random& random) {
    return oneIn(8, random) ? ConfigurationItemBase::Product1 : ConfigurationItemBase::AllProducts;
}

std::shared_ptr<TestObject> randomPlainObject(const std::string& name, Random& random) {
    return make(plainShape(name, 2, random));
}

void setRandomUnlockedValues(ConfigurationObject& object, Random& random) {
    if (!object.isEditable())
        return;
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        if ((*value)->isEditable() && oneIn(3, random))
            setRandom(**value, random);
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child)
        setRandomUnlockedValues(**child, random);
}

std::shared_ptr<TestObject> randomObject(const std::string& name, Random& random, int depth) {
    return make(randomShape(name, depth, random));
}

void setRandomValues(ConfigurationObject& object, Random& random) {
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        if (oneIn(3, random))
            setRandom(**value, random);
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child)
        setRandomValues(**child, random);
}

const std::string& randomText(Random& random) {
    return anyOf(fewTexts, random);
}

} // namespace Orvant::Support
