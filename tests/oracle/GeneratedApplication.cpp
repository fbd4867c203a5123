#include "GeneratedApplication.h"

#include <ConfigurationFramework/ConstrainedValue.h>
#include <ConfigurationFramework/KeyedGroup.h>
#include <ConfigurationFramework/SettingVisitor.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <set>
#include <type_traits>
#include <utility>

namespace Orvant::Support {

namespace {

using Item = ConfigurationItemBase;

const std::vector<std::string> names = {"Angle", "Unit", "Größe", "List", "Port", "Camera", "Hall"};
const std::vector<std::string> keys = {"Hall 1", "ä", "a/b", "x]y", "1"};
const std::vector<std::string> texts = {"",           "mm",   "inch", " a ", "<&>\"'",
                                        "two\nlines", "a\tb", "--",   "12",  "\U0001F600"};
const std::vector<std::string> fileTexts = {
    "12",     "-7",          "3.5", "60,5", "3O",        "true",       "True", "false",
    "mm",     "inch",        "cm",  "",     " 8 ",       "1e3",        "nan",  "inf",
    "a&lt;b", "99999999999", "1",   "0",    "<!-- -->5", "5<!-- -->6", "<b/>"};

Item::Persistence anyPersistence(Random& random) {
    return oneIn(8, random) ? static_cast<Item::Persistence>(random() % 4) : Item::LoadAndSave;
}

Item::ProductType anyProducts(Random& random) {
    return oneIn(8, random) ? Item::Product1 : Item::AllProducts;
}

template <typename T>
std::vector<T> someValues(Random& random) {
    const int number = static_cast<int>(random() % 20);
    if constexpr (std::is_same_v<T, bool>)
        return {true, false};
    else if constexpr (std::is_same_v<T, std::string>)
        return texts;
    else if constexpr (std::is_same_v<T, std::vector<std::string>>)
        return {{}, {"mm"}, {"mm", "inch"}, {"", " "}};
    else if constexpr (std::is_floating_point_v<T>)
        return {static_cast<T>(number) / T{3},
                T{0},
                T{12},
                std::numeric_limits<T>::max(),
                std::numeric_limits<T>::denorm_min(),
                std::numeric_limits<T>::infinity()};
    else
        return {static_cast<T>(number), T{0}, T{12}, std::numeric_limits<T>::max(),
                std::numeric_limits<T>::min()};
}

/// A rule that allows the default.
template <typename T>
std::shared_ptr<const ValueRule<T>> makeRule(const T& defaultValue, Random& random) {
    auto rule = std::make_shared<ValueRule<T>>();
    rule->label = anyOf(texts, random);
    if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) {
        if (oneIn(2, random))
            rule->minimum = defaultValue;
        if (oneIn(2, random))
            rule->maximum = std::max(defaultValue, T{100});
    }
    if (!oneIn(2, random))
        return rule;
    if constexpr (std::is_same_v<T, typename ValueRule<T>::Item>)
        rule->choices = {{defaultValue, "Usual"}, {someValues<T>(random).back(), ""}};
    else
        rule->choices = {{"mm", "Millimetres"}, {"inch", ""}, {"", ""}, {" ", ""}};
    return rule;
}

template <typename T>
std::unique_ptr<ConfigurationValueBase> makeValue(const std::string& name, Random& random) {
    const std::vector<T> values = someValues<T>(random);
    const T defaultValue = values[random() % values.size()];
    const std::string& description = anyOf(texts, random);
    const auto visibility = oneIn(4, random) ? Item::Hidden : Item::Visible;
    const auto persistence = anyPersistence(random);
    const auto products = anyProducts(random);
    std::unique_ptr<ConfigurationValueBase> value;
    if (oneIn(2, random))
        value = std::make_unique<ConstrainedValue<T>>(name, description, defaultValue, visibility,
                                                      persistence, products,
                                                      makeRule(defaultValue, random));
    else
        value = std::make_unique<ConfigurationValue<T>>(name, description, defaultValue, visibility,
                                                        persistence, products);
    value->setEditable(!oneIn(12, random));
    return value;
}

std::unique_ptr<ConfigurationValueBase> makeValue(const std::string& name, Random& random) {
    switch (random() % 7) {
    case 0:
        return makeValue<bool>(name, random);
    case 1:
        return makeValue<int>(name, random);
    case 2:
        return makeValue<unsigned int>(name, random);
    case 3:
        return makeValue<double>(name, random);
    case 4:
        return makeValue<float>(name, random);
    case 5:
        return makeValue<std::string>(name, random);
    default:
        return makeValue<std::vector<std::string>>(name, random);
    }
}

/// A class of an application: what it declares depends on its number only.
class GeneratedObject : public ConfigurationObject {
public:
    /// @param suffix of the names in it, so that what stands in one element has different names
    GeneratedObject(const std::string& name, unsigned int number, int depth,
                    const std::string& suffix = "")
        : GeneratedObject(name, number, depth, suffix, Random(number)) {}

    ConfigurationObject* createConfigurationObject() const override {
        return new GeneratedObject(getName(), m_number, m_depth, m_suffix);
    }
    std::optional<std::string> getChildKey(std::size_t position) const override {
        return m_keys[position];
    }

private:
    GeneratedObject(const std::string& name, unsigned int number, int depth,
                    const std::string& suffix, Random random)
        : ConfigurationObject(name, anyOf(texts, random), anyPersistence(random),
                              anyProducts(random)),
          m_number(number),
          m_depth(depth),
          m_suffix(suffix) {
        setEditable(!oneIn(15, random));
        std::vector<std::string> untaken = names;
        std::ranges::shuffle(untaken, random);
        const auto take = [&] {
            std::string taken = untaken.back() + m_suffix;
            untaken.pop_back();
            return taken;
        };
        for (std::size_t i = random() % 5; i != 0; --i)
            addConfigurationValue(makeValue(take(), random).release());
        for (std::size_t i = depth == 0 ? 0 : random() % 4; i != 0 && !untaken.empty(); --i)
            addChild(take(), random);
    }

    void addChild(const std::string& name, Random& random) {
        const auto number = static_cast<unsigned int>(random());
        const auto kind = random() % 4;
        auto child = kind == 0 ? std::make_unique<GeneratedObject>("", number, m_depth - 1, name)
                               : std::make_unique<GeneratedObject>(name, number, m_depth - 1);
        m_keys.push_back(kind == 1 ? std::optional(anyOf(keys, random)) : std::nullopt);
        if (kind == 2)
            addConfigurationObject(new KeyedGroup(std::move(child)));
        else
            addConfigurationObject(child.release());
    }

    unsigned int m_number;
    int m_depth;
    std::string m_suffix;
    std::vector<std::optional<std::string>> m_keys;
};

/// Writes what a file may hold for an object, right or wrong.
class FileWriter : public SettingVisitor {
public:
    explicit FileWriter(Random& random) : m_random(random) {}

    std::string take() { return std::move(m_text); }

    void open(const std::string& name, const std::optional<std::string>& key) {
        m_text += '<' + name;
        if (key)
            m_text += " key='" + (key == "<&>" ? "" : *key) + '\'';
        if (oneIn(8, m_random))
            m_text += oneIn(4, m_random) ? " editable='no'" : " editable='false'";
        m_text += ">\n";
        m_open.push_back(name);
    }
    void close() {
        m_text += "</" + m_open.back() + ">\n";
        m_open.pop_back();
    }

    void visitValue(ConfigurationValueBase& value) override {
        if (oneIn(3, m_random))
            return;
        open(oneIn(20, m_random) ? "Unknown" : value.getName(), std::nullopt);
        if (value.getValueType() == ConfigurationValueBase::StringVectorValue)
            for (std::size_t i = m_random() % 3; i != 0; --i)
                m_text += "<item>" + anyOf(fileTexts, m_random) + "</item>\n";
        else
            m_text.replace(m_text.size() - 1, 1, anyOf(fileTexts, m_random));
        close();
        if (oneIn(20, m_random)) // a second one
            visitValue(value);
    }
    bool enterObject(ConfigurationObject& child, const std::optional<std::string>& key) override {
        if (oneIn(4, m_random))
            return false;
        open(child.getName(), oneIn(6, m_random) ? std::nullopt : key);
        return true;
    }
    void leaveObject(ConfigurationObject& /*child*/) override { close(); }
    bool enterKind(ConfigurationObject& prototype) override {
        for (const std::string& key : keys) {
            if (!oneIn(3, m_random))
                continue;
            open(oneIn(6, m_random) ? "Removed" + prototype.getName() : prototype.getName(),
                 oneIn(6, m_random) ? std::nullopt : std::optional(key));
            visitSettings(prototype, *this);
            close();
        }
        return false;
    }

private:
    Random& m_random;
    std::string m_text;
    std::vector<std::string> m_open;
};

} // namespace

std::vector<Registered> generateApplication(Random& random) {
    std::vector<Registered> registered;
    for (const char* const name : {"View", "Network", "Machine"})
        registered.push_back(
            {name,
             std::make_shared<GeneratedObject>(name, static_cast<unsigned int>(random()),
                                               static_cast<int>(random() % 3)),
             oneIn(3, random)});
    return registered;
}

std::string generateFile(const std::vector<Registered>& registered, Random& random) {
    if (oneIn(30, random))
        return "<Configuration version='1.0'>"; // damaged
    FileWriter writer(random);
    for (const auto& [name, object, isKeyed] : registered) {
        std::vector<std::optional<std::string>> found = {std::nullopt};
        if (isKeyed)
            found.insert(found.end(), keys.begin(), keys.end());
        for (const auto& key : found) {
            if (oneIn(3, random))
                continue;
            writer.open(name, key);
            visitSettings(*object, writer);
            writer.close();
        }
    }
    return std::string("<Configuration version='") + (oneIn(30, random) ? "9" : "1.0") + "'>\n" +
           writer.take() + "</Configuration>\n";
}

void registerAll(const std::vector<Registered>& registered, ConfigurationManager& manager) {
    for (const auto& [name, object, isKeyed] : registered) {
        std::set<std::string> found = isKeyed ? manager.getKeys(name) : std::set<std::string>{""};
        const bool isOnlyDefault = found == std::set<std::string>{""};
        if (!isOnlyDefault)
            found.erase("");
        for (const std::string& key : found) {
            const std::shared_ptr<ConfigurationObject> made(object->createConfigurationObject());
            if (isOnlyDefault)
                manager.addConfigurationObject(made, name);
            else
                manager.addConfigurationObject(made, name, key);
        }
    }
}

ConfigurationCatalogue catalogueOf(const std::vector<Registered>& registered) {
    ConfigurationCatalogue catalogue("generated", {"1.0"}, "1.0");
    for (const auto& [name, object, isKeyed] : registered)
        catalogue.add(*object, name, isKeyed);
    return catalogue;
}

} // namespace Orvant::Support
