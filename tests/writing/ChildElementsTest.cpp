#include <ConfigurationFramework/ConfigWriter.h>

#include <TestSupport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <vector>

// The writer finds the children of an element that has many of them through an index. What it
// writes must be the same as if it walked over them.

namespace Orvant {
namespace {

/// The children of a root as a plain list.
class PlainChildren {
public:
    struct Child {
        std::string name; ///< empty: a comment
        std::optional<std::string> key;
        std::string text;
    };

    void addComment(const std::string& text) { m_children.push_back({"", {}, text}); }

    void add(const Child& child, const std::string& comment) {
        if (!comment.empty())
            addComment(comment);
        m_children.push_back(child);
    }

    /// Adds a child in place of those of its name or, if it has a key, of name and key.
    void replace(const Child& child, const std::string& comment) {
        remove(child.name, child.key);
        add(child, comment);
    }

    /// @param key nothing: any
    void remove(const std::string& name, const std::optional<std::string>& key) {
        for (std::size_t i = 0; i < m_children.size();) {
            if (!matches(m_children[i], name, key)) {
                ++i;
                continue;
            }
            if (i > 0 && m_children[i - 1].name.empty())
                m_children.erase(position(--i));
            m_children.erase(position(i));
        }
    }

    /// @return the first child; null when there is none
    Child* find(const std::string& name, const std::optional<std::string>& key) {
        const auto found = std::ranges::find_if(
            m_children, [&](const Child& child) { return matches(child, name, key); });
        return found == m_children.end() ? nullptr : &*found;
    }

    std::string document() const {
        std::string contents;
        for (const auto& [name, key, text] : m_children) {
            if (name.empty())
                contents += "<!--" + text + "-->";
            else
                contents += '<' + name + (key ? " key=\"" + *key + '"' : "") +
                            (text.empty() ? "/>" : '>' + text + "</" + name + '>');
        }
        return Support::document(contents);
    }

private:
    static bool matches(const Child& child, const std::string& name,
                        const std::optional<std::string>& key) {
        return child.name == name && (!key || child.key.value_or("") == *key);
    }
    std::vector<Child>::iterator position(std::size_t i) {
        return m_children.begin() + static_cast<std::ptrdiff_t>(i);
    }

    std::vector<Child> m_children;
};

/// Chooses from so few names and keys that they match, among so many children that they are
/// indexed.
class Chooser {
public:
    explicit Chooser(unsigned int seed) : m_random(seed) {}

    std::size_t number(std::size_t count) { return m_random() % count; }
    std::string name() { return "Tool" + std::to_string(number(9)); }
    std::string key() {
        const std::size_t choice = number(12);
        return choice == 0 ? "" : "Hall " + std::to_string(choice);
    }
    std::optional<std::string> anyOrKey() {
        return number(4) == 0 ? std::nullopt : std::optional(key());
    }
    std::string text() { return number(5) == 0 ? "" : "text " + std::to_string(number(1'000)); }
    std::string comment() {
        return number(2) == 0 ? "" : "comment " + std::to_string(number(1'000));
    }

private:
    std::mt19937 m_random;
};

PlainChildren chooseChildren(Chooser& choose) {
    PlainChildren children;
    for (std::size_t i = 0; i < 150; ++i) {
        if (choose.number(10) == 0)
            children.addComment("of the user");
        children.add({choose.name(), choose.anyOrKey(), choose.text()}, choose.comment());
    }
    return children;
}

void edit(Chooser& choose, ConfigWriter& writer, PlainChildren& children) {
    const std::string name = choose.name();
    const std::string key = choose.key();
    const std::string comment = choose.comment();
    switch (choose.number(20)) {
    case 0:
        writer.createNode(name, comment);
        children.replace({name, std::nullopt, ""}, comment);
        break;
    case 1:
        writer.putString(name, "put", comment);
        children.replace({name, std::nullopt, "put"}, comment);
        break;
    case 2:
        writer.deleteNodes(name, "");
        children.remove(name, std::nullopt);
        break;
    case 3:
    case 4:
    case 5:
        writer.deleteNodes(name, key);
        children.remove(name, key.empty() ? std::nullopt : std::optional(key));
        break;
    default:
        writer.createKeyedNode(name, key, comment);
        children.replace({name, key, ""}, comment);
    }
}

/// Marks what the writer finds. It cannot go back up, so this comes last.
void mark(Chooser& choose, ConfigWriter& writer, PlainChildren& children) {
    const std::string name = choose.name();
    const std::optional<std::string> key = choose.anyOrKey();
    PlainChildren::Child* const found = children.find(name, key);
    const auto result = key ? writer.setCurrentKeyedNode(name, *key) : writer.setCurrentNode(name);
    ASSERT_EQ(found != nullptr, result == ConfigurationAccessResult::Success)
        << name << ' ' << key.value_or("(any)");
    if (found != nullptr) {
        writer.putString("found");
        found->text = "found";
    }
}

TEST(ConfigWriterManyChildren, EditsThemAsAWalkOverThemWould) {
    constexpr unsigned int documents = 40;
    constexpr std::size_t editsOfEach = 50;
    for (unsigned int seed = 1; seed <= documents; ++seed) {
        Chooser choose(seed);
        PlainChildren children = chooseChildren(choose);
        ConfigWriter writer(FileName(), children.document());
        for (std::size_t i = 1; i <= editsOfEach; ++i) {
            edit(choose, writer, children);
            if (i % 10 == 0) {
                ASSERT_EQ(children.document(), Support::withoutFormatting(writer.getAsString()))
                    << "after " << i << " edits of document " << seed;
            }
        }
        mark(choose, writer, children);
        ASSERT_EQ(children.document(), Support::withoutFormatting(writer.getAsString()))
            << "in document " << seed;
    }
}

TEST(ConfigWriterManyChildren, AreForgottenWhenATextTakesTheirPlace) {
    Chooser choose(1);
    const PlainChildren children = chooseChildren(choose);
    ConfigWriter writer(FileName(), children.document());
    writer.createKeyedNode("Tool0", "Hall 1", "");
    writer.putString("text");
    EXPECT_EQ(ConfigurationAccessResult::Failure, writer.setCurrentKeyedNode("Tool0", "Hall 1"));
    writer.deleteNodes("Tool1", "");
    writer.putString("Tool2", "text", "");
    EXPECT_EQ(Support::document("<Tool2>text</Tool2>"),
              Support::withoutFormatting(writer.getAsString()));
}

} // namespace
} // namespace Orvant
