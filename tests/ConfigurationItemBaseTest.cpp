#include <ConfigurationFramework/ConfigurationItemBase.h>

#include <ModelTestSupport.h>

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace Orvant {
namespace {

using Base = ConfigurationItemBase;

class Item : public Base {
public:
    explicit Item(Persistence persistence, ProductType productType = AllProducts)
        : Base("Name", "Text", ValueItem, persistence, productType) {}
    explicit Item(ProductType productType) : Item(LoadAndSave, productType) {}

    void loadContent(ConfigReader&) override {}
    void saveContent(ConfigWriter&) const override {}
};

constexpr Base::ProductType productFlags[] = {Base::Product0, Base::Product1, Base::Product2,
                                              Base::Product3, Base::Product4, Base::Product5};
constexpr BuildInformation::ProductType unknownProducts[] = {
    -1,
    6,
    32,
    63,
    std::numeric_limits<BuildInformation::ProductType>::min(),
    std::numeric_limits<BuildInformation::ProductType>::max()};

/// Calls back with every set of products, the empty one included.
template <typename Callback>
void forEachProductSet(Callback callback) {
    for (std::uint32_t set = 0; set <= Base::AllProducts; ++set)
        callback(static_cast<Base::ProductType>(set));
}

TEST(ConfigurationItemBase, NumbersItsEnumeratorsAsFilesAndCallersKnowThem) {
    EXPECT_EQ(0u, Base::ObjectItem);
    EXPECT_EQ(1u, Base::ValueItem);
    EXPECT_EQ(0u, Base::LoadAndSave);
    EXPECT_EQ(1u, Base::NotPersistent);
    EXPECT_EQ(2u, Base::SaveOnly);
    EXPECT_EQ(3u, Base::LoadOnly);
    EXPECT_EQ(0u, Base::Visible);
    EXPECT_EQ(1u, Base::Hidden);
    EXPECT_EQ(63u, Base::AllProducts);
    std::uint32_t flag = 1;
    for (const auto product : productFlags) {
        EXPECT_EQ(flag, product);
        flag *= 2;
    }
}

TEST(ConfigurationItemBase, HasEnumerationsOf32Bits) {
    EXPECT_EQ(4u, sizeof(Base::ItemType));
    EXPECT_EQ(4u, sizeof(Base::Persistence));
    EXPECT_EQ(4u, sizeof(Base::ProductType));
    EXPECT_EQ(4u, sizeof(Base::GuiVisibility));
}

TEST(ConfigurationItemBase, IsAbstractWithAVirtualDestructor) {
    EXPECT_TRUE(std::is_abstract_v<Base>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Base>);
}

TEST(ConfigurationItemBase, KeepsWhatItIsMadeOf) {
    Item item(Base::SaveOnly, Base::Product3);
    EXPECT_EQ("Name", item.getName());
    EXPECT_EQ("Text", item.getDescription());
    EXPECT_EQ(Base::ValueItem, item.getConfigItemType());
    EXPECT_EQ(Base::SaveOnly, item.getPersistenceType());
    EXPECT_EQ(Base::Product3, item.getProductType());
    EXPECT_TRUE(item.isEditable());
}

TEST(ConfigurationItemBase, LoadsAndSavesByItsPersistence) {
    const struct {
        Base::Persistence persistence;
        bool loadable;
        bool savable;
        bool written;
    } rows[] = {
        {Base::LoadAndSave, true, true, true},
        {Base::NotPersistent, false, false, false},
        {Base::SaveOnly, false, true, true},
        {Base::LoadOnly, true, false, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.persistence);
        const Item item(row.persistence);
        EXPECT_EQ(row.loadable, item.isLoadable());
        EXPECT_EQ(row.savable, item.isSavable());
        EXPECT_EQ(row.written, item.isWrittenByCurrentProduct());

        const Support::RunningProduct another(1);
        const Item foreign(row.persistence, Base::Product0);
        EXPECT_EQ(row.loadable, foreign.isLoadable());
        EXPECT_EQ(row.savable, foreign.isSavable());
        EXPECT_FALSE(foreign.isWrittenByCurrentProduct());
    }
}

TEST(ConfigurationItemBase, IsLockedAndUnlocked) {
    Item item(Base::LoadAndSave);
    item.setEditable(false);
    EXPECT_FALSE(item.isEditable());
    item.setEditable(true);
    EXPECT_TRUE(item.isEditable());
}

TEST(ConfigurationItemBase, CopiesEverythingTheLockIncluded) {
    const auto expectCopied = [](Item& copy) {
        EXPECT_EQ("Name", copy.getName());
        EXPECT_EQ("Text", copy.getDescription());
        EXPECT_EQ(Base::ValueItem, copy.getConfigItemType());
        EXPECT_EQ(Base::LoadOnly, copy.getPersistenceType());
        EXPECT_EQ(Base::Product5, copy.getProductType());
        EXPECT_FALSE(copy.isEditable());
    };
    Item locked(Base::LoadOnly, Base::Product5);
    locked.setEditable(false);
    Item copy(locked);
    expectCopied(copy);
    Item assigned(Base::NotPersistent);
    assigned = locked;
    expectCopied(assigned);

    copy.setEditable(true);
    EXPECT_FALSE(locked.isEditable());
}

TEST(ConfigurationItemBase, UnitesProductSets) {
    forEachProductSet([](Base::ProductType left) {
        forEachProductSet([&](Base::ProductType right) {
            EXPECT_EQ(std::uint32_t{left} | std::uint32_t{right}, left | right);
        });
    });
}

TEST(ConfigurationItemBase, BelongsToAProductWhenOneFlagIsShared) {
    forEachProductSet([](Base::ProductType own) {
        const Item item(own);
        forEachProductSet([&](Base::ProductType asked) {
            EXPECT_EQ((std::uint32_t{own} & std::uint32_t{asked}) != 0,
                      item.belongsToProduct(asked))
                << own << " & " << asked;
        });
    });
}

TEST(ConfigurationItemBase, BelongsToTheProductsOfItsSetAndToNoUnknownOne) {
    const Support::RunningProduct restoredAfterwards(0);
    forEachProductSet([](Base::ProductType own) {
        const Item item(own);
        const auto expectBelongs = [&](bool expected, BuildInformation::ProductType product) {
            SCOPED_TRACE(testing::Message() << "set " << own << ", product " << product);
            EXPECT_EQ(expected, item.belongsToBuildProduct(product));
            BuildInformation::setProductType(product);
            EXPECT_EQ(expected, item.belongsToCurrentProduct());
            EXPECT_EQ(expected, item.isWrittenByCurrentProduct());
        };
        for (int product = 0; product <= 5; ++product)
            expectBelongs((own & productFlags[product]) != 0, product);
        for (const auto product : unknownProducts)
            expectBelongs(false, product);
    });
}

} // namespace
} // namespace Orvant
