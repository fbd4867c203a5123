#include <ExceptionHandling/OvException.h>

#include <TestSupport.h>

#include <gmock/gmock.h>

#include <type_traits>
#include <utility>

namespace Orvant {
namespace {

using testing::HasSubstr;

TEST(OvException, TellsItsNameAndThePlaceInItsText) {
    const auto place = std::source_location::current();
    const OvException exception("PlotterJammed", place);
    const std::string expected = std::string("PlotterJammed thrown at ") + place.file_name() + ':' +
                                 std::to_string(place.line()) + ':' +
                                 std::to_string(place.column()) + " in " + place.function_name();
    EXPECT_EQ(expected, exception.what());
}

TEST(OvException, TakesThePlaceOfItsConstructionByItself) {
    const auto before = std::source_location::current();
    const OvException exception("PlotterJammed");
    EXPECT_EQ(before.line() + 1, exception.getLocation().line());
    EXPECT_STREQ(before.file_name(), exception.getLocation().file_name());
    EXPECT_STREQ(before.function_name(), exception.getLocation().function_name());
}

TEST(OvException, IsCaughtAsAStandardException) {
    try {
        throw OvException("PlotterJammed");
    } catch (const std::exception& caught) {
        EXPECT_THAT(caught.what(), HasSubstr("PlotterJammed"));
    }
    EXPECT_TRUE(std::has_virtual_destructor_v<OvException>);
}

TEST(OvException, KeepsTextAndPlaceWhenCopiedMovedAndAssigned) {
    const OvException original("PlotterJammed");
    const auto expectSame = [&](const OvException& other) {
        EXPECT_STREQ(original.what(), other.what());
        EXPECT_EQ(original.getLocation().line(), other.getLocation().line());
    };
    OvException copy(original);
    expectSame(copy);
    OvException moved(std::move(copy));
    expectSame(moved);
    OvException assigned("Other");
    assigned = original;
    expectSame(assigned);
    OvException moveAssigned("Other");
    moveAssigned = std::move(moved);
    expectSame(moveAssigned);
}

TEST(OvException, LogsItsTextWithItsPlace) {
    const Support::LogCapture capture("OvException");
    const OvException exception("PlotterJammed");
    exception.log();
    EXPECT_THAT(capture.text(), HasSubstr(exception.what()));
    EXPECT_THAT(capture.text(), HasSubstr(std::string(exception.getLocation().file_name()) + ':' +
                                          std::to_string(exception.getLocation().line())));
}

TEST(OvException, LogsNothingUnasked) {
    const Support::LogCapture capture("OvException");
    const OvException exception("PlotterJammed");
    EXPECT_EQ("", capture.text());
}

} // namespace
} // namespace Orvant
