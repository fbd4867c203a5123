#include <ConfigurationFramework/Settings.h>

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigurationManager.h>

#include <ManagerFixture.h>
#include <SettingSupport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::IsEmpty;

struct Camera : Settings<Camera> {
    Camera() : Settings("Camera") {}
    Setting<double> angle{this, "Angle", "", 45.0};
};

struct Plotter : Settings<Plotter> {
    Plotter() : Settings("Plotter") {}
    Setting<int> pens{this, "Pens", "", 1};
};

struct View : Settings<View> {
    View() : Settings("View") {}
    Setting<int> zoom{this, "Zoom", "", 1};
    Setting<std::string> name{this, "Name", "", "front"};
    Setting<Unit> unit{this, "Unit", "", Unit::Millimetre};
    Child<Camera> camera{this};
    KeyedChildren<Plotter> plotters{this};
};

/// What a setting told since this was made.
template <typename T>
class Told {
public:
    explicit Told(Setting<T>& setting)
        : m_watch(setting.onChange([this](const T& value) { values.push_back(value); })) {}
    Told(const Told&) = delete;
    Told& operator=(const Told&) = delete;
    ~Told() = default;

    std::vector<T> take() { return std::exchange(values, {}); }

    std::vector<T> values;

private:
    ChangeSubscription m_watch;
};
template <typename T>
Told(Setting<T>&) -> Told<T>;

/// Makes a throwing callback.
auto throwing(const std::string& text) {
    return [text](const auto&) { throw std::runtime_error(text); };
}

TEST(SettingChanges, AreToldOnceWithTheNewValue) {
    View view;
    Told zoom(view.zoom);
    Told name(view.name);
    Told unit(view.unit);
    view.zoom = 2;
    view.name.set("back");
    view.unit = Unit::Inch;
    EXPECT_THAT(zoom.take(), ElementsAre(2));
    EXPECT_THAT(name.take(), ElementsAre("back"));
    EXPECT_THAT(unit.take(), ElementsAre(Unit::Inch));
    view.zoom.reset();
    EXPECT_THAT(zoom.take(), ElementsAre(1));
    EXPECT_THAT(name.take(), IsEmpty());
}

TEST(SettingChanges, AreNotToldWhereTheValueStays) {
    View view;
    Told zoom(view.zoom);
    view.zoom = 1;
    view.zoom.reset();
    view.name = "back";
    view.zoom.item().setEditable(false);
    view.zoom = 2;
    view.zoom.reset();
    view.setDefaultValues();
    EXPECT_THAT(zoom.take(), IsEmpty());
}

TEST(SettingChanges, OfTheValueUnderneathAreToldWithTheNext) {
    View view;
    Told zoom(view.zoom);
    view.zoom.item().setValue(2);
    EXPECT_THAT(zoom.take(), IsEmpty());
    view.name = "back";
    EXPECT_THAT(zoom.take(), ElementsAre(2));
}

TEST(SettingChanges, OfNotANumberAreToldOnce) {
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    Camera camera;
    Told angle(camera.angle);
    camera.angle = nothing;
    EXPECT_EQ(1U, angle.take().size());
    camera.angle = nothing;
    EXPECT_THAT(angle.take(), IsEmpty());
    camera.angle = 1.0;
    EXPECT_THAT(angle.take(), ElementsAre(1.0));
}

TEST(SettingChanges, OfDefaultsAreTold) {
    View view;
    view.zoom = 2;
    view.camera->angle = 60.0;
    view.plotters.add("Hall 1").pens = 4;
    Told zoom(view.zoom);
    Told angle(view.camera->angle);
    Told pens(view.plotters.find("Hall 1")->pens);
    view.setDefaultValues();
    EXPECT_THAT(zoom.take(), ElementsAre(1));
    EXPECT_THAT(angle.take(), ElementsAre(45.0));
    EXPECT_THAT(pens.take(), ElementsAre(1));
}

TEST(SettingChanges, OfDefaultsAreToldWhenAllAreSet) {
    View view;
    view.zoom = 2;
    view.camera->angle = 60.0;
    std::optional<double> seen;
    const auto watch = view.zoom.onChange([&](int) { seen = view.camera->angle; });
    view.setDefaultValues();
    EXPECT_EQ(45.0, seen);
}

TEST(SettingChanges, AreNotToldByAClone) {
    View view;
    Told zoom(view.zoom);
    const std::unique_ptr<ConfigurationObject> clone(view.clone());
    auto& copy = dynamic_cast<View&>(*clone);
    copy.zoom = 2;
    EXPECT_THAT(zoom.take(), IsEmpty());
    Told copied(copy.zoom);
    view.zoom = 3;
    EXPECT_THAT(zoom.take(), ElementsAre(3));
    EXPECT_THAT(copied.take(), IsEmpty());
}

TEST(SettingChanges, OfACallbackAreToldAtOnceAndOnce) {
    View view;
    std::vector<std::string> order;
    const auto first = view.zoom.onChange([&](int zoom) {
        order.push_back("first " + std::to_string(zoom));
        if (zoom < 4)
            view.zoom = zoom + 1;
        view.name = "at " + std::to_string(zoom);
    });
    const auto second =
        view.zoom.onChange([&](int zoom) { order.push_back("second " + std::to_string(zoom)); });
    const auto third = view.name.onChange([&](const std::string& name) { order.push_back(name); });
    view.zoom = 3;
    EXPECT_EQ(4, view.zoom);
    EXPECT_THAT(order, ElementsAre("first 3", "first 4", "second 4", "at 4", "at 3"));
}

TEST(SettingChanges, EndWithTheSubscription) {
    View view;
    std::optional<Told<int>> zoom(std::in_place, view.zoom);
    zoom.reset();
    view.zoom = 2;

    int calls = 0;
    auto watch = view.zoom.onChange([&](int) { ++calls; });
    EXPECT_TRUE(watch.isActive());
    watch.end();
    EXPECT_FALSE(watch.isActive());
    view.zoom = 3;
    watch.end();
    EXPECT_EQ(0, calls);
    EXPECT_FALSE(ChangeSubscription().isActive());
}

TEST(SettingChanges, LetGoOfTheCallbackWithTheSubscription) {
    View view;
    const auto held = std::make_shared<int>();
    auto watch = view.zoom.onChange([held](int) {});
    EXPECT_EQ(2, held.use_count());
    watch.end();
    EXPECT_EQ(1, held.use_count());
}

TEST(SettingChanges, GoWithASubscriptionThatIsMoved) {
    View view;
    std::vector<std::string> calls;
    auto zoom = view.zoom.onChange([&](int) { calls.push_back("zoom"); });
    ChangeSubscription moved(std::move(zoom));
    EXPECT_FALSE(zoom.isActive()); // NOLINT(bugprone-use-after-move): it is one to nothing
    EXPECT_TRUE(moved.isActive());
    view.zoom = 2;
    EXPECT_THAT(calls, ElementsAre("zoom"));

    auto name = view.name.onChange([&](const std::string&) { calls.push_back("name"); });
    moved = std::move(name);
    view.zoom = 3;
    view.name = "back";
    EXPECT_THAT(calls, ElementsAre("zoom", "name"));
    auto& self = moved;
    moved = std::move(self);
    EXPECT_TRUE(moved.isActive());
    moved = ChangeSubscription();
    view.name = "left";
    EXPECT_THAT(calls, ElementsAre("zoom", "name"));
}

TEST(SettingChanges, EndWithTheSettings) {
    auto view = std::make_unique<View>();
    auto watch = view->zoom.onChange([](int) {});
    auto angle = view->camera->angle.onChange([](double) {});
    auto pens = view->plotters.add("Hall 1").pens.onChange([](int) {});
    view->plotters.remove("Hall 1");
    EXPECT_FALSE(pens.isActive());
    EXPECT_TRUE(angle.isActive());
    view.reset();
    EXPECT_FALSE(watch.isActive());
    EXPECT_FALSE(angle.isActive());
    watch.end();
}

TEST(SettingChanges, EndWithASubscriptionThatIsEndedByItsOwnCallback) {
    View view;
    int calls = 0;
    ChangeSubscription watch;
    watch = view.zoom.onChange([&, held = std::make_shared<int>(7)](int) {
        watch.end();
        calls += *held; // which lives until the callback returns
    });
    view.zoom = 2;
    view.zoom = 3;
    EXPECT_EQ(7, calls);
}

TEST(SettingChanges, EndWithASubscriptionThatIsEndedByAnotherCallback) {
    View view;
    std::vector<std::string> calls;
    ChangeSubscription second;
    ChangeSubscription third;
    const auto first = view.zoom.onChange([&](int) {
        calls.push_back("first");
        second.end();
        third = ChangeSubscription();
    });
    second = view.zoom.onChange([&](int) { calls.push_back("second"); });
    third = view.zoom.onChange([&](int) { calls.push_back("third"); });
    view.zoom = 2;
    EXPECT_THAT(calls, ElementsAre("first"));
}

TEST(SettingChanges, MayBeSubscribedToByACallback) {
    View view;
    std::vector<ChangeSubscription> watches;
    std::vector<int> late;
    watches.push_back(view.zoom.onChange([&](int) {
        watches.push_back(view.zoom.onChange([&](int zoom) { late.push_back(zoom); }));
    }));
    view.zoom = 2;
    EXPECT_THAT(late, IsEmpty());
    view.zoom = 3;
    EXPECT_THAT(late, ElementsAre(3));
}

TEST(SettingChanges, MayDeleteTheObject) {
    auto view = std::make_unique<View>();
    int calls = 0;
    std::vector<ChangeSubscription> watches;
    for (int i = 0; i < 2; ++i)
        watches.push_back(view->zoom.onChange([&, held = std::make_shared<int>(1)](int) {
            view.reset();
            calls += *held;
        }));
    view->zoom.set(2);
    EXPECT_EQ(1, calls);

    view = std::make_unique<View>();
    view->zoom.item().setValue(3);
    watches.push_back(view->zoom.onChange([&](int) { view.reset(); }));
    view->setDefaultValues();
    EXPECT_EQ(nullptr, view);
}

TEST(SettingChanges, MayRemoveAChildWithAKey) {
    View view;
    for (const char* key : {"a", "b", "c"})
        view.plotters.add(key).pens = 2;
    std::vector<std::string> calls;
    std::vector<ChangeSubscription> watches;
    for (const auto& [key, plotter] : view.plotters)
        watches.push_back(plotter.pens.onChange([&, name = std::string(key)](int) {
            calls.push_back(name);
            view.plotters.remove(name);
            view.plotters.remove("b");
        }));
    view.setDefaultValues();
    EXPECT_THAT(calls, ElementsAre("a", "c"));
    EXPECT_TRUE(view.plotters.empty());
}

TEST(SettingChanges, ThrowAtTheSetterWhenAllAreTold) {
    View view;
    const auto first = view.zoom.onChange(throwing("first"));
    const auto second = view.zoom.onChange(throwing("second"));
    Told zoom(view.zoom);
    const auto message = [](auto action) { return messageOf<std::runtime_error>(action); };
    EXPECT_EQ("first", message([&] { view.zoom = 2; }));
    EXPECT_EQ(2, view.zoom);
    EXPECT_THAT(zoom.take(), ElementsAre(2));
    EXPECT_EQ("first", message([&] { view.zoom.reset(); }));
    EXPECT_THAT(zoom.take(), ElementsAre(1));
    view.zoom.item().setValue(3);
    EXPECT_EQ("first", message([&] { view.zoom.set(3); }));
    EXPECT_THAT(zoom.take(), ElementsAre(3));
    EXPECT_EQ("first", message([&] { view.setDefaultValues(); }));
    EXPECT_THAT(zoom.take(), ElementsAre(1));
    EXPECT_NO_THROW(view.zoom = 1); // nothing to tell
}

TEST(SettingChanges, AreToldByAReaderOfTheApplicationToo) {
    AdvancedConfigReader reader;
    ASSERT_EQ(ConfigurationAccessResult::Success,
              reader.addStringSource(document("<View><Zoom>5</Zoom></View>"), {},
                                     AdvancedConfigReader::User, {"1.0"}));
    View view;
    Told zoom(view.zoom);
    reader.getClassContents("View", view);
    EXPECT_THAT(zoom.take(), ElementsAre(5));
}

class SettingChangesOfLoads : public ManagerFixture {
protected:
    std::shared_ptr<View> addView(const std::string& contents) {
        writeFile(m_file, document("<View>" + contents + "</View>"));
        useOneFile();
        return add(std::make_shared<View>());
    }
    void rewrite(const std::string& contents) {
        writeFile(m_file, document("<View>" + contents + "</View>"));
    }
};

TEST_F(SettingChangesOfLoads, AreToldAtRegistration) {
    writeFile(m_systemFile, document("<View><Zoom>2</Zoom><Name>left</Name></View>"));
    writeFile(m_userFile,
              document("<View><Zoom>3</Zoom><Camera><Angle>60</Angle></Camera></View>"));
    useTwoFiles();
    const auto view = std::make_shared<View>();
    Told zoom(view->zoom);
    Told name(view->name);
    Told unit(view->unit);
    Told angle(view->camera->angle);
    add(view);
    EXPECT_THAT(zoom.take(), ElementsAre(3)); // not the system's in between
    EXPECT_THAT(name.take(), ElementsAre("left"));
    EXPECT_THAT(unit.take(), IsEmpty());
    EXPECT_THAT(angle.take(), ElementsAre(60.0));
}

TEST_F(SettingChangesOfLoads, AreToldWhenTheWholeObjectIsLoaded) {
    const auto view = std::make_shared<View>();
    std::optional<double> angle;
    const auto watch = view->zoom.onChange([&](int) { angle = view->camera->angle; });
    std::optional<int> zoom;
    const auto other = view->camera->angle.onChange([&](double) { zoom = view->zoom; });
    writeFile(m_file, document("<View><Zoom>2</Zoom><Camera><Angle>60</Angle></Camera></View>"));
    useOneFile();
    add(view);
    EXPECT_EQ(60.0, angle);
    EXPECT_EQ(2, zoom);
}

TEST_F(SettingChangesOfLoads, AreToldByAResetOfTheObject) {
    const auto view = addView("<Zoom>2</Zoom><Camera><Angle>60</Angle></Camera>");
    view->name = "left";
    view->camera->angle = 70.0;
    Told zoom(view->zoom);
    Told name(view->name);
    Told angle(view->camera->angle);
    m_manager.resetConfigurationObject("View", true);
    EXPECT_THAT(zoom.take(), IsEmpty()); // not the default in between
    EXPECT_THAT(name.take(), ElementsAre("front"));
    EXPECT_THAT(angle.take(), ElementsAre(60.0));

    writeFile(m_file, document("")); // has no element of the object
    m_manager.resetConfigurationObject("View", true);
    EXPECT_THAT(zoom.take(), ElementsAre(1));
    EXPECT_THAT(angle.take(), ElementsAre(45.0));
    view->zoom = 4;
    writeFile(m_file, "not a document");
    m_manager.resetConfigurationObject("View", true);
    EXPECT_THAT(zoom.take(), ElementsAre(4, 1));
    m_manager.reset();
    add(view);
    view->zoom = 5;
    m_manager.resetConfigurationObject("View", true);
    EXPECT_THAT(zoom.take(), ElementsAre(5, 1));
}

TEST_F(SettingChangesOfLoads, AreToldByAReload) {
    const auto view = addView("<Zoom>2</Zoom><Name>left</Name><Plotter key=\"a\"/>");
    Told zoom(view->zoom);
    Told name(view->name);
    Told pens(view->plotters.find("a")->pens);
    rewrite("<Zoom>3</Zoom><Name>left</Name><Plotter key=\"a\"><Pens>6</Pens></Plotter>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_THAT(zoom.take(), ElementsAre(3));
    EXPECT_THAT(name.take(), IsEmpty());
    EXPECT_THAT(pens.take(), ElementsAre(6));
    writeFile(m_file, document(""));
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_THAT(zoom.take(), ElementsAre(1));
    EXPECT_THAT(name.take(), ElementsAre("front"));
}

TEST_F(SettingChangesOfLoads, AreNotToldOfDigitsThatNoFileHolds) {
    const auto view = addView("");
    view->camera->angle = 1.0 / 3;
    ASSERT_TRUE(m_manager.saveConfiguration("1.0"));
    Told angle(view->camera->angle);
    std::string saved = readFile(m_file);
    saved.replace(saved.find("<Zoom>1"), 7, "<Zoom>2");
    writeFile(m_file, saved);
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(2, view->zoom);
    EXPECT_THAT(angle.take(), IsEmpty());
    EXPECT_EQ(1.0 / 3, view->camera->angle);
}

TEST_F(SettingChangesOfLoads, AreToldOfObjectsThatAreWrittenByHand) {
    const auto room = TestObject::make("Room", [](TestObject& o) {
        o.add("Size", 1);
        o.addChild(new View);
    });
    auto& view = dynamic_cast<View&>(*room->getConfigurationObject("View"));
    Told zoom(view.zoom);
    writeFile(m_file, document("<Room><View><Zoom>2</Zoom></View></Room>"));
    useOneFile();
    add(room);
    EXPECT_THAT(zoom.take(), ElementsAre(2));
    view.zoom = 3;
    m_manager.resetConfigurationObject("Room", true);
    EXPECT_THAT(zoom.take(), ElementsAre(3, 2));
}

/// Does something whenever a load is over.
struct Acting : Settings<Acting> {
    Acting() : Settings("Acting") {}
    Setting<int> size{this, "Size", "", 1};
    void emitSignalsAfterConfigLoading() override {
        Settings::emitSignalsAfterConfigLoading();
        if (afterLoad)
            afterLoad();
    }
    std::function<void()> afterLoad;
};

TEST_F(SettingChangesOfLoads, OfAnotherObjectAreTold) {
    const auto view = addView("<Zoom>2</Zoom>");
    Told zoom(view->zoom);
    const auto acting = add(std::make_shared<Acting>());
    acting->afterLoad = [&] { view->setDefaultValues(); };
    m_manager.resetConfigurationObject("Acting", true);
    EXPECT_THAT(zoom.take(), ElementsAre(1));
    acting->afterLoad = [&] { m_manager.resetConfigurationObject("View", true); };
    m_manager.resetConfigurationObject("Acting", true);
    EXPECT_THAT(zoom.take(), ElementsAre(2));
    acting->afterLoad = [&] { view->zoom = 7; };
    m_manager.resetConfigurationObject("Acting", true);
    EXPECT_THAT(zoom.take(), ElementsAre(7));
}

TEST_F(SettingChangesOfLoads, OfWhatAClassSetsAfterALoadAreTold) {
    const auto acting = std::make_shared<Acting>();
    Told size(acting->size);
    acting->afterLoad = [&] {
        acting->size = acting->size + 1;
        acting->setDefaultValues();
    };
    useOneFile();
    writeFile(m_file, document("<Acting><Size>4</Size></Acting>"));
    add(acting);
    EXPECT_EQ(1, acting->size);
    EXPECT_THAT(size.take(), ElementsAre(5, 1));
}

TEST_F(SettingChangesOfLoads, AreToldEvenIfTheLoadThrows) {
    const auto acting = std::make_shared<Acting>();
    Told size(acting->size);
    acting->afterLoad = [] { throw std::runtime_error("after the load"); };
    useOneFile();
    writeFile(m_file, document("<Acting><Size>4</Size></Acting>"));
    EXPECT_EQ("after the load", messageOf<std::runtime_error>([&] { add(acting); }));
    EXPECT_THAT(size.take(), ElementsAre(4));
}

TEST_F(SettingChangesOfLoads, MayRemoveChildrenAndTheObject) {
    auto view = addView("<Plotter key=\"a\"/><Plotter key=\"b\"/><Plotter key=\"c\"/>");
    std::vector<std::string> calls;
    std::vector<ChangeSubscription> watches;
    for (const auto& [key, plotter] : view->plotters)
        watches.push_back(plotter.pens.onChange([&, name = std::string(key)](int) {
            calls.push_back(name);
            view->plotters.remove(name);
            view->plotters.remove("b");
        }));
    std::string contents;
    for (const char* key : {"a", "b", "c"})
        contents += "<Plotter key=\"" + std::string(key) + "\"><Pens>9</Pens></Plotter>";
    rewrite(contents);
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_THAT(calls, ElementsAre("a", "c"));
    EXPECT_TRUE(view->plotters.empty());

    watches.push_back(view->zoom.onChange([&](int) {
        m_manager.removeConfigurationObject("View");
        view.reset();
    }));
    rewrite("<Zoom>2</Zoom>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(nullptr, view);

    view = std::make_shared<View>();
    watches.push_back(view->zoom.onChange([&](int) {
        m_manager.removeConfigurationObject("View");
        view.reset();
    }));
    m_manager.addConfigurationObject(view, "View");
    EXPECT_EQ(nullptr, view);

    view = addView("<Zoom>2</Zoom>");
    view->zoom.item().setValue(3);
    watches.push_back(view->zoom.onChange([&](int) {
        m_manager.removeConfigurationObject("View");
        view.reset();
    }));
    m_manager.resetConfigurationObject("View", true);
    EXPECT_EQ(nullptr, view);
    for (const ChangeSubscription& watch : watches)
        EXPECT_FALSE(watch.isActive());
}

TEST_F(SettingChangesOfLoads, ThrowAtWhoRegisters) {
    const auto view = std::make_shared<View>();
    const auto watch = view->zoom.onChange(throwing("zoom"));
    Told name(view->name);
    EXPECT_EQ("zoom", messageOf<std::runtime_error>([&] {
                  writeFile(m_file, document("<View><Zoom>2</Zoom><Name>left</Name></View>"));
                  useOneFile();
                  add(view);
              }));
    EXPECT_THAT(name.take(), ElementsAre("left"));
    // It is registered, and what was loaded is known: there is nothing to save.
    m_manager.setSaveMode(ConfigurationManager::Merge);
    rewrite("<Zoom>5</Zoom>");
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(document("<View><Zoom>5</Zoom></View>"), withoutFormatting(readFile(m_file)));
}

/// Unlocks itself with its defaults, which a reset to the user's values undoes.
struct Unlocking : Settings<Unlocking> {
    Unlocking() : Settings("Unlocking") {}
    Setting<int> size{this, "Size", "", 1};
    Setting<int> fixed{this, "Fixed", "", 1};
    void setDefaultValues() override {
        Settings::setDefaultValues();
        fixed.item().setEditable(true);
    }
};

TEST_F(SettingChangesOfLoads, ThrowAtWhoResetsWhenLocksAreRestored) {
    writeFile(m_systemFile, document("<Unlocking><Fixed editable=\"false\">2</Fixed></Unlocking>"));
    writeFile(m_userFile, document("<Unlocking><Size>3</Size></Unlocking>"));
    useTwoFiles();
    const auto object = add(std::make_shared<Unlocking>());
    object->size.item().setValue(4);
    const auto watch = object->size.onChange(throwing("size"));
    EXPECT_EQ("size", messageOf<std::runtime_error>(
                          [&] { m_manager.resetConfigurationObject("Unlocking", true); }));
    EXPECT_EQ(3, object->size);
    EXPECT_EQ(2, object->fixed);
    EXPECT_TRUE(object->fixed.isLocked());
}

TEST_F(SettingChangesOfLoads, ThrowAtWhoReloadsWhenAllObjectsAreLoaded) {
    const auto view = addView("<Zoom>2</Zoom>");
    const auto acting = add(std::make_shared<Acting>());
    Told zoom(view->zoom);
    Told size(acting->size);
    const auto first = acting->size.onChange(throwing("size"));
    const auto second = view->zoom.onChange(throwing("zoom"));
    writeFile(m_file, document("<View><Zoom>3</Zoom></View><Acting><Size>4</Size></Acting>"));
    EXPECT_EQ("size", messageOf<std::runtime_error>([&] { m_manager.reloadConfiguration(); }));
    EXPECT_THAT(zoom.take(), ElementsAre(3));
    EXPECT_THAT(size.take(), ElementsAre(4));
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

TEST_F(SettingChangesOfLoads, MaySetAnotherObjectThatIsReloaded) {
    const auto acting = add(std::make_shared<Acting>());
    const auto view = addView("<Zoom>2</Zoom><Name>left</Name>");
    const auto watch = acting->size.onChange([&](int size) { view->zoom = 10 * size; });
    writeFile(m_file, document("<Acting><Size>4</Size></Acting>"
                               "<View><Zoom>2</Zoom><Name>right</Name></View>"));
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ("right", view->name.get());
    EXPECT_EQ(40, view->zoom);
}

TEST_F(SettingChangesOfLoads, MaySetAnotherObjectThatIsRegisteredWithTheirs) {
    writeFile(m_file, document("<Acting><Size>4</Size></Acting><View><Zoom>2</Zoom></View>"));
    useOneFile();
    const auto acting = std::make_shared<Acting>();
    const auto view = std::make_shared<View>();
    const auto watch = acting->size.onChange([&](int size) { view->zoom = 10 * size; });
    m_manager.addConfigurationObjects({{acting, "Acting"}, {view, "View"}});
    EXPECT_EQ(40, view->zoom);
}

TEST_F(SettingChangesOfLoads, ThrowAtWhoRegistersWhenAllObjectsAreLoaded) {
    writeFile(m_file, document("<Acting><Size>4</Size></Acting><View><Zoom>2</Zoom></View>"));
    useOneFile();
    const auto acting = std::make_shared<Acting>();
    const auto view = std::make_shared<View>();
    const auto watch = acting->size.onChange(throwing("size"));
    EXPECT_EQ("size", messageOf<std::runtime_error>([&] {
                  m_manager.addConfigurationObjects({{acting, "Acting"}, {view, "View"}});
              }));
    EXPECT_EQ(2, view->zoom);
    EXPECT_EQ(view.get(), m_manager.getConfigurationObject("View"));
}

TEST_F(SettingChangesOfLoads, MayResetTheObjectThatIsLoaded) {
    const auto view = addView("<Zoom>2</Zoom><Name>left</Name>");
    Told zoom(view->zoom);
    Told name(view->name);
    const auto watch = view->name.onChange([&](const std::string&) { view->zoom.reset(); });
    rewrite("<Zoom>3</Zoom><Name>right</Name>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_THAT(zoom.take(), ElementsAre(3, 1));
    EXPECT_THAT(name.take(), ElementsAre("right"));
}

} // namespace
} // namespace Orvant
