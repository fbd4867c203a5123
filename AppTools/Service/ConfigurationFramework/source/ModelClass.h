#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace Orvant {

/// The classes of the schema document model, for those who look at a file without it: what each
/// holds is written once more here than in xsd/ov_schema.xsd.
enum class ModelClass : std::uint8_t {
    None, ///< not held
    Schema,
    ComplexType,
    Sequence,
    Choice,
    Element,
    Attribute,
    ComplexContent,
    Extension,
    Restriction,
    Enumeration,
    Annotation,
    Documentation, ///< no class, but a text
    RootElement,
    SimpleType,
};

/// What a class holds under the name of an element.
struct ModelMember {
    std::string_view name;
    ModelClass modelClass;
    bool isMany = false; ///< otherwise, only the first element of that name
};

/// @return the child elements that a class holds, in the order in which they are written
std::span<const ModelMember> membersOf(ModelClass modelClass);

/// @return the attributes that a class holds
std::span<const std::string_view> attributesOf(ModelClass modelClass);

} // namespace Orvant
