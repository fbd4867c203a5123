#include "SchemaFile.h"

#include <fstream>

namespace Orvant::Benchmarks {

namespace {

constexpr std::size_t typesOfStation = 10;

std::string stationType(std::size_t station) {
    return "Station" + std::to_string(station);
}

/// Writes the types of one station.
class StationWriter {
public:
    StationWriter(std::ostream& out, std::size_t station)
        : m_out(out), m_type(stationType(station)), m_next(stationType(station + 1)) {}

    void write() const {
        writeStation();
        writeComponent();
        for (const char* const part : {"Axis", "Spindle", "Probe"})
            writePart(part);
        writeRange();
        writeTool();
        writeEnumeration("Unit", {"millimetre", "inch", "degree", "radian"});
        writeEnumeration("Kind", {"linear", "rotary", "hydraulic", "pneumatic", "manual"});
        writeEnumeration("State", {"idle", "running", "waiting", "stopped", "faulty", "absent"});
    }

private:
    void writeStation() const {
        m_out << "  <xs:complexType name=\"" << m_type << "\">\n";
        writeAnnotation("A station of the line, with all that is mounted on it.");
        m_out << "    <xs:sequence>\n";
        for (const char* const part : {"Axis", "Spindle", "Probe"})
            writeChild(part, m_type + part, " maxOccurs=\"unbounded\"");
        writeChild("state", m_type + "State");
        writeChild("nextStation", m_next, " minOccurs=\"0\"");
        m_out << "    </xs:sequence>\n";
        writeAttribute("kind", m_type + "Kind", "required");
        writeAttribute("description", "xs:string", "optional");
        m_out << "  </xs:complexType>\n\n";
    }

    void writeComponent() const {
        m_out << "  <xs:complexType name=\"" << m_type << "Component\">\n";
        writeAnnotation("What every part has: a name, a maker, a serial number.");
        m_out << "    <xs:sequence>\n";
        writeChild("displayName", "xs:string");
        writeChild("manufacturer", "xs:string", " minOccurs=\"0\"");
        writeChild("inService", "xs:boolean");
        m_out << "    </xs:sequence>\n";
        writeAttribute("serialNumber", "xs:string", "required");
        writeAttribute("inventoryNumber", "xs:string", "optional");
        m_out << "  </xs:complexType>\n\n";
    }

    void writePart(const char* part) const {
        m_out << "  <xs:complexType name=\"" << m_type << part << "\">\n";
        writeAnnotation("A part of the station, with what it is measured and moved by.");
        m_out << "    <xs:complexContent>\n    <xs:extension base=\"" << m_type
              << "Component\">\n    <xs:sequence>\n";
        writeChild("travel", m_type + "Range");
        writeChild("speed", m_type + "Range", " minOccurs=\"0\"");
        writeChild("tool", m_type + "Tool", " minOccurs=\"1\" maxOccurs=\"8\"");
        writeChild("load", "xs:double");
        writeChild("cycles", "xs:int", " minOccurs=\"0\"");
        m_out << "    </xs:sequence>\n";
        writeAttribute("kind", m_type + "Kind", "required");
        writeAttribute("unit", m_type + "Unit", "optional");
        m_out << "    </xs:extension>\n    </xs:complexContent>\n  </xs:complexType>\n\n";
    }

    void writeRange() const {
        m_out << "  <xs:complexType name=\"" << m_type << "Range\">\n    <xs:sequence>\n";
        writeChild("lower", "xs:double");
        writeChild("upper", "xs:double");
        m_out << "    </xs:sequence>\n";
        writeAttribute("unit", m_type + "Unit", "required");
        m_out << "  </xs:complexType>\n\n";
    }

    void writeTool() const {
        m_out << "  <xs:complexType name=\"" << m_type << "Tool\">\n    <xs:sequence>\n";
        for (const char* const length : {"diameter", "length", "cornerRadius", "offset"})
            writeChild(length, "xs:double");
        writeChild("coating", "xs:string", " minOccurs=\"0\"");
        m_out << "    </xs:sequence>\n";
        writeAttribute("number", "xs:int", "required");
        m_out << "  </xs:complexType>\n\n";
    }

    void writeEnumeration(const char* name, std::initializer_list<const char*> values) const {
        m_out << "  <xs:simpleType name=\"" << m_type << name << "\">\n";
        writeAnnotation("One of a list.");
        m_out << "    <xs:restriction base=\"xs:string\">\n";
        for (const char* const value : values)
            m_out << "      <xs:enumeration value=\"" << value << "\"/>\n";
        m_out << "    </xs:restriction>\n  </xs:simpleType>\n\n";
    }

    void writeAnnotation(const char* text) const {
        m_out << "    <xs:annotation>\n      <xs:documentation>" << text
              << "</xs:documentation>\n    </xs:annotation>\n";
    }

    void writeChild(const char* name, const std::string& type, const char* occurrence = "") const {
        m_out << "      <xs:element name=\"" << name << "\" type=\"" << type << '"' << occurrence
              << "/>\n";
    }

    void writeAttribute(const char* name, const std::string& type, const char* use) const {
        m_out << "    <xs:attribute name=\"" << name << "\" type=\"" << type << "\" use=\"" << use
              << "\"/>\n";
    }

    std::ostream& m_out;
    std::string m_type;
    std::string m_next;
};

} // namespace

SchemaFile::SchemaFile(std::size_t types) : m_types(types) {
    std::ofstream out(file());
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\""
           " xmlns:ov=\"http://www.orvant.com/OV_QLV100\""
           " xmlns=\"http://www.orvant.com/OV_QLV100\""
           " targetNamespace=\"http://www.orvant.com/OV_QLV100\""
           " elementFormDefault=\"qualified\">\n\n"
           "  <xs:element name=\"line\" type=\""
        << stationType(0) << "\"/>\n\n";
    for (std::size_t station = 0; station < types / typesOfStation; ++station)
        StationWriter(out, station).write();
    out << "</xs:schema>\n";
}

std::vector<std::string> SchemaFile::everySecondStation() const {
    std::vector<std::string> names;
    for (std::size_t station = 0; station < m_types / typesOfStation; station += 2)
        names.push_back(stationType(station));
    return names;
}

std::size_t SchemaFile::typesOfEverySecondStation() const {
    return everySecondStation().size() * typesOfStation;
}

} // namespace Orvant::Benchmarks
