#include "Settings.h"

#include <deque>

namespace Orvant::Benchmarks {

namespace {

/// Names with a number, made once.
class Names {
public:
    explicit Names(std::string stem) : m_stem(std::move(stem)) {}

    const std::string& operator[](std::size_t number) {
        while (m_names.size() <= number)
            m_names.push_back(m_stem + std::to_string(m_names.size()));
        return m_names[number];
    }

private:
    std::string m_stem;
    std::deque<std::string> m_names;
};

} // namespace

std::string toString(Shape shape) {
    return std::to_string(shape.objects) + 'x' + std::to_string(shape.values);
}

const std::string& objectName(std::size_t object) {
    static Names s_names("ToolSettings");
    return s_names[object];
}

const std::string& valueName(std::size_t value) {
    static Names s_names("ToolParameter");
    return s_names[value];
}

Value valueOf(std::size_t object, std::size_t value, unsigned int edition) {
    const auto number = static_cast<unsigned int>(object * 31 + value * 7) % 10'000 + 1 + edition;
    switch (value % std::variant_size_v<Value>) {
    case 0:
        return number % 2 == 0;
    case 1:
        return -static_cast<int>(number);
    case 2:
        return number;
    case 3:
        return static_cast<float>(number % 1'000) * 0.25F;
    case 4:
        return number * 0.5;
    case 5:
        return "Drill of the station " + std::to_string(number);
    default:
        return Texts{"gear box " + std::to_string(number), "cover", "left bearing"};
    }
}

} // namespace Orvant::Benchmarks
