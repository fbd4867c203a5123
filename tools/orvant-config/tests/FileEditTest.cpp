#include "editing/FileEdit.h"
#include "NastyCatalogue.h"

#include <TestSupport.h>

#include <gtest/gtest.h>

#include <fstream>

using namespace Orvant;
using namespace Orvant::Tool;

namespace {

class FileEditTest : public testing::Test {
protected:
    FileEditTest() {
        m_options.catalogue = m_directory.file("nasty.xml").toString();
        m_options.systemFile = m_file.toString();
        m_options.quiet = true;
        std::ofstream stream(*m_options.catalogue);
        Support::makeNastyCatalogue().write(stream);
    }

    /// Sets a value, after others have changed the file.
    /// @param changes how often they change it
    /// @return how often it was tried
    int setAmong(int changes) {
        Session session(m_options);
        int attempts = 0;
        editFile(session, session.find("Numbers--all/Int"), [&](FileEdit& edit) {
            edit.setTexts({"7"});
            if (++attempts <= changes)
                change(attempts);
            edit.finish("is 7", nlohmann::ordered_json::object());
            return ExitCode::Clean;
        });
        return attempts;
    }
    std::optional<std::string> textAt(const ConfigurationElementPath& place) const {
        return ConfigurationFileEditor(m_file, "1.0").text(place);
    }

    const Support::TemporaryDirectory m_directory;
    const FileName m_file = m_directory.file("system.xml");
    const ConfigurationElementPath m_place{{"Numbers--all"}, {"Int"}};
    const ConfigurationElementPath m_otherPlace{{"Other"}};

private:
    void change(int number) const {
        ConfigurationFileEditor other(m_file, "1.0");
        other.setText(m_otherPlace, std::to_string(number));
        ASSERT_EQ(other.save().reason, ConfigurationSaveReport::Saved);
    }

    Options m_options;
};

} // namespace

TEST_F(FileEditTest, IsRepeatedWhereOthersChangeTheFile) {
    EXPECT_EQ(setAmong(19), 20);
    EXPECT_EQ(textAt(m_place), "7");
    EXPECT_EQ(textAt(m_otherPlace), "19");
}

TEST_F(FileEditTest, FailsWhereOthersChangeTheFileAgainAndAgain) {
    EXPECT_THROW(setAmong(20), Failure);
    EXPECT_EQ(textAt(m_place), std::nullopt);
    EXPECT_EQ(textAt(m_otherPlace), "20");
}
