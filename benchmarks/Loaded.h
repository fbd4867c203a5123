#pragma once

#include "Settings.h"

#include <functional>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace Orvant::Benchmarks {

/// What a load has made. Dropping it is not part of the load.
struct Loaded {
    std::shared_ptr<void> held;
    std::function<double()> weight = {}; ///< of the typed values; none where a load is parsing only
};

/// Reads all settings of a peer into typed values.
/// @tparam Text, TextList the peer's own types of texts
/// @param openObject for the name of an object, something that has get<T>(name of the value)
template <typename Text, typename TextList, typename Source, typename OpenObject>
Loaded readTyped(std::shared_ptr<Source> source, Shape shape, OpenObject openObject) {
    using Typed = std::variant<bool, int, unsigned int, float, double, Text, TextList>;
    struct Held {
        std::shared_ptr<Source> source;
        std::vector<Typed> values;
    };
    auto held = std::make_shared<Held>();
    held->source = std::move(source);
    held->values.reserve(shape.objects * shape.values);
    for (std::size_t object = 0; object < shape.objects; ++object) {
        const auto group = openObject(objectName(object));
        using Group = decltype(group);
        static constexpr auto readers = forEachType<Typed>([]<typename T>() {
            return +[](Group& from, const std::string& name) {
                return Typed(from.template get<T>(name));
            };
        });
        for (std::size_t value = 0; value < shape.values; ++value)
            held->values.push_back(readers[value % readers.size()](group, valueName(value)));
    }
    return {held, [values = &held->values] {
                double sum = 0.0;
                for (const Typed& typed : *values)
                    std::visit([&](const auto& value) { sum += weightOf(value); }, typed);
                return sum;
            }};
}

} // namespace Orvant::Benchmarks
