#include <TestSupport.h>

#include <ConfigurationFramework/ConfigWriter.h>

#include <gtest/gtest.h>
#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/spdlog.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Orvant::Support {

namespace {

std::filesystem::path pathOf(const FileName& file) {
    const std::string name = file.toNativeString();
    return std::u8string(name.begin(), name.end());
}

} // namespace

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvant-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary directory");
    m_path = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
}

FileName TemporaryDirectory::file(const std::string& name) const {
    FileName result(m_path.string());
    return result /= name;
}

FileName TemporaryDirectory::file(const std::string& name, const std::string& bytes) const {
    const FileName result = file(name);
    writeFile(result, bytes);
    return result;
}

std::vector<std::string> filesIn(const TemporaryDirectory& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory.path()))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

void writeFile(const FileName& file, const std::string& bytes) {
    std::ofstream out(pathOf(file), std::ios::binary);
    out << bytes;
    if (!out.flush())
        throw std::runtime_error("cannot write " + file.toString());
}

std::string readFile(const FileName& file) {
    std::ifstream in(pathOf(file), std::ios::binary);
    EXPECT_TRUE(in.is_open()) << file.toString();
    std::ostringstream bytes;
    bytes << in.rdbuf(); // many times faster than character by character
    return bytes.str();
}

std::string withoutFormatting(const std::string& text) {
    constexpr const char* blanks = " \t\r";
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);)
        if (const auto first = line.find_first_not_of(blanks); first != line.npos)
            result += line.substr(first, line.find_last_not_of(blanks) + 1 - first);
    return result;
}

std::string document(const std::string& contents) {
    return "<Configuration version=\"1.0\">" + contents + "</Configuration>";
}

struct LogCapture::State {
    explicit State(const std::string& name)
        : sink(std::make_shared<spdlog::sinks::ostream_sink_mt>(text)),
          former(spdlog::get(name)),
          logName(name) {}

    std::ostringstream text;
    spdlog::sink_ptr sink;
    std::shared_ptr<spdlog::logger> former;
    std::string logName;
};

LogCapture::LogCapture(const std::string& logName) : m_state(std::make_unique<State>(logName)) {
    spdlog::drop(logName);
    auto logger = std::make_shared<spdlog::logger>(logName, m_state->sink);
    logger->set_pattern("%v");
    spdlog::register_logger(logger);
}

LogCapture::~LogCapture() {
    spdlog::drop(m_state->logName);
    if (m_state->former)
        spdlog::register_logger(m_state->former);
}

std::string LogCapture::text() const {
    return m_state->text.str();
}

void ThrowingObject::saveContent(ConfigWriter& writer) const {
    writer.createNodeAndMakeCurrent("begun", "");
    throw std::runtime_error("cannot be saved");
}

void ThrowingObject::saveContent(ConfigWriter& writer, ConfigReader&, bool) const {
    saveContent(writer);
}

void ActingObject::loadContent(ConfigReader& reader) {
    TestObject::loadContent(reader);
    if (const auto action = std::exchange(onLoad, nullptr))
        action();
}

void ActingObject::saveContent(ConfigWriter& writer) const {
    if (const auto action = std::exchange(onSave, nullptr))
        action();
    TestObject::saveContent(writer);
}

} // namespace Orvant::Support
