// Objects that are made of an application's catalogue must be what the application's own are, for
// any classes and files: values, locks, and what the manager tells of them.

#include "RandomDocuments.h"

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConstrainedValue.h>
#include <ConfigurationFramework/KeyedGroup.h>
#include <ConfigurationFramework/SettingVisitor.h>
#include <ObjectState.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace Orvant {

// For the messages of the tests.
static void PrintTo(const ConfigurationOrigin& origin, std::ostream* out) {
    *out << origin.path << " = " << origin.value << ", layer " << origin.layer << ", locked by \""
         << origin.lockedBy << "\", line " << origin.line;
}
static void PrintTo(const ConfigurationProblem& problem, std::ostream* out) {
    *out << problem.line << ':' << problem.column << ' ' << problem.path << ": " << problem.text;
}

namespace {

using Support::anyOf;
using Support::oneIn;
using Support::Random;

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

/// What an application registers.
struct Registered {
    std::string name;
    std::shared_ptr<ConfigurationObject> object;
    bool isKeyed;
};

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

/// Registers an application's objects as KeyedSettings and applications do.
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

auto membersOf(const ConfigurationOrigin& origin) {
    return std::tie(origin.path, origin.value, origin.layer, origin.locked, origin.lockedBy,
                    origin.systemValue, origin.userValue, origin.line);
}

auto membersOf(const ConfigurationProblem& problem) {
    return std::tie(problem.kind, problem.line, problem.column, problem.path, problem.text);
}

template <typename Record>
void expectSame(const std::vector<Record>& first, const std::vector<Record>& second) {
    ASSERT_EQ(first.size(), second.size());
    for (std::size_t i = 0; i < first.size(); ++i)
        ASSERT_EQ(membersOf(first[i]), membersOf(second[i]))
            << testing::PrintToString(first[i]) << '\n'
            << testing::PrintToString(second[i]);
}

/// What the objects of a manager hold, by registration.
std::vector<std::pair<std::string, Support::ObjectState>> statesOf(ConfigurationManager& manager) {
    std::vector<std::pair<std::string, Support::ObjectState>> states;
    for (const auto& [object, name, key] : manager.getRegistrations())
        states.emplace_back(name + '[' + key.value_or("") + ']', Support::stateOf(*object));
    return states;
}

class CatalogueEquivalenceTest : public testing::TestWithParam<unsigned int> {
protected:
    ~CatalogueEquivalenceTest() override { m_manager.reset(); }

    void setFiles(bool areTwo) {
        m_manager.reset();
        if (areTwo)
            m_manager.setSystemAndUserConfigurationFile(m_system, m_user);
        else
            m_manager.setConfigurationFile(m_user);
    }
    ConfigurationCatalogue catalogueOf(const std::vector<Registered>& registered) {
        ConfigurationCatalogue catalogue("generated", {"1.0"}, "1.0");
        for (const auto& [name, object, isKeyed] : registered)
            catalogue.add(*object, name, isKeyed);
        std::ofstream stream(m_catalogue.toNativeString());
        catalogue.write(stream);
        stream.close();
        return ConfigurationCatalogue::read(m_catalogue);
    }

    const Support::TemporaryDirectory m_directory;
    const FileName m_system = m_directory.file("system.xml");
    const FileName m_user = m_directory.file("user.xml");
    const FileName m_catalogue = m_directory.file("catalogue.xml");
    ConfigurationManager& m_manager = ConfigurationManager::getInstance();
};

} // namespace

TEST_P(CatalogueEquivalenceTest, TellsWhatTheApplicationHolds) {
    for (unsigned int seed = GetParam() * 100; seed < (GetParam() + 1) * 100; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const std::vector<Registered> application = generateApplication(random);
        const bool areTwo = !oneIn(5, random);
        Support::writeFile(m_system, generateFile(application, random));
        Support::writeFile(m_user, generateFile(application, random));
        m_manager.setValidVersionList({"1.0"});

        setFiles(areTwo);
        registerAll(application, m_manager);
        const auto states = statesOf(m_manager);
        const auto origins = m_manager.explain();
        const auto problems = m_manager.getLoadProblems();

        const ConfigurationCatalogue catalogue = catalogueOf(application);
        setFiles(areTwo);
        catalogue.registerObjects(m_manager);
        const auto described = statesOf(m_manager);
        ASSERT_EQ(described.size(), states.size());
        for (std::size_t i = 0; i < states.size(); ++i) {
            ASSERT_EQ(described[i].first, states[i].first);
            ASSERT_THAT(described[i].second, testing::ContainerEq(states[i].second));
        }
        expectSame(m_manager.explain(), origins);
        expectSame(m_manager.getLoadProblems(), problems);
        if (HasFatalFailure())
            return;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, CatalogueEquivalenceTest, testing::Range(0U, 10U));

} // namespace Orvant
