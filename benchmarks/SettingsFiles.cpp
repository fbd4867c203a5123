#include "SettingsFiles.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <utility>

#include <unistd.h>

namespace Orvant::Benchmarks {

namespace {

/// What a file holds: everything, or what a user overrides.
using Layer = std::optional<Override>;
constexpr Layer systemLayer = std::nullopt;

bool holdsObject(Shape shape, Layer layer, std::size_t object) {
    for (std::size_t value = 0; value < shape.values; ++value)
        if (!layer || isOverridden(object, value, *layer))
            return true;
    return false;
}

/// Calls back with what the layer holds: at the start of an object and at each value.
template <typename BeginObject, typename EndObject, typename PutValue>
void forEachHeld(Shape shape, Layer layer, BeginObject begin, PutValue put, EndObject end) {
    for (std::size_t object = 0; object < shape.objects; ++object) {
        if (!holdsObject(shape, layer, object)) // as a save leaves it
            continue;
        begin(objectName(object));
        for (std::size_t value = 0; value < shape.values; ++value) {
            if (!layer)
                put(valueName(value), valueOf(object, value, systemEdition));
            else if (isOverridden(object, value, *layer))
                put(valueName(value), valueOf(object, value, userEdition));
        }
        end(objectName(object));
    }
}

struct XmlText {
    std::ostream& out;

    void operator()(const Texts& texts) const {
        for (const std::string& text : texts)
            out << "\n      <item>" << text << "</item>";
        out << "\n    ";
    }
    void operator()(const auto& scalar) const { out << scalar; }
};

struct IniText {
    std::ostream& out;

    void operator()(const Texts& texts) const {
        for (std::size_t i = 0; i < texts.size(); ++i)
            out << (i == 0 ? "" : ",") << texts[i];
    }
    void operator()(const auto& scalar) const { out << scalar; }
};

void writeXml(const std::string& file, Shape shape, Layer layer) {
    std::ofstream out(file);
    out << std::boolalpha << "<Configuration version=\"" << documentVersion << "\">\n";
    forEachHeld(
        shape, layer, [&](const std::string& object) { out << "  <" << object << ">\n"; },
        [&](const std::string& name, const Value& value) {
            out << "    <" << name << '>';
            std::visit(XmlText{out}, value);
            out << "</" << name << ">\n";
        },
        [&](const std::string& object) { out << "  </" << object << ">\n"; });
    out << "</Configuration>\n";
}

void writeIni(const std::string& file, Shape shape, Layer layer) {
    std::ofstream out(file);
    out << std::boolalpha;
    forEachHeld(
        shape, layer, [&](const std::string& object) { out << '[' << object << "]\n"; },
        [&](const std::string& name, const Value& value) {
            out << name << '=';
            std::visit(IniText{out}, value);
            out << '\n';
        },
        [&](const std::string&) { out << '\n'; });
}

} // namespace

SettingsFiles::SettingsFiles(Shape shape, Place place, Override override)
    : m_shape(shape), m_directory(place) {
    std::filesystem::create_directory(systemDirectory());
    std::filesystem::create_directory(userDirectory());
    writeXml(systemXml(), shape, systemLayer);
    writeXml(userXml(), shape, override);
    writeIni(systemIni(), shape, systemLayer);
    writeIni(userIni(), shape, override);
    if (place == Place::Disk)
        sync(); // or the first flush of what is measured would wait for these
}

const SettingsFiles& sharedFiles(Shape shape, Override override) {
    static std::map<std::pair<std::string, Override>, SettingsFiles> s_files;
    return s_files.try_emplace({toString(shape), override}, shape, Place::Memory, override)
        .first->second;
}

} // namespace Orvant::Benchmarks
