#pragma once

#include <ManagerFixture.h>

#include <memory>
#include <string>

namespace Orvant::Support {

/// Writes the files and registers an object that they may hold.
class ViewFixture : public ManagerFixture {
protected:
    void writeOne(const std::string& contents) {
        writeFile(m_file, document(contents));
        useOneFile();
    }
    void writeTwo(const std::string& system, const std::string& user) {
        writeFile(m_systemFile, document(system));
        writeFile(m_userFile, document(user));
        useTwoFiles();
    }
    /// Registers an object View that `build` fills.
    template <typename Build>
    std::shared_ptr<TestObject> addView(Build build) {
        return add(TestObject::make("View", build));
    }
    /// Registers an object View with a value Zoom (1).
    std::shared_ptr<TestObject> addView() {
        return addView([](TestObject& o) { o.add("Zoom", 1); });
    }
};

/// @return the name without its folder
inline std::string withoutFolder(const FileName& file) {
    const std::string name = file.toString();
    return name.substr(name.find_last_of("/\\") + 1);
}

} // namespace Orvant::Support
