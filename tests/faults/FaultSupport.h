#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>

#include <ManagerFixture.h>

#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include <sys/types.h>

namespace Orvant::Support {

/// The manager with its files in a folder of their own each.
class FaultFixture : public ManagerFixture {
protected:
    FaultFixture();

    /// Forgets the objects, and sets one file or two.
    void start(SaveMode mode, bool twoFiles);
    /// @return names of what is beside the user's file but the lock file, that file included
    std::vector<std::string> besideUserFile() const;

    const std::filesystem::path m_userFolder = m_directory.path() / "user";
    const std::filesystem::path m_systemFolder = m_directory.path() / "system";
    const FileName m_user = m_directory.file("user/settings.xml");
    const FileName m_system = m_directory.file("system/settings.xml");
};

/// Another process, which ends at the latest with this object.
class Process {
public:
    /// @param run what it does; it is ended by an exception, whose text it prints
    explicit Process(const std::function<void()>& run);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    /// Kills it as `kill -9` does.
    void kill();
    /// Waits until it ends.
    /// @return true when it came to the end of what it does
    bool succeeds();

private:
    pid_t m_id;
};

/// An object whose texts all tell the same generation, which is a number, and saves of one
/// generation after the other.
class GenerationsFixture : public FaultFixture {
protected:
    /// Saves a first generation. With two files, the system file holds an earlier one.
    /// @param texts number of texts
    /// @param size  bytes of each; up to a fifth more in some generations
    GenerationsFixture(SaveMode mode, bool twoFiles, int texts, std::size_t size);

    /// Loads the object from the files as they are.
    /// @return its generation; 0 where there is none in the files or the texts are of several
    int load();
    /// @return the generation of the user's file; 0 where it is not byte for byte what saveNext()
    ///         writes
    int generationOfFile() const;
    /// Saves the next generation of the loaded object.
    /// @throws std::runtime_error when that fails
    void saveNext();
    /// Saves the generations after one without end.
    /// @throws std::runtime_error when that fails
    [[noreturn]] void saveForEver(int generation);

private:
    std::shared_ptr<TestObject> makeObject() const;
    std::string textOf(int generation) const;

    SaveMode m_mode;
    bool m_twoFiles;
    int m_texts;
    std::size_t m_size;
    std::shared_ptr<TestObject> m_object;
    int m_generation = 0;
    std::string m_sample; ///< what the user's file holds for m_sampleGeneration
    int m_sampleGeneration;
};

/// Names a test by save mode and whether there are two files.
std::string nameOfModes(const testing::TestParamInfo<std::tuple<SaveMode, bool>>& info);

} // namespace Orvant::Support
