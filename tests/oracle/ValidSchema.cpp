#include "ValidSchema.h"

namespace Orvant::Support {

namespace {

using Strings = std::vector<std::string>;

std::string joined(const Strings& parts) {
    std::string all;
    for (const std::string& part : parts)
        all += "  " + part + '\n';
    return all;
}

} // namespace

ValidSchema::ValidSchema(std::uint32_t seed)
    : m_random(seed),
      m_text("<xsd:schema xmlns:xsd='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t'\n"
             "    targetNamespace='urn:t' elementFormDefault='qualified'>\n") {
    for (int i = 0; i < 6; ++i)
        m_complexTypes.push_back(fresh("Type"));
    for (int i = 0; i < 5; ++i)
        addSimpleType(fresh("Simple"));
    m_types = m_complexTypes;
    m_types.insert(m_types.end(), m_simpleTypes.begin(), m_simpleTypes.end());
    addGroups();
    for (std::size_t i = 0; i < m_complexTypes.size(); ++i)
        m_text += "<!-- on " + m_complexTypes[i] + " -->\n<xsd:complexType name='" +
                  m_complexTypes[i] + "'>\n" + content(i) + "</xsd:complexType>\n";
    addRoots();
    m_text += "</xsd:schema>\n";
}

Strings ValidSchema::someOf(const Strings& names) {
    Strings some;
    for (const std::string& name : names)
        if (oneIn(3))
            some.push_back(name);
    return some;
}

std::string ValidSchema::fresh(const std::string& prefix) {
    return prefix + std::to_string(++m_count);
}

std::string ValidSchema::part(const std::string& prefix) {
    m_parts.push_back(fresh(prefix));
    return m_parts.back();
}

std::string ValidSchema::typeOfChild() {
    return oneIn(4) ? "xsd:int" : "t:" + anyOf(m_types);
}

std::string ValidSchema::typeOfAttribute() {
    return oneIn(2) ? "xsd:int" : "t:" + anyOf(m_simpleTypes);
}

std::string ValidSchema::child(const std::string& occurrence) {
    const std::string tag = "<xsd:element name='" + part("child") + "' " + occurrence;
    if (!oneIn(6))
        return tag + " type='" + typeOfChild() + "'/>";
    return tag + "><xsd:complexType><xsd:sequence>" + joined(children()) +
           "</xsd:sequence></xsd:complexType></xsd:element>";
}

std::string ValidSchema::attribute() {
    return "<xsd:attribute name='" + part("attribute") + "' type='" + typeOfAttribute() + '\'' +
           (oneIn(3) ? "/>" : " use='optional'/>");
}

Strings ValidSchema::children() {
    Strings found;
    for (auto count = m_random() % 4; count > 0; --count)
        found.push_back(child(oneIn(3) ? "" : "minOccurs='0'"));
    return found;
}

Strings ValidSchema::attributes() {
    Strings found;
    for (auto count = m_random() % 3; count > 0; --count)
        found.push_back(attribute());
    return found;
}

void ValidSchema::addSimpleType(const std::string& name) {
    m_text += "<xsd:simpleType name='" + name + "'>\n  ";
    const auto kind = m_random() % 4;
    if (m_atomicTypes.empty() || kind == 0) {
        m_text += "<xsd:restriction base='" +
                  (m_atomicTypes.empty() ? "xsd:string" : "t:" + anyOf(m_atomicTypes)) +
                  "'><xsd:maxLength value='9'/></xsd:restriction>\n";
        m_atomicTypes.push_back(name);
    } else if (kind == 1) {
        m_text += "<xsd:list itemType='t:" + anyOf(m_atomicTypes) + "'/>\n";
    } else {
        m_text += "<xsd:union memberTypes='xsd:int t:" + anyOf(m_simpleTypes) +
                  " t:" + anyOf(m_simpleTypes) + "'/>\n";
    }
    m_simpleTypes.push_back(name);
    m_text += "</xsd:simpleType>\n";
}

void ValidSchema::addGroups() {
    m_text += "<xsd:group name='children'>\n<xsd:sequence>\n" + joined(children()) +
              "</xsd:sequence>\n</xsd:group>\n";
    m_text += "<xsd:attributeGroup name='attributes'>\n" + joined(attributes()) +
              "</xsd:attributeGroup>\n";
    m_text += "<xsd:attribute name='global' type='" + typeOfAttribute() + "'/>\n";
}

std::string ValidSchema::content(std::size_t index) {
    switch (m_random() % 8) {
    case 0:
        return "<xsd:choice>\n" + joined({child(""), child("")}) + "</xsd:choice>\n";
    case 1:
        return "<xsd:all>\n" + joined({child("minOccurs='0'"), child("")}) + "</xsd:all>\n" +
               joined(attributes());
    case 2:
        return "<xsd:simpleContent><xsd:extension base='t:" + anyOf(m_simpleTypes) + "'>\n" +
               joined(attributes()) + "</xsd:extension></xsd:simpleContent>\n";
    case 3:
    case 4:
        if (!m_bases.empty())
            return extension();
        break;
    case 5:
    case 6:
        if (!m_bases.empty())
            return restriction();
        break;
    default:
        break;
    }
    Base base{m_complexTypes[index], children(), attributes()};
    if (oneIn(3))
        base.children.emplace_back("<xsd:group ref='t:children'/>");
    if (oneIn(3))
        base.children.emplace_back("<xsd:element ref='t:head' minOccurs='0'/>");
    if (oneIn(3))
        base.children.push_back("<xsd:choice minOccurs='0'>" + child("") + "</xsd:choice>");
    std::string text =
        "<xsd:sequence>\n" + joined(base.children) + "</xsd:sequence>\n" + joined(base.attributes);
    if (oneIn(3))
        text += "<xsd:attribute ref='t:global'/><xsd:attributeGroup ref='t:attributes'/>\n";
    m_bases.push_back(std::move(base));
    return text;
}

std::string ValidSchema::extension() {
    const Base& base = m_bases[m_random() % m_bases.size()];
    return "<xsd:complexContent><xsd:extension base='t:" + base.name + "'><xsd:sequence>\n" +
           joined(children()) + "</xsd:sequence>\n" + joined(attributes()) +
           "</xsd:extension></xsd:complexContent>\n";
}

std::string ValidSchema::restriction() {
    const Base& base = m_bases[m_random() % m_bases.size()];
    Strings repeated;
    for (const std::string& child : base.children)
        if (child.find("minOccurs='0'") > child.find('>') || oneIn(2))
            repeated.push_back(child);
    return "<xsd:complexContent><xsd:restriction base='t:" + base.name + "'><xsd:sequence>\n" +
           joined(repeated) + "</xsd:sequence>\n" + joined(someOf(base.attributes)) +
           "</xsd:restriction></xsd:complexContent>\n";
}

void ValidSchema::addRoots() {
    const std::string type = anyOf(m_complexTypes);
    m_text += "<xsd:element name='head' type='t:" + type + "'/>\n";
    for (auto count = m_random() % 3; count > 0; --count)
        m_text += "<xsd:element name='" + fresh("substitute") + "' substitutionGroup='t:head'" +
                  (oneIn(2) ? "/>\n" : " type='t:" + type + "'/>\n");
    for (auto count = m_random() % 3; count > 0; --count)
        m_text += "<xsd:element name='" + fresh("root") + "' type='" + typeOfChild() + "'/>\n";
    m_text += "<xsd:element name='" + fresh("root") + "' type='" + typeOfChild() +
              "'><xsd:key name='key'><xsd:selector xpath='*'/><xsd:field xpath='@id'/></xsd:key>\n"
              "<xsd:keyref name='keyref' refer='t:key'><xsd:selector xpath='*'/>"
              "<xsd:field xpath='@to'/></xsd:keyref></xsd:element>\n";
    if (oneIn(2))
        m_text += "<xsd:element name='" + fresh("root") +
                  "'><xsd:complexType><xsd:sequence><xsd:element ref='t:head'/>\n" +
                  joined(children()) + "</xsd:sequence></xsd:complexType></xsd:element>\n";
}

} // namespace Orvant::Support
