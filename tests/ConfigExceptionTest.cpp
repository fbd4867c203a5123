#include <ConfigurationFramework/ConfigException.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace Orvant {
namespace {

TEST(ConfigException, NumbersItsTypesAsDocumented) {
    EXPECT_EQ(0u, ConfigException::InvalidDocument);
    EXPECT_EQ(1u, ConfigException::SourceNotFound);
    EXPECT_EQ(2u, ConfigException::UnknownError);
    EXPECT_EQ(3u, ConfigException::InvalidVersion);
    EXPECT_EQ(4u, ConfigException::ParserReportedErrors);
    EXPECT_EQ(4u, sizeof(ConfigException::ExceptionType));
    EXPECT_EQ(ConfigException::SourceNotFound, ConfigException::ExceptionType::SourceNotFound);
}

TEST(ConfigException, HasTheNameAndTheGivenPlace) {
    const auto place = std::source_location::current();
    const ConfigException exception(ConfigException::InvalidVersion, place);
    EXPECT_EQ(0, std::string(exception.what()).find("ConfigException"));
    EXPECT_EQ(place.line(), exception.getLocation().line());
    EXPECT_EQ(place.column(), exception.getLocation().column());
    EXPECT_STREQ(place.file_name(), exception.getLocation().file_name());
    EXPECT_STREQ(place.function_name(), exception.getLocation().function_name());
}

TEST(ConfigException, KeepsTypeAndPlaceWhenCopiedMovedAndAssigned) {
    const auto place = std::source_location::current();
    try {
        throw ConfigException(ConfigException::SourceNotFound, place);
    } catch (const ConfigException& caught) {
        ConfigException copy(caught);
        EXPECT_EQ(ConfigException::SourceNotFound, copy.getType());
        EXPECT_EQ(place.line(), copy.getLocation().line());

        ConfigException assigned(ConfigException::UnknownError);
        assigned = caught;
        EXPECT_EQ(ConfigException::SourceNotFound, assigned.getType());
        EXPECT_EQ(place.line(), assigned.getLocation().line());

        ConfigException moved(std::move(copy));
        EXPECT_EQ(ConfigException::SourceNotFound, moved.getType());
        ConfigException moveAssigned(ConfigException::UnknownError);
        moveAssigned = std::move(moved);
        EXPECT_EQ(ConfigException::SourceNotFound, moveAssigned.getType());
        EXPECT_EQ(place.line(), moveAssigned.getLocation().line());
    }
}

TEST(ConfigException, IsAnOvExceptionAndAStandardException) {
    EXPECT_TRUE((std::is_base_of_v<OvException, ConfigException>));
    EXPECT_TRUE((std::is_base_of_v<std::exception, ConfigException>));
    EXPECT_TRUE(std::has_virtual_destructor_v<ConfigException>);
}

TEST(ConfigException, DoesNothingWhenAsked) {
    ConfigException exception(ConfigException::UnknownError);
    exception.doNothing();
    EXPECT_EQ(ConfigException::UnknownError, exception.getType());
}

} // namespace
} // namespace Orvant
