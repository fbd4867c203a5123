#include <ConfigurationFramework/source/ModelClass.h>

#include <array>

namespace Orvant {

namespace {

constexpr bool many = true;

constexpr std::array s_schema{
    ModelMember{"complexType", ModelClass::ComplexType, many},
    ModelMember{"simpleType", ModelClass::SimpleType, many},
    ModelMember{"element", ModelClass::RootElement, many},
};
constexpr std::array s_complexType{
    ModelMember{"annotation", ModelClass::Annotation},
    ModelMember{"sequence", ModelClass::Sequence},
    ModelMember{"attribute", ModelClass::Attribute, many},
    ModelMember{"choice", ModelClass::Choice},
    ModelMember{"complexContent", ModelClass::ComplexContent},
};
constexpr std::array s_group{ModelMember{"element", ModelClass::Element, many}};
constexpr std::array s_element{
    ModelMember{"complexType", ModelClass::ComplexType},
    ModelMember{"annotation", ModelClass::Annotation},
};
constexpr std::array s_annotated{ModelMember{"annotation", ModelClass::Annotation}};
constexpr std::array s_complexContent{
    ModelMember{"extension", ModelClass::Extension},
    ModelMember{"restriction", ModelClass::Restriction},
};
constexpr std::array s_extension{
    ModelMember{"sequence", ModelClass::Sequence},
    ModelMember{"attribute", ModelClass::Attribute, many},
};
constexpr std::array s_restriction{
    ModelMember{"enumeration", ModelClass::Enumeration, many},
    ModelMember{"attribute", ModelClass::Attribute, many},
};
constexpr std::array s_annotation{ModelMember{"documentation", ModelClass::Documentation}};
constexpr std::array s_simpleType{
    ModelMember{"annotation", ModelClass::Annotation},
    ModelMember{"restriction", ModelClass::Restriction},
};

constexpr std::array<std::string_view, 1> s_name{"name"};
constexpr std::array<std::string_view, 1> s_base{"base"};
constexpr std::array<std::string_view, 1> s_value{"value"};
constexpr std::array<std::string_view, 2> s_rootElementAttributes{"name", "type"};
constexpr std::array<std::string_view, 3> s_attributeAttributes{"name", "use", "type"};
constexpr std::array<std::string_view, 4> s_elementAttributes{"name", "type", "minOccurs",
                                                              "maxOccurs"};

} // namespace

std::span<const ModelMember> membersOf(ModelClass modelClass) {
    switch (modelClass) {
    case ModelClass::Schema:
        return s_schema;
    case ModelClass::ComplexType:
        return s_complexType;
    case ModelClass::Sequence:
    case ModelClass::Choice:
        return s_group;
    case ModelClass::Element:
        return s_element;
    case ModelClass::Attribute:
        return s_annotated;
    case ModelClass::ComplexContent:
        return s_complexContent;
    case ModelClass::Extension:
        return s_extension;
    case ModelClass::Restriction:
        return s_restriction;
    case ModelClass::Annotation:
        return s_annotation;
    case ModelClass::SimpleType:
        return s_simpleType;
    case ModelClass::None:
    case ModelClass::Enumeration:
    case ModelClass::Documentation:
    case ModelClass::RootElement:
        break;
    }
    return {};
}

std::span<const std::string_view> attributesOf(ModelClass modelClass) {
    switch (modelClass) {
    case ModelClass::ComplexType:
    case ModelClass::SimpleType:
        return s_name;
    case ModelClass::Element:
        return s_elementAttributes;
    case ModelClass::Attribute:
        return s_attributeAttributes;
    case ModelClass::Extension:
    case ModelClass::Restriction:
        return s_base;
    case ModelClass::Enumeration:
        return s_value;
    case ModelClass::RootElement:
        return s_rootElementAttributes;
    default:
        return {};
    }
}

} // namespace Orvant
