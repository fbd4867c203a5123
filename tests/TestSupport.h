#pragma once

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>
#include <FileHandling/FileName.h>
#include <VersionControl/BuildInformation.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Orvant::Support {

/// A new directory that is removed at the end of the scope.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    const std::filesystem::path& path() const { return m_path; }
    /// @return the name of a file in the directory
    FileName file(const std::string& name) const;
    /// Writes a file into the directory.
    /// @return its name
    FileName file(const std::string& name, const std::string& bytes) const;

private:
    std::filesystem::path m_path;
};

/// @return the names of what is in the directory, sorted
std::vector<std::string> filesIn(const TemporaryDirectory& directory);

void writeFile(const FileName& file, const std::string& bytes);
/// @return the bytes of a file; fails the test when there is none
std::string readFile(const FileName& file);

/// @return the text without line ends and the blanks around them, to compare documents whatever
///         their indentation
std::string withoutFormatting(const std::string& text);

/// @return a document of version 1.0 that holds the contents
std::string document(const std::string& contents);

/// Makes the process run as a given product while it is in scope.
class RunningProduct {
public:
    explicit RunningProduct(BuildInformation::ProductType product)
        : m_former(BuildInformation::getProductType()) {
        BuildInformation::setProductType(product);
    }
    RunningProduct(const RunningProduct&) = delete;
    RunningProduct& operator=(const RunningProduct&) = delete;
    ~RunningProduct() { BuildInformation::setProductType(m_former); }

private:
    BuildInformation::ProductType m_former;
};

/// Collects what goes to the error log of a name ("SimpleConfigReader", "ConfigWriter", ...) while
/// it is in scope.
class LogCapture {
public:
    explicit LogCapture(const std::string& logName);
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// @return a line for each message: message and place
    std::string text() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// A configuration object whose values and children each test defines.
class TestObject : public ConfigurationObject {
public:
    explicit TestObject(const std::string& name = "Test", Persistence persistence = LoadAndSave,
                        ProductType productType = AllProducts)
        : ConfigurationObject(name, "", persistence, productType) {}

    /// Makes an empty object of this name and fills it with what `build` adds.
    /// The builder is kept for createConfigurationObject().
    template <typename Build>
    static std::shared_ptr<TestObject> make(const std::string& name, Build build,
                                            Persistence persistence = LoadAndSave,
                                            ProductType productType = AllProducts) {
        auto object = std::make_shared<TestObject>(name, persistence, productType);
        object->m_build = build;
        build(*object);
        return object;
    }

    template <typename T>
    TestObject& add(const std::string& name, const T& defaultValue,
                    Persistence persistence = LoadAndSave, ProductType productType = AllProducts,
                    const std::string& description = "") {
        addConfigurationValue(new ConfigurationValue<T>(name, description, defaultValue, Visible,
                                                        persistence, productType));
        return *this;
    }
    /// Adds a child; ownership goes to this object.
    TestObject& addChild(ConfigurationObject* child) {
        addConfigurationObject(child);
        return *this;
    }
    void clear() { clearConfigurationItems(); }

    template <typename T>
    ConfigurationValue<T>& value(const std::string& name) const {
        return dynamic_cast<ConfigurationValue<T>&>(*getConfigurationValue(name));
    }
    TestObject& child(const std::string& name) const {
        return dynamic_cast<TestObject&>(*getConfigurationObject(name));
    }

    ConfigurationObject* createConfigurationObject() const override {
        auto fresh = std::make_unique<TestObject>(*this);
        fresh->clear();
        fresh->setEditable(true);
        if (m_build)
            m_build(*fresh);
        return fresh.release();
    }
    void emitSignalsAfterConfigLoading() override {
        ++signals;
        ConfigurationObject::emitSignalsAfterConfigLoading();
    }

    int signals = 0; ///< calls of emitSignalsAfterConfigLoading()

private:
    std::function<void(TestObject&)> m_build;
};

/// Throws a std::runtime_error in the middle of saving itself, in full or only what differs.
class ThrowingObject : public TestObject {
public:
    using TestObject::TestObject;

    void saveContent(ConfigWriter& writer) const override;
    void saveContent(ConfigWriter& writer, ConfigReader& reader, bool onlyDifferent) const override;
    bool canBeSavedToUserConfig(ConfigReader&) const override { return true; }
};

/// Has a value "a" (1); cannot be created again or cloned.
class Unmakeable : public TestObject {
public:
    Unmakeable() : TestObject("Unmakeable") { add("a", 1); }
    ConfigurationObject* createConfigurationObject() const override { return nullptr; }
};

/// Has a value "a" (1), and does something once, when it is loaded or saved in full.
class ActingObject : public TestObject {
public:
    explicit ActingObject(const std::string& name) : TestObject(name) { add("a", 1); }
    ConfigurationObject* createConfigurationObject() const override {
        return new ActingObject(getName());
    }
    void loadContent(ConfigReader& reader) override;
    using TestObject::saveContent;
    void saveContent(ConfigWriter& writer) const override;

    mutable std::function<void()> onLoad;
    mutable std::function<void()> onSave;
};

} // namespace Orvant::Support
