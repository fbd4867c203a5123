#pragma once

#include <ConfigurationFramework/Export.h>
#include <ConfigurationFramework/xsd/ov_schema.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Orvant {

/// One child element of a type of a schema.
///
/// @code
/// for (const auto& child : tree.getXsdTree().at("Axis")->children)
///     std::cout << child->name << ": " << child->type
///               << (child->minOccurs == 0 ? " (optional)" : "") << ", at most "
///               << child->maxOccurs << '\n';
/// @endcode
struct XsdChildElementProperty {
    std::string name;           ///< name of the element
    std::string type;           ///< name of its type as the document has it; may be empty
    std::int32_t minOccurs = 0; ///< 1 if the document gives none
    /// As the document has it; "Unbounded" if it gives none.
    std::string maxOccurs = "Unbounded";
};

/// One type of a schema, with which a root element may be declared.
///
/// @code
/// const auto axis = tree.getXsdTree().at("Axis");
/// std::cout << axis->type << " has " << axis->children.size() << " children\n";
/// for (const std::string& attribute : axis->attributes)
///     std::cout << "  @" << attribute << '\n';
/// @endcode
struct XsdElementProperty {
    /// Name of the root element of this type, the last one if there are several; without one, the
    /// type's name for a simple type, empty for a complex type.
    std::string name;
    std::string type; ///< name of the type
    /// Child elements in document order, those of the type's sequence before those of its
    /// extension.
    std::vector<std::shared_ptr<XsdChildElementProperty>> children;
    std::int32_t minOccurs = 0;          ///< always 0
    std::string maxOccurs = "Unbounded"; ///< always "Unbounded"
    /// Names of the attributes in document order, those of the type's extension first.
    std::vector<std::string> attributes;
};

/// The types and root elements of a schema, and filters that remove what is not wanted.
///
/// @code
/// XsdElement tree(*OV_XsdReader::schema_(in, xml_schema::flags::dont_validate));
/// for (const auto& root : tree.getRootElements())
///     std::cout << root->name << ": " << root->type << '\n';
/// tree.keepElements({"Machine"});
/// OV_XsdReader::schema_(out, *tree.getSchema(), {}, "UTF-8");
/// @endcode
///
/// A type name with the prefix ov: means the declared type without the prefix. Filters follow this;
/// names that are returned, or compared with given names, are as the document has them.
///
/// Copies share the document. The types and root elements that a copy returns do not show filters
/// that have since been applied through another copy.
///
/// The types are described anew after a filter, which is left to the next query as long as nobody
/// else holds the document: a filter of one type takes no time for all others.
///
/// Several threads may query and copy one tree as long as none filters it or a copy of it.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT XsdElement {
public:
    /// An empty tree without a document; filters have no effect on it.
    XsdElement();
    /// @param schema document to describe and filter; it is copied
    XsdElement(const OV_XsdReader::ov_schema& schema);
    /// Shares the document with the original.
    /// @{
    XsdElement(const XsdElement&);
    XsdElement& operator=(const XsdElement&);
    /// @}
    virtual ~XsdElement();

    /// @return the types of the root elements in document order; a root element whose type is not
    ///         declared is left out; a type appears once for each of its root elements
    std::vector<std::shared_ptr<XsdElementProperty>> getRootElements();

    /// @return the declared types by name; of two with the same name, the first complex type
    std::map<std::string, std::shared_ptr<XsdElementProperty>> getXsdTree();

    /// @return the type of that name; null when it is not declared
    std::shared_ptr<XsdElementProperty> findType(const std::string& name) const;

    /// @return the document, shared with this tree; null for an empty tree
    std::shared_ptr<OV_XsdReader::ov_schema> getSchema() const;

    /// @param names names of types, with or without the prefix ov:
    /// @return those that are declared, and the declared types that they need, directly or through
    ///         others, so that they lose no child: optional ones count
    std::vector<std::string> getNeededTypes(const std::vector<std::string>& names) const;

    /// Removes the types that are not wanted, and the optional children and root elements of these
    /// types.
    ///
    /// What stays besides the listed types: the types of the required children of root elements;
    /// and, for every type that stays, those of its required children and of its choices, its base,
    /// and the types of its attributes. A root element does not keep its own type. With no names at
    /// all, and no required child of a root element, only the first complex and the first simple
    /// type are removed.
    /// @param names names of the types to keep, with or without the prefix ov:
    void keepElements(const std::vector<std::string>& names);

    /// Removes optional children (minOccurs="0") from the first complex type of a name. Only the
    /// children of its sequence and of its extension's sequence are considered. Without such a
    /// type, it has no effect.
    /// @param typeName   name of the complex type
    /// @param names      what to keep
    /// @param byType     whether `names` are those of the children's types, not of the children
    /// @param pruneTypes whether to remove the types that are then no longer reachable, through
    ///                   children, attributes and bases, from a root element or this type
    void keepChildElement(const std::string& typeName, const std::vector<std::string>& names,
                          bool byType, bool pruneTypes);

    /// Removes attributes with use="optional" from the first complex type of a name and its
    /// extension.
    /// @param typeName name of the complex type
    /// @param names    names of the attributes to keep
    void keepChildAttributes(const std::string& typeName, const std::vector<std::string>& names);

private:
    void update();
    ORVANT_CONFIGURATIONFRAMEWORK_NO_EXPORT void describe() const;
    std::vector<std::string> requiredTypesOfRoots() const;
    std::vector<std::string> typesOfRoots() const;
    std::vector<std::string> findChildElements(const std::vector<std::string>& names);
    void keepOnly(const std::vector<std::string>& names);
    void deleteComplexType(const std::vector<std::string>& names, bool keep);
    void deleteSimpleType(const std::vector<std::string>& names, bool keep);

    std::shared_ptr<OV_XsdReader::ov_schema> m_schema;
    // Brought up to date by queries, in whatever thread they are called.
    mutable std::map<std::string, std::shared_ptr<XsdElementProperty>> m_types;
    mutable std::vector<std::shared_ptr<XsdElementProperty>> m_rootElements;
    mutable bool m_isOutdated = false;
    mutable std::atomic<bool> m_isHandedOut = false; ///< to a caller, by getSchema()
    mutable std::mutex m_describing;
};

} // namespace Orvant
