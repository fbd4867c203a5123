#include "generating/NewFile.h"

#include "common/ExitCode.h"
#include <TestSupport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace Orvant;
using namespace Orvant::Tool;
using testing::ElementsAre;
namespace fs = std::filesystem;

namespace {

class NewFileTest : public testing::Test {
protected:
    const Support::TemporaryDirectory m_directory;
    const FileName m_file = m_directory.file("page.html");
};

} // namespace

TEST_F(NewFileTest, IsMadeOrReplaced) {
    writeFile(m_file.toString(), "first, and longer");
    writeFile(m_file.toString(), "second");
    EXPECT_EQ(Support::readFile(m_file), "second");
    EXPECT_THAT(Support::filesIn(m_directory), ElementsAre("page.html"));
}

TEST_F(NewFileTest, IsAnotherOneThanTheOld) {
    writeFile(m_file.toString(), "old");
    const fs::path other = m_directory.path() / "other.html";
    fs::create_hard_link(m_file.toString(), other);
    writeFile(m_file.toString(), "new");
    EXPECT_EQ(Support::readFile(FileName(other.string())), "old");
}

TEST_F(NewFileTest, HasTheRightsOfTheOldOne) {
    writeFile(m_file.toString(), "old");
    fs::permissions(m_file.toString(), fs::perms::owner_read | fs::perms::owner_write);
    writeFile(m_file.toString(), "new");
    EXPECT_EQ(fs::status(m_file.toString()).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(NewFileTest, LeavesNothingBehindWhenItFails) {
    fs::create_directory(m_directory.path() / "folder");
    for (const char* const name : {"folder", "missing/page.html"}) {
        try {
            writeFile((m_directory.path() / name).string(), "text");
            FAIL() << name;
        } catch (const Failure& e) {
            EXPECT_EQ(e.code(), ExitCode::FileError);
        }
    }
    EXPECT_THAT(Support::filesIn(m_directory), ElementsAre("folder"));
    EXPECT_TRUE(fs::is_empty(m_directory.path() / "folder"));
}
