#include <faults/FaultSupport.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include <sys/wait.h>
#include <unistd.h>

namespace Orvant::Support {

namespace fs = std::filesystem;

FaultFixture::FaultFixture() {
    fs::create_directory(m_userFolder);
    fs::create_directory(m_systemFolder);
}

void FaultFixture::start(SaveMode mode, bool twoFiles) {
    m_manager.reset();
    m_manager.setSaveMode(mode);
    if (twoFiles)
        m_manager.setSystemAndUserConfigurationFile(m_system, m_user);
    else
        m_manager.setConfigurationFile(m_user);
}

std::vector<std::string> FaultFixture::besideUserFile() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_userFolder))
        if (entry.path().extension() != ".lock")
            names.push_back(entry.path().filename().string());
    return names;
}

Process::Process(const std::function<void()>& run) : m_id(fork()) {
    if (m_id < 0)
        throw std::runtime_error("no other process");
    if (m_id > 0)
        return;
    int status = 0;
    try {
        run();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        status = 1;
    }
    // No destructor of the other process's objects may run here: they remove its files.
    _exit(status);
}

Process::~Process() {
    kill();
}

void Process::kill() {
    if (m_id <= 0)
        return;
    ::kill(m_id, SIGKILL);
    succeeds();
}

bool Process::succeeds() {
    int status = 0;
    const bool isEnded = m_id > 0 && waitpid(m_id, &status, 0) == m_id;
    m_id = 0;
    return isEnded && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

GenerationsFixture::GenerationsFixture(SaveMode mode, bool twoFiles, int texts, std::size_t size)
    : m_mode(mode), m_twoFiles(twoFiles), m_texts(texts), m_size(size) {
    load();
    saveNext();
    if (twoFiles) {
        std::filesystem::rename(m_user.toPath(), m_system.toPath());
        load();
        saveNext();
    }
    m_sample = readFile(m_user);
    m_sampleGeneration = m_generation;
}

int GenerationsFixture::load() {
    start(m_mode, m_twoFiles);
    m_object = add(makeObject());
    const auto text = [&](int i) {
        return m_object->value<std::string>("text" + std::to_string(i)).getValue();
    };
    m_generation = std::stoi(text(0));
    for (int i = 1; i < m_texts; ++i)
        if (text(i) != textOf(m_generation))
            m_generation = 0;
    return m_generation;
}

int GenerationsFixture::generationOfFile() const {
    const std::string bytes = readFile(m_user);
    const std::string tag = "<text0>";
    const auto first = bytes.find(tag);
    if (first == bytes.npos)
        return 0;
    const int generation = std::stoi("0" + bytes.substr(first + tag.size(), 9));
    const std::string former = textOf(m_sampleGeneration);
    const std::string text = textOf(generation);
    std::string expected = m_sample;
    for (auto at = expected.find(former); at != expected.npos;
         at = expected.find(former, at + text.size()))
        expected.replace(at, former.size(), text);
    return bytes == expected ? generation : 0;
}

void GenerationsFixture::saveNext() {
    const std::string text = textOf(++m_generation);
    for (int i = 0; i < m_texts; ++i)
        m_object->value<std::string>("text" + std::to_string(i)).setValue(text);
    if (!m_manager.saveConfiguration("1.0"))
        throw std::runtime_error(m_manager.getSaveReport().text);
}

void GenerationsFixture::saveForEver(int generation) {
    m_generation = generation;
    while (true)
        saveNext();
}

std::shared_ptr<TestObject> GenerationsFixture::makeObject() const {
    return TestObject::make("Settings", [texts = m_texts](TestObject& object) {
        for (int i = 0; i < texts; ++i)
            object.add("text" + std::to_string(i), std::string("0"));
    });
}

std::string GenerationsFixture::textOf(int generation) const {
    std::string text = std::to_string(generation) + " ";
    const auto tenths = static_cast<std::size_t>(10 + generation % 3);
    text.resize(m_size * tenths / 10, 'x');
    return text;
}

std::string nameOfModes(const testing::TestParamInfo<std::tuple<SaveMode, bool>>& info) {
    const auto& [mode, twoFiles] = info.param;
    return nameOf(mode) + (twoFiles ? "TwoFiles" : "OneFile");
}

} // namespace Orvant::Support
