#include <ConfigurationFramework/ConfigurationValue.h>

#include <ModelTestSupport.h>

#include <gmock/gmock.h>

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace Orvant {
namespace {

using testing::HasSubstr;
using testing::Not;

using Base = ConfigurationValueBase;
using Strings = std::vector<std::string>;
using Support::readerOf;

/// What the tests need to know about each type.
template <typename T>
struct Sample {
    Base::ValueType type;
    T defaultValue;
    T value;
    std::string text;                ///< `value` as contents of an element
    std::string unreadable;          ///< contents that are not a T
    std::optional<T> ofEmptyElement; ///< what an element without contents is, if anything
};

template <typename T>
Sample<T> sample();
template <>
Sample<bool> sample() {
    return {Base::BoolValue, false, true, "true", "True", {}};
}
template <>
Sample<int> sample() {
    return {Base::IntValue, 7, -42, "-42", "many", {}};
}
template <>
Sample<unsigned int> sample() {
    return {Base::UnsignedIntValue, 7, 4294967295u, "-1", "many", {}};
}
template <>
Sample<double> sample() {
    return {Base::DoubleValue, 0.5, -1.25e-10, "-1.25e-10", "much", {}};
}
template <>
Sample<float> sample() {
    return {Base::FloatValue, 0.5f, -1.25f, "-1.25", "much", {}};
}
template <>
Sample<std::string> sample() {
    return {Base::StringValue,          "default",  " Größe 😀 <&> ",
            " Größe 😀 &lt;&amp;&gt; ", "<!---->x", ""};
}
template <>
Sample<Strings> sample() {
    return {Base::StringVectorValue,
            {"default"},
            {"b", " ä ", "b"},
            "<item>b</item><item> ä </item><item>b</item>",
            "<item>b</item><item><!---->x</item>",
            Strings()};
}

template <typename T>
class ConfigurationValueTest : public testing::Test {
protected:
    using Value = ConfigurationValue<T>;

    static Value make(Base::Persistence persistence = Base::LoadAndSave,
                      Base::ProductType product = Base::AllProducts) {
        return Value("Name", "", sample<T>().defaultValue, Base::Visible, persistence, product);
    }
    /// A value that was set.
    static Value makeSet(Base::Persistence persistence = Base::LoadAndSave) {
        Value value = make(persistence);
        value.setValue(sample<T>().value);
        return value;
    }
    static std::string element(const std::string& contents, const std::string& attributes = "") {
        return "<Name" + attributes + ">" + contents + "</Name>";
    }
    static void load(Base& value, const std::string& elements) {
        SimpleConfigReader reader = readerOf(elements);
        value.loadContent(reader);
    }
    /// @return the elements that the value writes
    static std::string save(const Base& value) {
        ConfigWriter writer("1.0");
        value.saveContent(writer);
        return Support::compact(writer);
    }
    static void expectValue(const Value& value) {
        EXPECT_TRUE(value.hasValue());
        EXPECT_EQ(of.value, value.getValue());
        EXPECT_EQ(of.defaultValue, value.getDefaultValue());
    }
    static void expectDefault(const Value& value) {
        EXPECT_FALSE(value.hasValue());
        EXPECT_EQ(of.defaultValue, value.getValue());
        EXPECT_EQ(of.defaultValue, value.getDefaultValue());
    }

    static inline const Sample<T> of = sample<T>();
};

using ValueTypes = testing::Types<bool, int, unsigned int, double, float, std::string, Strings>;

class ValueTypeNames {
public:
    template <typename T>
    static std::string GetName(int index) {
        static const Strings names = {"Bool",  "Int",    "UnsignedInt", "Double",
                                      "Float", "String", "StringVector"};
        return names.at(static_cast<std::size_t>(index));
    }
};

TYPED_TEST_SUITE(ConfigurationValueTest, ValueTypes, ValueTypeNames);

/// Calls back with a value of each type but T; each is named and set as T's are.
template <typename T, typename Callback>
void forEachOtherType(Callback callback) {
    const auto callFor = [&]<typename Other>(const Other& value) {
        if constexpr (!std::is_same_v<T, Other>)
            callback(ConfigurationValue<Other>("Name", "", value, Base::Visible, Base::LoadAndSave,
                                               Base::AllProducts));
    };
    callFor(true);
    callFor(7);
    callFor(7u);
    callFor(0.5);
    callFor(0.5f);
    callFor(std::string("default"));
    callFor(Strings{"default"});
}

TYPED_TEST(ConfigurationValueTest, IsAValueOfItsType) {
    ConfigurationValue<TypeParam> value("Zoom", "Zoom factor", this->of.defaultValue, Base::Hidden,
                                        Base::SaveOnly, Base::Product4);
    EXPECT_EQ("Zoom", value.getName());
    EXPECT_EQ("Zoom factor", value.getDescription());
    EXPECT_EQ(Base::ValueItem, value.getConfigItemType());
    EXPECT_EQ(this->of.type, value.getValueType());
    EXPECT_FALSE(value.isGuiVisible());
    EXPECT_EQ(Base::SaveOnly, value.getPersistenceType());
    EXPECT_EQ(Base::Product4, value.getProductType());
    EXPECT_TRUE(value.isEditable());
}

TYPED_TEST(ConfigurationValueTest, ReadsAsItsDefaultUntilItIsSet) {
    auto value = this->make();
    this->expectDefault(value);
    value.setValue(this->of.value);
    this->expectValue(value);
    value.resetValue();
    this->expectDefault(value);
}

TYPED_TEST(ConfigurationValueTest, HasAValueThatEqualsItsDefault) {
    auto value = this->make();
    value.setValue(this->of.defaultValue);
    EXPECT_TRUE(value.hasValue());
    EXPECT_EQ(this->of.defaultValue, value.getValue());
    value.resetValue();
    EXPECT_FALSE(value.hasValue());
}

TYPED_TEST(ConfigurationValueTest, CopiesDefaultValueAndLock) {
    auto set = this->makeSet();
    set.setEditable(false);
    auto copy = set;
    auto assigned = this->make();
    assigned = set;
    set.resetValue();
    for (const auto& each : {copy, assigned}) {
        this->expectValue(each);
        EXPECT_FALSE(each.isEditable());
    }
    copy = this->make();
    this->expectDefault(copy);
}

TYPED_TEST(ConfigurationValueTest, ClonesItself) {
    auto set = this->makeSet();
    set.setEditable(false);
    const std::unique_ptr<ConfigurationValueBase> clone(set.clone());
    set.resetValue();
    const auto* const typed = dynamic_cast<ConfigurationValue<TypeParam>*>(clone.get());
    ASSERT_NE(nullptr, typed);
    this->expectValue(*typed);
    EXPECT_EQ("Name", clone->getName());
    EXPECT_FALSE(clone->isEditable());

    const std::unique_ptr<ConfigurationValueBase> ofDefault(this->make().clone());
    EXPECT_FALSE(ofDefault->hasValue());
}

TYPED_TEST(ConfigurationValueTest, AdoptsTheValueOfAnother) {
    auto value = this->make();
    const auto set = this->makeSet();
    value.adoptValue(&set);
    this->expectValue(value);
}

TYPED_TEST(ConfigurationValueTest, AdoptsTheDefaultOfAnotherAsItsOwnValue) {
    const ConfigurationValue<TypeParam> other("Other", "", this->of.value, Base::Visible,
                                              Base::LoadAndSave, Base::AllProducts);
    auto value = this->make();
    value.adoptValue(&other);
    this->expectValue(value);
}

TYPED_TEST(ConfigurationValueTest, AdoptsNothingFromNullAndFromOtherTypes) {
    auto set = this->makeSet();
    auto unset = this->make();
    const auto expectUnchanged = [&](const ConfigurationValueBase* other) {
        set.adoptValue(other);
        this->expectValue(set);
        unset.adoptValue(other);
        this->expectDefault(unset);
    };
    expectUnchanged(nullptr);
    forEachOtherType<TypeParam>([&](const auto& other) { expectUnchanged(&other); });
}

TYPED_TEST(ConfigurationValueTest, ComparesEffectiveValues) {
    const auto unset = this->make();
    const auto set = this->makeSet();
    auto setToDefault = this->make();
    setToDefault.setValue(this->of.defaultValue);
    const ConfigurationValue<TypeParam> otherDefault("Other", "another", this->of.value,
                                                     Base::Hidden, Base::LoadOnly, Base::Product1);
    EXPECT_TRUE(unset.comapreValue(&unset));
    EXPECT_TRUE(unset.comapreValue(&setToDefault));
    EXPECT_TRUE(setToDefault.comapreValue(&unset));
    EXPECT_TRUE(set.comapreValue(&otherDefault));
    EXPECT_TRUE(otherDefault.comapreValue(&set));
    EXPECT_FALSE(set.comapreValue(&unset));
    EXPECT_FALSE(unset.comapreValue(&set));
}

TYPED_TEST(ConfigurationValueTest, DiffersFromNullAndFromOtherTypes) {
    const auto value = this->make();
    EXPECT_FALSE(value.comapreValue(nullptr));
    forEachOtherType<TypeParam>([&](const auto& other) {
        EXPECT_FALSE(value.comapreValue(&other));
        EXPECT_FALSE(other.comapreValue(&value));
    });
}

TYPED_TEST(ConfigurationValueTest, LoadsFromTheElementOfItsName) {
    auto value = this->make();
    this->load(value, "<Other/>" + this->element(this->of.text) + "<name/>");
    this->expectValue(value);
    EXPECT_TRUE(value.isEditable());
}

TYPED_TEST(ConfigurationValueTest, FallsBackToItsDefaultWithoutItsElement) {
    auto value = this->makeSet();
    this->load(value, "<Other>" + this->of.text + "</Other>");
    this->expectDefault(value);
    EXPECT_TRUE(value.isEditable());
}

TYPED_TEST(ConfigurationValueTest, FallsBackToItsDefaultForWhatItCannotRead) {
    auto value = this->makeSet();
    this->load(value, this->element(this->of.unreadable));
    this->expectDefault(value);
}

TYPED_TEST(ConfigurationValueTest, ReadsAnElementWithoutContents) {
    auto value = this->makeSet();
    this->load(value, this->element(""));
    EXPECT_EQ(this->of.ofEmptyElement.has_value(), value.hasValue());
    EXPECT_EQ(this->of.ofEmptyElement.value_or(this->of.defaultValue), value.getValue());
}

TYPED_TEST(ConfigurationValueTest, TakesItsLockFromItsElement) {
    for (const bool editable : {true, false}) {
        auto value = this->make();
        this->load(value, this->element(this->of.text,
                                        editable ? " editable='true'" : " editable='false'"));
        this->expectValue(value);
        EXPECT_EQ(editable, value.isEditable());
    }
}

TYPED_TEST(ConfigurationValueTest, IsLockedByAnElementThatItCannotRead) {
    // A string whose element starts with something else takes the lock before it gives up.
    auto value = this->makeSet();
    this->load(value, this->element(this->of.unreadable, " editable='false'"));
    this->expectDefault(value);
    EXPECT_FALSE(value.isEditable());
}

TYPED_TEST(ConfigurationValueTest, KeepsItsValueWhileItIsLocked) {
    for (const std::string& elements :
         {this->element(this->of.text, " editable='true'"), std::string()}) {
        auto unset = this->make();
        auto setToDefault = this->make();
        setToDefault.setValue(this->of.defaultValue);
        for (auto* const value : {&unset, &setToDefault}) {
            value->setEditable(false);
            const bool hadValue = value->hasValue();
            this->load(*value, elements);
            EXPECT_EQ(hadValue, value->hasValue());
            EXPECT_EQ(this->of.defaultValue, value->getValue());
            EXPECT_FALSE(value->isEditable());
        }
    }
}

TYPED_TEST(ConfigurationValueTest, LoadsOnlyWhatIsLoadable) {
    for (const auto persistence : {Base::NotPersistent, Base::SaveOnly}) {
        auto unset = this->make(persistence);
        this->load(unset, this->element(this->of.text, " editable='false'"));
        this->expectDefault(unset);
        EXPECT_TRUE(unset.isEditable());

        auto set = this->makeSet(persistence);
        this->load(set, "");
        this->expectValue(set);
    }
    auto loadOnly = this->make(Base::LoadOnly);
    this->load(loadOnly, this->element(this->of.text));
    this->expectValue(loadOnly);
}

TYPED_TEST(ConfigurationValueTest, LoadsInOtherProductsToo) {
    const Support::RunningProduct product(1);
    auto value = this->make(Base::LoadAndSave, Base::Product0);
    this->load(value, this->element(this->of.text));
    this->expectValue(value);
}

TYPED_TEST(ConfigurationValueTest, SavesItsValueUnderItsName) {
    EXPECT_EQ(Support::document(this->element(this->of.text)), this->save(this->makeSet()));
}

TYPED_TEST(ConfigurationValueTest, SavesItsDefaultWhenThatIsItsValue) {
    auto loaded = this->makeSet();
    this->load(loaded, this->element(this->of.text));
    EXPECT_NE(this->save(loaded), this->save(this->make()));
    auto setToDefault = this->make();
    setToDefault.setValue(this->of.defaultValue);
    EXPECT_EQ(this->save(setToDefault), this->save(this->make()));
    EXPECT_THAT(this->save(this->make()), HasSubstr("<Name>"));
}

TYPED_TEST(ConfigurationValueTest, SavesItsDescriptionAsAComment) {
    const ConfigurationValue<TypeParam> value("Name", "What it is for", this->of.value,
                                              Base::Visible, Base::LoadAndSave, Base::AllProducts);
    EXPECT_EQ(Support::document("<!--What it is for-->" + this->element(this->of.text)),
              this->save(value));
}

TYPED_TEST(ConfigurationValueTest, SavesInPlaceOfWhatWasThere) {
    ConfigWriter writer(FileName(), Support::document("<Name key='k'/><Name>old</Name><Other/>"));
    this->makeSet().saveContent(writer);
    EXPECT_EQ(Support::document("<Other/>" + this->element(this->of.text)),
              Support::compact(writer));
}

TYPED_TEST(ConfigurationValueTest, SavesUnlessItIsNotPersistentOrOfAnotherProduct) {
    const Support::RunningProduct product(2);
    for (const auto persistence :
         {Base::LoadAndSave, Base::SaveOnly, Base::LoadOnly, Base::NotPersistent}) {
        for (const auto products : {Base::Product2, Base::Product2 | Base::Product4,
                                    Base::AllProducts, Base::Product0 | Base::Product5}) {
            auto value = this->make(persistence, products);
            value.setValue(this->of.value);
            const bool written =
                persistence != Base::NotPersistent && (products & Base::Product2) != 0;
            EXPECT_EQ(Support::document(this->element(this->of.text)) == this->save(value), written)
                << persistence << ", " << products << ": " << this->save(value);
            EXPECT_THAT(this->save(value),
                        testing::Conditional(written, HasSubstr("<Name"), Not(HasSubstr("<Name"))));
        }
    }
}

TYPED_TEST(ConfigurationValueTest, SavesALockedValue) {
    auto value = this->makeSet();
    value.setEditable(false);
    // The lock is the administrator's; it does not go into what the application writes.
    EXPECT_EQ(Support::document(this->element(this->of.text)), this->save(value));
}

TYPED_TEST(ConfigurationValueTest, ReadsBackWhatItWrote) {
    const auto written = this->makeSet();
    SimpleConfigReader reader(FileName(), this->save(written), {"1.0"});
    auto read = this->make();
    read.loadContent(reader);
    this->expectValue(read);
    EXPECT_TRUE(read.comapreValue(&written));
}

/// A value that claims about itself what the test says.
template <typename T>
class Telling : public ConfigurationValue<T> {
public:
    explicit Telling(bool claim)
        : ConfigurationValue<T>("Name", "", sample<T>().defaultValue, Base::Visible,
                                Base::LoadAndSave, Base::AllProducts),
          m_claim(claim) {}

    bool hasValue() const override { return m_claim; }
    void resetValue() override {
        ++resets;
        ConfigurationValue<T>::resetValue();
    }

    int resets = 0;

private:
    bool m_claim;
};

TYPED_TEST(ConfigurationValueTest, ThrowsWhenAnOverrideClaimsAValueThatIsNotThere) {
    const Telling<TypeParam> liar(true);
    auto honest = this->makeSet();
    ConfigWriter writer("1.0");
    EXPECT_THROW(liar.getValue(), std::bad_optional_access);
    EXPECT_THROW(liar.comapreValue(&honest), std::bad_optional_access);
    EXPECT_THROW(honest.comapreValue(&liar), std::bad_optional_access);
    EXPECT_THROW(honest.adoptValue(&liar), std::bad_optional_access);
    EXPECT_THROW(liar.saveContent(writer), std::bad_optional_access);
    this->expectValue(honest);
    EXPECT_EQ(this->of.defaultValue, liar.getDefaultValue());
}

TYPED_TEST(ConfigurationValueTest, ReadsAsItsDefaultWhenAnOverrideDeniesTheValue) {
    Telling<TypeParam> denier(false);
    denier.setValue(this->of.value);
    EXPECT_EQ(this->of.defaultValue, denier.getValue());
    const auto unset = this->make();
    EXPECT_TRUE(denier.comapreValue(&unset));
    EXPECT_TRUE(unset.comapreValue(&denier));
    auto adopting = this->makeSet();
    adopting.adoptValue(&denier);
    EXPECT_EQ(this->of.defaultValue, adopting.getValue());
}

TYPED_TEST(ConfigurationValueTest, FallsBackThroughTheOverrideOfReset) {
    Telling<TypeParam> value(false);
    this->load(value, this->element(this->of.text));
    EXPECT_EQ(0, value.resets);
    this->load(value, this->element(this->of.unreadable));
    EXPECT_EQ(1, value.resets);
    this->load(value, "");
    EXPECT_EQ(2, value.resets);
}

template <typename T>
ConfigurationValue<T> valueOf(const T& value) {
    return {"Name", "", value, Base::Visible, Base::LoadAndSave, Base::AllProducts};
}

TEST(ConfigurationValue, ComparesFloatingPointNumbersWithoutTolerance) {
    const auto differ = [](auto left, auto right) {
        const auto other = valueOf(right);
        return !valueOf(left).comapreValue(&other);
    };
    EXPECT_TRUE(differ(0.1 + 0.2, 0.3));
    EXPECT_TRUE(differ(1.0f, 1.0f + std::numeric_limits<float>::epsilon()));
    EXPECT_FALSE(differ(0.0, -0.0));
    EXPECT_FALSE(differ(0.0f, -0.0f));
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(differ(notANumber, notANumber));
    EXPECT_TRUE(differ(0.5f, 0.5));
}

TEST(ConfigurationValue, ComparesListsByOrderAndLength) {
    const auto list = valueOf(Strings{"a", "b"});
    for (const Strings& other :
         {Strings{"b", "a"}, Strings{"a"}, Strings{"a", "b", ""}, Strings{}}) {
        const auto otherList = valueOf(other);
        EXPECT_FALSE(list.comapreValue(&otherList)) << testing::PrintToString(other);
    }
}

TEST(ConfigurationValue, FallsBackForANumberThatDoesNotFit) {
    for (const std::string text : {"2147483648", "-2147483649", "99999999999999999999"}) {
        SimpleConfigReader reader = readerOf("<Name>" + text + "</Name>");
        auto number = valueOf(7);
        auto natural = valueOf(7u);
        number.loadContent(reader);
        natural.loadContent(reader);
        EXPECT_FALSE(number.hasValue()) << text;
        EXPECT_EQ(7u, natural.getValue()) << text;
    }
}

TEST(ConfigurationValue, ReadsItsOwnChildOfTheCurrentNodeOnly) {
    SimpleConfigReader reader = readerOf("<Object><Name>1</Name></Object>");
    auto value = valueOf(7);
    value.loadContent(reader);
    EXPECT_FALSE(value.hasValue());
    reader.setCurrentNode("Object");
    value.loadContent(reader);
    EXPECT_EQ(1, value.getValue());
}

TEST(ConfigurationValue, KeepsTheEmptyStringsOfAList) {
    const auto list = valueOf(Strings{"", "a", ""});
    ConfigWriter writer("1.0");
    list.saveContent(writer);
    SimpleConfigReader reader(FileName(), writer.getAsString(), {"1.0"});
    auto read = valueOf(Strings{});
    read.loadContent(reader);
    EXPECT_EQ(list.getValue(), read.getValue());
}

} // namespace
} // namespace Orvant
