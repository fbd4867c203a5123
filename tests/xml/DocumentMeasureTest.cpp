// How much memory documents made to fill it take when they are read, edited and printed. The
// program counts all allocations, those of Xerces-C++ included.

#include <ConfigurationFramework/ConfigWriter.h>

#include <EntitySupport.h>
#include <ReaderSupport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>

#include <malloc.h>

namespace {

std::atomic<std::size_t> s_bytes = 0;
std::atomic<std::size_t> s_peak = 0;

} // namespace

void* operator new(std::size_t size) {
    void* const memory = std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    const std::size_t bytes = s_bytes += malloc_usable_size(memory);
    s_peak = std::max(s_peak.load(), bytes);
    return memory;
}

void operator delete(void* memory) noexcept {
    s_bytes -= malloc_usable_size(memory);
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}

namespace Orvant {
namespace {

using Support::configuration;
using Support::nested;
using Support::nestedEntities;
using Support::openString;
using Support::refusal;
using Support::repeated;

constexpr std::size_t mebibyte = std::size_t{1} << 20U;

/// @param text makes a piece from its number
std::string numbered(std::size_t count,
                     const std::function<std::string(const std::string&)>& text) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += text(std::to_string(i));
    return result;
}

enum class Opened { Yes, No };

struct HostileDocument : Support::TestCase {
    Opened opened;
    std::function<std::string()> make;
};

class DocumentMemory : public testing::TestWithParam<HostileDocument> {
protected:
    /// @return most bytes that a call takes in addition to what is there
    template <typename Call>
    static std::size_t peakOf(Call call) {
        const std::size_t before = s_bytes;
        s_peak = before;
        call();
        return s_peak - before;
    }
};

TEST_P(DocumentMemory, IsBoundedByTheSizeOfTheDocument) {
    const ConfigWriter xerces("1.0"); // keeps Xerces initialised
    const std::string document = GetParam().make();
    const std::size_t most = 64 * mebibyte + 16 * document.size();
    const bool isOpened = GetParam().opened == Opened::Yes;

    EXPECT_LE(peakOf([&] { EXPECT_EQ(isOpened, !refusal([&] { openString(document); })); }), most);
    EXPECT_LE(peakOf([&] {
                  EXPECT_EQ(isOpened,
                            !refusal([&] { ConfigWriter(FileName(), document).getAsString(); }));
              }),
              most);
}

/// Elements whose tags have the same hash in Xerces.
std::string tagsOfOneHash(std::size_t count) {
    static const std::string s_pairs[] = {"az", "bT", "c."}; // 'a' * 38 + 'z', and so on
    std::string elements;
    for (std::size_t i = 0; i < count; ++i) {
        elements += '<';
        for (std::size_t digits = i, length = 0; length < 10; ++length, digits /= 3)
            elements += s_pairs[digits % 3];
        elements += "/>";
    }
    return elements;
}

std::string declaredAttributes(std::size_t count, const std::string& value) {
    return "<!ATTLIST A " +
           numbered(count, [&](const auto& i) { return "a" + i + " CDATA '" + value + "'"; }) + ">";
}

const HostileDocument documents[] = {
    {"ElementsOfFourBytes", Opened::Yes, [] { return configuration(repeated("<a/>", 260'000)); }},
    {"ManyElementsOfFourBytes", Opened::No,
     [] { return configuration(repeated("<a/>", 1'000'000)); }},
    {"ElementsWithAnAttribute", Opened::No,
     [] { return configuration(repeated("<a b=''/>", 400'000)); }},
    {"ElementsWithABlank", Opened::No, [] { return configuration(repeated("<a> </a>", 400'000)); }},
    {"ElementsBesideTexts", Opened::No, [] { return configuration(repeated("<a/>b", 400'000)); }},
    {"InstructionsOfFiveBytes", Opened::No,
     [] { return configuration(repeated("<?p?>", 700'000)); }},
    {"CDataSections", Opened::Yes,
     [] { return configuration(repeated("<![CDATA[]]>a", 160'000)); }},
    {"CommentsOfSevenBytes", Opened::No,
     [] { return configuration(repeated("<!---->", 1'000'000)); }},
    {"OneLongText", Opened::Yes, [] { return configuration(std::string(4 * mebibyte, 'a')); }},
    {"OneLongAttribute", Opened::Yes,
     [] { return configuration("<a b='" + std::string(4 * mebibyte, 'a') + "'/>"); }},
    {"FourThousandLevels", Opened::Yes, [] { return configuration(nested(3'999, "t")); }},
    {"HundredThousandLevels", Opened::Yes, [] { return configuration(nested(100'000, "")); }},
    {"MoreLevels", Opened::No, [] { return configuration(nested(150'000, "")); }},
    {"WideAndDeep", Opened::Yes,
     [] { return configuration(nested(3'000, repeated("<a/>", 100'000))); }},
    {"FiftyThousandTags", Opened::Yes,
     [] { return configuration(numbered(49'999, [](const auto& i) { return "<n" + i + "/>"; })); }},
    {"MoreTags", Opened::No,
     [] { return configuration(numbered(50'000, [](const auto& i) { return "<n" + i + "/>"; })); }},
    {"FiftyThousandNamesOfAttributes", Opened::Yes,
     [] {
         return configuration(numbered(50'000, [](const auto& i) { return "<a n" + i + "=''/>"; }));
     }},
    {"MoreNamesOfAttributes", Opened::No,
     [] {
         return configuration(numbered(50'001, [](const auto& i) { return "<a n" + i + "=''/>"; }));
     }},
    {"ThousandAttributes", Opened::Yes,
     [] {
         return configuration(
             "<a " + numbered(1'000, [](const auto& i) { return "n" + i + "='' "; }) + "/>");
     }},
    {"MoreAttributes", Opened::No,
     [] {
         return configuration(
             "<a " + numbered(1'001, [](const auto& i) { return "n" + i + "='' "; }) + "/>");
     }},

    {"TagsOfOneHash", Opened::Yes, [] { return configuration(tagsOfOneHash(4'000)); }},
    {"MoreTagsOfOneHash", Opened::No, [] { return configuration(tagsOfOneHash(6'000)); }},
    {"AttributesOfOneHash", Opened::No,
     [] {
         std::string tags = tagsOfOneHash(6'000);
         for (auto at = tags.find('<'); at != std::string::npos; at = tags.find('<', at + 1))
             tags.replace(at, 1, "<a "), tags.replace(tags.find("/>", at), 2, "=''/>");
         return configuration(tags);
     }},
    {"IdsOfOneValue", Opened::Yes,
     [] { return configuration(repeated("<a i='x'/>", 10'000), "<!ATTLIST a i ID #IMPLIED>"); }},
    {"MoreIds", Opened::No,
     [] { return configuration(repeated("<a i='x'/>", 10'001), "<!ATTLIST a i ID #IMPLIED>"); }},
    {"DeclaredTagsAndOthers", Opened::Yes,
     [] { return configuration(repeated("<A/><B/>", 50'000), "<!ELEMENT A ANY>"); }},

    {"DefaultAttributes", Opened::Yes,
     [] { return configuration(repeated("<A/>", 500), declaredAttributes(100, "")); }},
    {"ThousandDefaultAttributesOfThousandElements", Opened::No,
     [] { return configuration(repeated("<A/>", 1'000), declaredAttributes(1'000, "")); }},
    {"MoreDefaultAttributes", Opened::No,
     [] { return configuration("<A/>", declaredAttributes(1'001, "")); }},
    {"LongDefaultAttribute", Opened::No,
     [] {
         return configuration(repeated("<A/>", 20'000),
                              declaredAttributes(1, std::string(10'000, 'x')));
     }},
    {"EightyThousandDeclaredAttributes", Opened::No,
     [] { return configuration("<B/>", declaredAttributes(80'000, "")); }},
    {"DeclaredElements", Opened::No,
     [] {
         return configuration(
             "", numbered(50'000, [](const auto& i) { return "<!ELEMENT A" + i + " ANY>"; }));
     }},
    {"WideContentModel", Opened::No,
     [] {
         return configuration("", "<!ELEMENT A (a" + numbered(130'000, [](const auto& i) {
                                      return "|a" + i;
                                  }) + ")>");
     }},
    {"Entities", Opened::No,
     [] {
         return configuration(
             "", numbered(50'000, [](const auto& i) { return "<!ENTITY e" + i + " ''>"; }));
     }},
    {"FiveThousandEntities", Opened::Yes,
     [] {
         return configuration(
             "", numbered(5'000, [](const auto& i) { return "<!ENTITY e" + i + " ''>"; }));
     }},

    {"ElementsInAnEntity", Opened::Yes,
     [] { return configuration("&e;", "<!ENTITY e '" + repeated("<a/>", 250'000) + "'>"); }},
    {"ElementsInAnEntityReferredToOftener", Opened::No,
     [] {
         return configuration(repeated("&e;", 16),
                              "<!ENTITY e '" + repeated("<a/>", 250'000) + "'>");
     }},
    {"BlanksInATagOfAnEntity", Opened::No,
     [] {
         return configuration(repeated("&e;", 9'000),
                              "<!ENTITY e '<a" + std::string(100'000, ' ') + "/>'>");
     }},
    {"TextInAnEntity", Opened::No,
     [] {
         return configuration(repeated("&e;", 5'000),
                              "<!ENTITY e '" + std::string(10'000, 'x') + "'>");
     }},
    {"AttributeOfReferences", Opened::No,
     [] {
         return configuration("<a b='" + repeated("&e;", 5'000) + "'/>",
                              "<!ENTITY e '" + std::string(10'000, 'x') + "'>");
     }},
    {"BlanksOfTokens", Opened::No,
     [] {
         return configuration("<a b='" + repeated("&e;", 9'000) + "'/>",
                              "<!ATTLIST a b NMTOKENS #IMPLIED><!ENTITY e '" +
                                  std::string(100'000, ' ') + "'>");
     }},
    {"CommentsOfParameterEntities", Opened::No,
     [] {
         return configuration("", "<!ENTITY % e '<!--" + std::string(100'000, 'x') + "-->'>" +
                                      repeated("%e;", 9'000));
     }},
    {"EntitiesWithinEntities", Opened::No,
     [] { return configuration("&e6;", nestedEntities("", "&", std::string(100, 'x'))); }},
    {"ThirtyLevelsOfEntities", Opened::Yes,
     [] {
         return configuration("&e29;", "<!ENTITY e0 ''>" + numbered(29, [](const auto& i) {
                                           return "<!ENTITY e" + std::to_string(std::stoi(i) + 1) +
                                                  " '&e" + i + ";'>";
                                       }));
     }},
    {"MoreLevelsOfEntities", Opened::No,
     [] {
         return configuration("&e39;", "<!ENTITY e0 ''>" + numbered(39, [](const auto& i) {
                                           return "<!ENTITY e" + std::to_string(std::stoi(i) + 1) +
                                                  " '&e" + i + ";'>";
                                       }));
     }},
};

INSTANTIATE_TEST_SUITE_P(, DocumentMemory, testing::ValuesIn(documents),
                         Support::nameOf<HostileDocument>);

} // namespace
} // namespace Orvant
