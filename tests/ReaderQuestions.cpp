#include <ReaderQuestions.h>

#include <map>
#include <set>

namespace Orvant::Support {

void askEverything(ConfigReader& reader, const std::string& name, std::ostream& record) {
    bool boolValue = false;
    int intValue = -7;
    unsigned int unsignedValue = 7;
    double doubleValue = -0.75;
    double scientificValue = -0.75;
    float floatValue = -0.25F;
    std::string text = "unchanged";
    std::vector<std::string> texts = {"unchanged"};
    std::map<std::string, bool> itemEditable = {{"unchanged", true}};
    std::set<std::string> foundKeys = {"unchanged"};
    bool editable = true;
    const auto write = [&](ConfigurationAccessResult result, const auto&... values) {
        record << result;
        ((record << ' ' << values), ...);
        record << ' ' << editable << '\n';
        editable = !editable;
    };
    write(reader.getBool(name, boolValue, editable), boolValue);
    write(reader.getInt(name, intValue, editable), intValue);
    // What a failed read leaves in these two does not matter.
    const auto unsignedResult = reader.getUnsignedInt(name, unsignedValue, editable);
    write(unsignedResult,
          unsignedResult == ConfigurationAccessResult::Success ? unsignedValue : 0U);
    const auto floatResult = reader.getFloat(name, floatValue, editable);
    write(floatResult, floatResult == ConfigurationAccessResult::Success ? floatValue : 0.0F);
    write(reader.getDouble(name, doubleValue, editable), doubleValue);
    write(reader.getDoubleScientific(name, 3, scientificValue, editable), scientificValue);
    write(reader.getString(name, text, editable), text);
    write(reader.getStringVector(name, texts, editable, itemEditable), texts.size());
    for (const std::string& item : texts)
        record << '[' << item << ']';
    for (const auto& [item, itemIsEditable] : itemEditable)
        record << item << '=' << itemIsEditable << ' ';
    write(reader.getEditable(editable));
    write(reader.getKeys(name, foundKeys));
    for (const std::string& key : foundKeys)
        record << '{' << key << '}';
    record << '\n';
}

void Recorder::loadContent(ConfigReader& reader) {
    for (const std::string& name : m_names)
        askEverything(reader, name, m_record);
    if (m_depth == 0)
        return;
    Recorder child(m_names, m_depth - 1, m_record);
    for (const std::string& name : m_names)
        m_record << reader.getClassContents(name, child) << '\n';
}

} // namespace Orvant::Support
