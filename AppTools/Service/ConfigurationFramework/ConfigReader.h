#pragma once

#include <ConfigurationFramework/ConfigurationAccessResult.h>
#include <ConfigurationFramework/Export.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Orvant {

class ConfigurationObject;

/// The read side of the library: what values and objects load themselves from.
///
/// @code
/// double zoom = 1.0;
/// bool editable = true;
/// if (reader.getDouble("Zoom", zoom, editable) == ConfigurationAccessResult::Success)
///     apply(zoom);
/// @endcode
///
/// A reader has a current node, at first the root of its document. A "name" is the tag of a direct
/// child element of that node. An element with the attribute editable="false" is locked; the
/// `editable` outputs say so. All operations return Success, or Failure when there is no such
/// element or its text does not convert. Outputs are written on Success; on Failure they stay
/// unchanged, except as described at getUnsignedInt(), getFloat() and getStringVector().
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigReader {
public:
    ConfigReader() = default;
    virtual ~ConfigReader();
    ConfigReader(const ConfigReader&) = delete;
    ConfigReader& operator=(const ConfigReader&) = delete;

    /// Loads an object from the first element of that name and key in the whole document.
    /// @return Failure when there is none
    virtual ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                              const std::string& key,
                                                              ConfigurationObject& object) = 0;
    /// Loads an object from the first element of that name in the whole document.
    /// @return Failure when there is none
    virtual ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                              ConfigurationObject& object) = 0;
    /// Loads an object from the current node itself.
    /// @return Failure when there is no document
    virtual ConfigurationAccessResult getClassContents(ConfigurationObject& object) = 0;
    /// Loads each object from the child of that name with the key at the same index.
    /// @return Success when all keys were found; objects of found keys are loaded in any case
    virtual ConfigurationAccessResult
    getClassContents(const std::string& name, const std::vector<std::string>& keys,
                     std::vector<ConfigurationObject*>& objects) = 0;
    /// Loads an object from the child of that name and key; if no child has the key, from the last
    /// one without a key, the default entry.
    virtual ConfigurationAccessResult getClassContents(const std::string& name,
                                                       const std::string& key,
                                                       ConfigurationObject& object) = 0;
    /// Loads an object from the first child of that name.
    virtual ConfigurationAccessResult getClassContents(const std::string& name,
                                                       ConfigurationObject& object) = 0;

    /// Reads "true" or "false", spelled exactly so.
    virtual ConfigurationAccessResult getBool(const std::string& name, bool& value,
                                              bool& editable) = 0;
    /// Reads a decimal number. Blanks before it and anything after it are ignored.
    virtual ConfigurationAccessResult getInt(const std::string& name, int& value,
                                             bool& editable) = 0;
    /// Reads like getInt() and takes the bits as unsigned: -1 is 4294967295. On Failure `value` is
    /// overwritten all the same, with an unspecified number. What readers have in common is defined
    /// here for overrides to call; likewise for getFloat().
    virtual ConfigurationAccessResult getUnsignedInt(const std::string& name, unsigned int& value,
                                                     bool& editable) = 0;
    /// Reads a number in decimal or exponent notation. Blanks before it and anything after it are
    /// ignored.
    virtual ConfigurationAccessResult getDouble(const std::string& name, double& value,
                                                bool& editable) = 0;
    /// Reads like getDouble(); `precision` has no effect on reading.
    virtual ConfigurationAccessResult getDoubleScientific(const std::string& name,
                                                          const int& precision, double& value,
                                                          bool& editable) = 0;
    /// Reads like getDouble() and narrows. On Failure `value` is overwritten all the same, with an
    /// unspecified number.
    virtual ConfigurationAccessResult getFloat(const std::string& name, float& value,
                                               bool& editable) = 0;
    /// Reads a text as it stands; an element without content reads as the empty text.
    virtual ConfigurationAccessResult getString(const std::string& name, std::string& value,
                                                bool& editable) = 0;
    /// Reads the texts of the "item" elements. The outputs are cleared first, on Failure too.
    /// @param name         tag of the list's element
    /// @param values       the texts in document order
    /// @param editable     false when the list is locked
    /// @param itemEditable for each text, whether its (last) item is editable
    /// @return Failure when there is no such element, or one of the items holds markup
    virtual ConfigurationAccessResult
    getStringVector(const std::string& name, std::vector<std::string>& values, bool& editable,
                    std::map<std::string, bool>& itemEditable) = 0;

    /// Searches the whole document for an element of that name and makes it the current node.
    virtual ConfigurationAccessResult tagExists(const std::string& name) = 0;
    /// Reads the editable attribute of the current node itself.
    /// @return Failure when there is no document
    virtual ConfigurationAccessResult getEditable(bool& editable) = 0;
    /// Adds the keys of all children of that name to `keys`, "" for a child without a key.
    /// @return Failure when there is no document; Success even when nothing was found
    virtual ConfigurationAccessResult getKeys(const std::string& name,
                                              std::set<std::string>& keys) = 0;
    /// Calls back with the key of each child of that name, in document order, with the child as the
    /// current node.
    /// @return Failure when there was no call
    virtual ConfigurationAccessResult
    createConfigurationObjects(const std::string& name,
                               std::function<void(std::string)> callback) = 0;
    /// getStringVector() for callers that do not ask for the locks of the items, which take longer
    /// to tell than the texts. Calls it unless a reader has a faster way.
    virtual ConfigurationAccessResult getStrings(const std::string& name,
                                                 std::vector<std::string>& values, bool& editable);
};

} // namespace Orvant
