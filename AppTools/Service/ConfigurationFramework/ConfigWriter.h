#pragma once

#include <ConfigurationFramework/ConfigurationAccessResult.h>
#include <ConfigurationFramework/Export.h>
#include <FileHandling/FileName.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Orvant {

class ConfigReader;
class ConfigurationObject;
class WriterTarget;

/// Builds one configuration document, new or from an existing one, and writes it to a file.
///
/// @code
/// ConfigWriter writer("1.0");
/// writer.createNodeAndMakeCurrent("ViewSettings", "");
/// writer.putDouble("Zoom", 1.5, "Zoom factor at start");
/// writer.saveToFile("settings.xml");
/// @endcode
///
/// A writer has a current element, at first the root; all operations work below it. A "name" is the
/// tag of a direct child. Every operation that makes an element takes a comment; unless empty, it
/// is written before the element and deleted with it. Texts are UTF-8. What XML 1.0 cannot hold and
/// bytes that are not UTF-8 become U+FFFD, and the log gets an error that names the element. In a
/// comment, a hyphen before another hyphen or the end gets a blank after it. Names are not
/// corrected: an invalid one raises the DOM's exception (xercesc::DOMException).
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigWriter {
public:
    /// Starts a new document: a root without children.
    /// @param version value of the root's version attribute, written as it is
    explicit ConfigWriter(const std::string& version);
    /// Opens an existing document for editing. Its version is neither checked nor changed. A writer
    /// opens exactly the documents that a SimpleConfigReader opens.
    /// @param file    file to read; if empty, `content` is the document
    /// @param content document in memory, up to its first NUL; ignored when there is a file
    /// @throws ConfigException of type
    ///   - SourceNotFound: neither file nor content;
    ///   - InvalidDocument: missing or unreadable, not well-formed, beyond the limits listed at
    ///     SimpleConfigReader, or the root is not Configuration
    ConfigWriter(const FileName& file, const std::string& content);
    ConfigWriter(const ConfigWriter&) = delete;
    ConfigWriter& operator=(const ConfigWriter&) = delete;
    ~ConfigWriter();

    /// Replaces all children of that name, keyed or not, with one empty element as the last child.
    void createNode(const std::string& name, const std::string& comment);
    /// Replaces the child of that name and key with an empty element as the last child. Children
    /// with other keys stay; an empty key means the children without one.
    void createKeyedNode(const std::string& name, const std::string& key,
                         const std::string& comment);
    /// createNode(), then setCurrentNode().
    void createNodeAndMakeCurrent(const std::string& name, const std::string& comment);
    /// createKeyedNode(), then setCurrentKeyedNode().
    void createKeyedNodeAndMakeCurrent(const std::string& name, const std::string& key,
                                       const std::string& comment);
    /// Makes the first child of that name the current element. There is no way back up.
    /// @return Failure when there is none; the current element is then unchanged
    ConfigurationAccessResult setCurrentNode(const std::string& name);
    /// Makes the first child of exactly that name and key the current element.
    /// @return Failure when there is none; the current element is then unchanged
    ConfigurationAccessResult setCurrentKeyedNode(const std::string& name, const std::string& key);
    /// Deletes the children of that name, each with the comment right before it, and all text
    /// directly below the current element.
    /// @param name tag of the children
    /// @param key  when it is not empty, only children with this key are deleted
    void deleteNodes(const std::string& name, const std::string& key);

    /// Replaces the children of that name with an element that holds the text.
    void putString(const std::string& name, const std::string& value, const std::string& comment);
    /// Replaces everything in the current element with a text.
    void putString(const std::string& value);
    /// Puts a decimal number.
    void putInt(const std::string& name, const int& value, const std::string& comment);
    /// Puts the bits of the number as an int: 4294967295 is written as -1 and read back as it was.
    void putUnsignedInt(const std::string& name, const unsigned int& value,
                        const std::string& comment);
    /// Puts a number like putDouble().
    void putFloat(const std::string& name, const float& value, const std::string& comment);
    /// Puts a number with six significant digits. Infinities and not-a-number are written as "inf"
    /// and "nan", which no reader accepts.
    void putDouble(const std::string& name, const double& value, const std::string& comment);
    /// Puts "true" or "false".
    void putBool(const std::string& name, const bool& value, const std::string& comment);
    /// Puts an element with an "item" element for each text.
    void putStringVector(const std::string& name, const std::vector<std::string>& values,
                         const std::string& comment);

    /// putString(); `format` is ignored.
    void putValue(const std::string& name, const std::string& value, const int& format,
                  const std::string& comment);
    /// putString() of a literal, which would otherwise be taken for a bool; `format` is ignored.
    /// @param name    tag of the element
    /// @param value   UTF-8; null is the empty text
    /// @param format  ignored
    /// @param comment for the element
    void putValue(const std::string& name, const char* value, const int& format,
                  const std::string& comment);
    /// putInt(); `format` is ignored.
    void putValue(const std::string& name, const int& value, const int& format,
                  const std::string& comment);
    /// putUnsignedInt(); `format` is ignored.
    void putValue(const std::string& name, const unsigned int& value, const int& format,
                  const std::string& comment);
    /// Puts a number in scientific notation with ten digits after the point; `format` is ignored.
    void putValue(const std::string& name, const float& value, const int& format,
                  const std::string& comment);
    /// putDouble() for `format` 0, otherwise scientific notation with ten digits after the point.
    void putValue(const std::string& name, const double& value, const int& format,
                  const std::string& comment);
    /// putBool(); `format` is ignored.
    void putValue(const std::string& name, const bool& value, const int& format,
                  const std::string& comment);
    /// putStringVector(); `format` is ignored.
    void putValue(const std::string& name, const std::vector<std::string>& values,
                  const int& format, const std::string& comment);

    /// createNode(), then calls back with the new element as the current one.
    void putElement(const std::string& name, const std::string& comment,
                    const std::function<void()>& writeContents);
    /// Like putElement(), but an element that stays empty is not written and replaces nothing.
    /// @param name          tag of the element; an invalid one raises an exception before the
    ///                      callback
    /// @param comment       for the element
    /// @param writeContents writes below the new element, which is current until it returns or
    ///                      throws; if it throws, nothing is written
    void putElementUnlessEmpty(const std::string& name, const std::string& comment,
                               const std::function<void()>& writeContents);

    /// putElement() with a key: createKeyedNode(), then calls back with the new element as the
    /// current one.
    void putKeyedElement(const std::string& name, const std::string& key,
                         const std::string& comment, const std::function<void()>& writeContents);
    /// putElementUnlessEmpty() with a key: replaces only the child of that name and key.
    void putKeyedElementUnlessEmpty(const std::string& name, const std::string& key,
                                    const std::string& comment,
                                    const std::function<void()>& writeContents);

    /// Finds the names that occur deeper down before they occur as a child.
    /// ConfigReader::getStringVector() searches every depth: a list of such a name would be read
    /// from the wrong element.
    /// @param names tags to look for below the current element
    /// @return those whose first element, in document order, is not a child of the current element
    std::set<std::string> getNamesHiddenByDescendants(const std::vector<std::string>& names) const;
    /// Moves the first child of that name, with the comment right before it, before all other
    /// children.
    /// @param name       tag of the child
    /// @param putMissing called to put the child when there is none
    void putInFront(const std::string& name, const std::function<void()>& putMissing);

    /// Writes an object's contents directly below the current element.
    void putClassContents(const ConfigurationObject& object);
    /// Writes an object into a new element that replaces all children of that name.
    void putClassContents(const std::string& name, const ConfigurationObject& object,
                          const std::string& comment);
    /// Writes an object into a new element that replaces the child of that name and key.
    void putClassContents(const std::string& name, const std::string& key,
                          const ConfigurationObject& object, const std::string& comment);
    /// Deletes the children of that name and, if the object has something for the user's file,
    /// writes what differs from the reference into a new element. Base class operations that ask
    /// the reader for the reference meanwhile get the same new object, loaded once.
    /// @param name    tag of the element
    /// @param object  object to write
    /// @param reader  holds the reference, normally the system configuration
    /// @param comment for the new element
    void putOnlyDifferentClassContents(const std::string& name, const ConfigurationObject& object,
                                       ConfigReader& reader, const std::string& comment);
    /// Like the above, for the child of that name and key only.
    void putOnlyDifferentClassContents(const std::string& name, const std::string& key,
                                       const ConfigurationObject& object, ConfigReader& reader,
                                       const std::string& comment);

    /// @return the document in UTF-8, beginning with the root's start tag, without XML declaration
    ///         or byte-order mark. Empty, with an error in the log, when XML cannot express the
    ///         document, when it is nested deeper than 4,000 elements (including the root), when
    ///         its indentation would exceed 32 million blanks (that of 4,000 nested elements), when
    ///         more than 10,000 comments follow one another without an element between them (the
    ///         printing time grows with their square, and with the other nodes there), or when it
    ///         is so large that no reader would open it again.
    std::string getAsString();
    /// Writes the document to a file, in place, as getAsString() returns it; a link is followed.
    /// The text is complete before the file is touched. If a write fails half-way, the former
    /// content is restored as far as the disk allows; a file is removed only if this call made it.
    /// Nothing is logged.
    /// @return false when there is no text or it could not be written; getSaveProblem() tells why
    bool saveToFile(const FileName& file);
    /// @return what went wrong in the last saveToFile(), in words; empty when nothing did
    const std::string& getSaveProblem() const;

private:
    friend class WriterTarget;

    explicit ConfigWriter(std::unique_ptr<WriterTarget> target);

    std::unique_ptr<WriterTarget> m_impl;
};

} // namespace Orvant
