#include "TestSupport.h"

#include <ConfigurationFramework/SettingVisitor.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Orvant {
namespace {

using Support::TestObject;

/// Writes down what it visits; inline children stand in braces.
class Notes : public SettingVisitor {
public:
    explicit Notes(bool entersInline = true) : m_entersInline(entersInline) {}

    void visitValue(ConfigurationValueBase& value) override { text += value.getName() + ' '; }
    bool enterInline(ConfigurationObject& child) override {
        text += child.isEditable() ? "{ " : "{ locked ";
        return m_entersInline;
    }
    void leaveInline(ConfigurationObject& /*child*/) override { text += "} "; }

    std::string text;

private:
    bool m_entersInline;
};

std::shared_ptr<TestObject> objectWithInlineChild() {
    return TestObject::make("Outer", [](TestObject& outer) {
        outer.add("a", 1);
        auto* const inner = new TestObject("");
        inner->add("b", 2);
        inner->setEditable(false);
        outer.addChild(inner).addChild(&(new TestObject("Named"))->add("c", 3));
    });
}

TEST(SettingVisitorInline, ChildrenThatAreStoredInlineAreEnteredAndLeft) {
    Notes notes;
    visitSettings(*objectWithInlineChild(), notes);
    EXPECT_EQ(notes.text, "a { locked b } c ");
}

TEST(SettingVisitorInline, WhatIsNotEnteredIsNeitherVisitedNorLeft) {
    Notes notes(false);
    visitSettings(*objectWithInlineChild(), notes);
    EXPECT_EQ(notes.text, "a { locked c ");
}

} // namespace
} // namespace Orvant
