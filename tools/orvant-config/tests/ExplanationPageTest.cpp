#include "NastyCatalogue.h"

#include "generating/ExplanationPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Orvant;
using namespace Orvant::Tool;
using testing::HasSubstr;
using testing::Not;

namespace {

class ExplanationPageTest : public testing::Test {
protected:
    static ConfigurationOrigin makeOrigin(const std::string& path, const std::string& value) {
        ConfigurationOrigin origin{};
        origin.path = path;
        origin.value = value;
        return origin;
    }
    std::string page(const ConfigurationOrigin& origin) const {
        return makePage("a & b", m_settings, {"/etc/system.xml", "/home/user.xml"}, {origin});
    }

    const ConfigurationCatalogue m_catalogue = Support::makeNastyCatalogue();
    const SettingIndex m_settings{m_catalogue};
};

} // namespace

TEST_F(ExplanationPageTest, ShowsMarkupAsText) {
    const std::string text = page(makeOrigin("Texts/Text0", "</script><b a='{{rows}}'>&\"\r\n"));
    EXPECT_THAT(text,
                HasSubstr("<td class=\"value\">&quot;&lt;/script&gt;&lt;b a='{{rows}}'&gt;&amp;"
                          "&quot;&#13;&#10;&quot;</td>"));
    EXPECT_THAT(text, HasSubstr("<title>Settings of a &amp; b</title>"));
}

TEST_F(ExplanationPageTest, FillsAllOfItsFrame) {
    EXPECT_THAT(page(makeOrigin("Texts/Text0", "")), Not(HasSubstr("{{")));
}

TEST_F(ExplanationPageTest, LinksToASettingByItsPath) {
    EXPECT_THAT(page(makeOrigin("Machine[ä \"#%]/MaxFeed", "1")),
                HasSubstr("<a href=\"#Machine%5B%C3%A4%20%22%23%25%5D/MaxFeed\">"
                          "Machine[ä &quot;#%]/MaxFeed</a><span class=\"label\">Feed</span>"));
}

TEST_F(ExplanationPageTest, QuotesStringsOnly) {
    EXPECT_THAT(page(makeOrigin("Numbers--all/Int", "5")), HasSubstr("value\">5</td>"));
    EXPECT_THAT(page(makeOrigin("Texts/Text0", "")), HasSubstr("value\">&quot;&quot;</td>"));
    EXPECT_THAT(page(makeOrigin("Texts/Items", "")), HasSubstr("value\">(empty)</td>"));
    EXPECT_THAT(page(makeOrigin("Written/ByItsClass", "5")),
                HasSubstr("value\">&quot;5&quot;</td>"));
}

TEST_F(ExplanationPageTest, SaysWhatLocks) {
    ConfigurationOrigin origin = makeOrigin("Texts/Text0", "");
    EXPECT_THAT(page(origin), Not(HasSubstr("class=\"lock\"")));
    origin.locked = true;
    origin.lockedBy = origin.path;
    EXPECT_THAT(page(origin), HasSubstr("</svg> locked by the application</span></td>"));
    origin.lockLine = 7;
    origin.lockFile = "/etc/system.xml";
    EXPECT_THAT(page(origin), HasSubstr("</svg> locked</span><span class=\"place\"><span "
                                        "title=\"/etc/system.xml:7\">system.xml:7</span>"));
    origin.lockedBy = "Te<xts";
    EXPECT_THAT(page(origin), HasSubstr("</svg> locked by Te&lt;xts</span>"));
}

TEST_F(ExplanationPageTest, SaysWhatIsInVain) {
    ConfigurationOrigin origin = makeOrigin("Numbers--all/Int", "5");
    origin.systemValue = "6x";
    origin.systemLine = 2;
    origin.userValue = "7";
    origin.userLine = 3;
    constexpr const char* system = ">system.xml:2</span> says <span class=\"said\">6x</span>";
    constexpr const char* user = ">user.xml:3</span> says <span class=\"said\">7</span>";
    EXPECT_THAT(page(origin), AllOf(HasSubstr(system), HasSubstr(user)));
    origin.layer = ConfigurationOrigin::User;
    EXPECT_THAT(page(origin), AllOf(HasSubstr(system), Not(HasSubstr(user))));
    origin.layer = ConfigurationOrigin::System;
    EXPECT_THAT(page(origin), AllOf(Not(HasSubstr(system)), HasSubstr(user)));
}
