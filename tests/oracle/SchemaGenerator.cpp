#include "SchemaGenerator.h"

#include <SchemaTestSupport.h>

#include <algorithm>

namespace Orvant::Support {

namespace {

/// Few names, so that they often match.
const Strings commonTypes = {"A", "B", "C", "D", "E", "Größe", "Type-1", "S1", "S2", "int"};
const Strings commonNames = {"a", "b", "c", "ä", "other", ""};
const Strings builtIns = {"xs:string", "xs:int", "xs:double", "xs:boolean"};
const Strings maxima = {"1", "2", "unbounded"};

const Strings texts = {"text",
                       "",
                       " with blanks ",
                       "of type xs:int",
                       "of type ov:T and ov:U",
                       "a &lt; b &amp;&amp; c > d",
                       "type=\"int\" base=\"string\"",
                       "p1:text",
                       "ä\xF0\x9F\x98\x80",
                       "of\nthree\nlines",
                       "first type=\"string\"\n  p1:second p1: of type xs:int\nthird"};

/// What the service drops; each is on lines of its own.
const Strings unknown = {
    "<!-- a comment with xs: and ov: -->",
    "<xs:import/>",
    "<xs:import namespace=\"urn:other\" schemaLocation=\"other.xsd\"/>",
    "<xs:any/>",
    "<xs:attributeGroup ref=\"ov:group\"/>",
    "<xs:pattern value=\"[a-z]+\"/>",
    "<unknown/>",
    "<?pi xs: ov:?>",
    "text where elements belong",
    "<![CDATA[<xs:element/>]]>",
    "",
    "<xs:group name=\"G\">\n<xs:sequence>\n<xs:element name=\"a\" type=\"ov:A\"/>\n"
    "</xs:sequence>\n</xs:group>",
    "<xs:all>\n<xs:element name=\"a\" type=\"ov:A\" minOccurs=\"many\"/>\n</xs:all>",
    "<xs:simpleContent>\n<xs:extension base=\"xs:string\">\n<xs:attribute name=\"a\"/>\n"
    "</xs:extension>\n</xs:simpleContent>",
    "<xs:union memberTypes=\"ov:S1 ov:S2\"/>",
    "<xs:appinfo>only text</xs:appinfo>",
    "<!-- two tags --><!-- on a line --><xs:element name=\"b\" type=\"ov:B\"/>"};

/// Lines that the service reads in its own way or not at all, so that most files have none.
const Strings wild = {
    "<xs:element name=\"a\" type=\"ov:A\"/><xs:element name=\"b\" type=\"ov:B\"/>",
    "<xs:element name=\"a\" type=\"ov:A\"></xs:element><xs:element name=\"b\" type=\"ov:B\"/>",
    "<xs:import/><xs:element name=\"a\" type=\"ov:A\"/>",
    "<!-- xs: --><xs:element name=\"a\" type=\"ov:A\"/>",
    "<xs:element name=\"a>b\" type='ov:A' ></xs:element >",
    "<xs:sequence><xs:element name=\"a\" type=\"ov:A\"/></xs:sequence>",
    "<xs:element name=\"a\" minOccurs=\"many\"/>",
    "<xs:element name=\"a\" minOccurs=\"\"/>",
    "<xs:element name=\"a\" minOccurs=\"99999999999\"/>",
    "<xs:element name=\"a\" minOccurs=\" +2 \" maxOccurs=\" 03 \"/>",
    "<xs:element name=\"a\" minOccurs=\"00\" type=\"A\"/>",
    "<xs:element name=\"a\" minOccurs=\"-0\" type=\"A\"/>",
    "<xs:element name=\"a\"\n type=\"xs:int\"\n/>",
    "<xs:element name=\"a\"\n type=\"xs:boolean\"\n/>",
    "<xs:documentation>one</xs:documentation>",
    "<xs:annotation><xs:documentation>one</xs:documentation></xs:annotation>",
    "<xs:annotation>\n<xs:documentation>with\n<b>markup</b>\nin it</xs:documentation>\n"
    "</xs:annotation>",
    "<xs:annotation>\n<xs:documentation>of xs:int</xs:documentation> </xs:annotation>",
    "<xs:annotation>\n<xs:documentation><![CDATA[a < b]]></xs:documentation>\n</xs:annotation>",
    "<xs:element name=\"a\"><!-- <xs:b> --></xs:element>",
    "<xs:element name=\"a\"><?pi <xs:b> ?></xs:element>",
    "<xs:element name=\"a\"><![CDATA[</xs:element>]]></xs:element>",
    "<xs:element name=\"a\"><unknown/></xs:element>",
    "<ov:element name=\"a\"></ov:element>",
    "<not closed",
    "</xs:sequence>",
    "&unknown;"};

/// Lines with a prefix or a comment beside an end tag.
const Strings besideTags = {
    "<xs:annotation>\n<xs:documentation>many\nof xs:int</xs:documentation>\n</xs:annotation>",
    "<xs:annotation>\n<xs:documentation>many\nof p1:int</xs:documentation>\n</xs:annotation>",
    "<xs:annotation>\n<xs:documentation>many\nof ov:T</xs:documentation>\n</xs:annotation>",
    "<xs:annotation>\n<xs:documentation>\n</xs:documentation>\n</xs:annotation>",
    "<xs:annotation>\n<xs:documentation> </xs:documentation>\n</xs:annotation>",
    "<xs:annotation>\n<xs:documentation>text\n</xs:documentation><!-- xs: -->\n</xs:annotation>",
    "<!-- xs: --><xs:element name=\"a\" type=\"ov:A\"></xs:element>",
    "<xs:element name=\"a\" type=\"ov:A\"></xs:element><!-- comment -->",
    "<!-- comment --><xs:element name=\"a\" type=\"ov:A\"></xs:element> text",
    "<xs:element name=\"a\"\n type=\"xs:int\"></xs:element>"};

} // namespace

SchemaGenerator::SchemaGenerator(std::uint32_t seed, Kind kind) : m_random(seed), m_kind(kind) {}

Strings SchemaGenerator::someOf(const Strings& all) {
    Strings some;
    for (auto count = all.empty() ? 0 : m_random() % 4; count > 0; --count)
        some.push_back(anyOf(all));
    return some;
}

std::string SchemaGenerator::prefixed(const std::string& typeName) {
    return m_prefixDeclared && !oneIn(4) ? "ov:" + typeName : typeName;
}

std::string SchemaGenerator::elementType() {
    if (oddOneIn(12))
        return anyOf({"int", "string", "double", "boolean", "Undeclared", "ov:Undeclared", ""});
    if (oneIn(4))
        return anyOf(builtIns);
    Strings all = m_complexTypes;
    all.insert(all.end(), m_simpleTypes.begin(), m_simpleTypes.end());
    return prefixed(anyOf(all.empty() ? commonTypes : all));
}

std::string SchemaGenerator::attributeType() {
    if (m_kind == Odd && oneIn(3))
        return elementType();
    return m_simpleTypes.empty() || oneIn(2) ? anyOf(builtIns) : prefixed(anyOf(m_simpleTypes));
}

void SchemaGenerator::put(const std::string& line) {
    for (std::size_t start = 0; start != std::string::npos;) {
        const auto end = line.find('\n', start);
        m_lines += line.substr(start, end - start) + m_lineEnd;
        start = end == std::string::npos ? end : end + 1;
    }
}

std::string SchemaGenerator::tag(const std::string& name, const Attributes& attributes,
                                 bool spread) {
    std::string result = m_indentation + "<xs:" + name;
    if (oddOneIn(20))
        result += " id=\"ov:id\"";
    for (const auto& [attribute, value] : attributes)
        result += (spread ? "\n   " : " ") + attribute + "=\"" + value + '"';
    return result;
}

void SchemaGenerator::open(const std::string& name, const Attributes& attributes) {
    put(tag(name, attributes, oddOneIn(40)) + '>');
    if (m_kind == Valid || !oneIn(3))
        m_indentation += oneIn(9) ? "\t" : "  ";
    odd();
}

void SchemaGenerator::close(const std::string& name) {
    if (m_indentation.size() > 1)
        m_indentation.pop_back();
    put(m_indentation + "</xs:" + name + '>');
}

void SchemaGenerator::leaf(const std::string& name, const Attributes& attributes) {
    if (oneIn(8))
        put(tag(name, attributes, oddOneIn(40)) + "></xs:" + name + '>');
    else
        put(tag(name, attributes, oddOneIn(40)) + (oneIn(4) ? " />" : "/>"));
    odd();
}

void SchemaGenerator::odd() {
    if (oddOneIn(15))
        put(anyOf(unknown));
    if (m_wild && oneIn(25))
        put(anyOf(wild));
    if (m_wild && oneIn(25))
        put(anyOf(besideTags));
}

void SchemaGenerator::annotation() {
    if (!oneIn(4))
        return;
    open("annotation");
    if (oddOneIn(8))
        put("<xs:appinfo source=\"ov:here\">text</xs:appinfo>");
    if (!oddOneIn(8))
        put(tag("documentation", oneIn(5) ? Attributes{{"xml:lang", "en"}} : Attributes(),
                oddOneIn(10)) +
            '>' + anyOf(texts) + "</xs:documentation>");
    if (oddOneIn(10))
        put("<xs:documentation>a second one</xs:documentation>");
    close("annotation");
}

void SchemaGenerator::element(int depth) {
    const bool valid = m_kind == Valid;
    Attributes attributes;
    if (!oddOneIn(20)) {
        m_childNames.push_back(valid ? fresh("child") : anyOf(commonNames));
        attributes.emplace_back("name", m_childNames.back());
    }
    const bool inlineType = depth > 0 && oneIn(8);
    if (!inlineType && !oddOneIn(25))
        attributes.emplace_back("type", elementType());
    if (!oneIn(4))
        attributes.emplace_back("minOccurs", oddOneIn(20) ? anyOf({"-1", "01", "2147483647", "+0"})
                                                          : anyOf({"0", "0", "0", "1", "2"}));
    const bool many = !attributes.empty() && attributes.back().second == "2";
    if (many || oneIn(3))
        attributes.emplace_back("maxOccurs", oddOneIn(8) ? anyOf({"", "many", "Unbounded", "0"})
                                             : many      ? "unbounded"
                                                         : anyOf(maxima));
    if (oddOneIn(10))
        attributes.emplace_back(anyOf({"default", "fixed", "ref", "xs:type", "nillable"}), "x");
    if (!valid)
        std::ranges::shuffle(attributes, m_random);
    if (!inlineType && !oneIn(5)) {
        leaf("element", attributes);
        return;
    }
    open("element", attributes);
    if (!inlineType || !valid)
        annotation();
    if (inlineType)
        complexType({}, depth - 1);
    if (inlineType && oddOneIn(10))
        complexType({}, depth - 1);
    close("element");
}

void SchemaGenerator::elements(const std::string& compositor, int depth) {
    open(compositor);
    // No content matches a choice without members.
    for (auto count = m_random() % 4 + (compositor == "choice" && m_kind == Valid ? 1 : 0);
         count > 0; --count)
        element(depth);
    close(compositor);
}

void SchemaGenerator::attributes() {
    for (auto count = m_random() % 4; count > 0; --count) {
        Attributes attributes;
        if (!oddOneIn(20)) {
            m_attributeNames.push_back(m_kind == Valid ? fresh("attribute") : anyOf(commonNames));
            attributes.emplace_back("name", m_attributeNames.back());
        }
        if (!oddOneIn(8))
            attributes.emplace_back("type", attributeType());
        if (!oneIn(3))
            attributes.emplace_back("use", oddOneIn(8)
                                               ? anyOf({"Optional", "prohibited", ""})
                                               : anyOf({"optional", "optional", "required"}));
        if (oddOneIn(10))
            attributes.emplace_back("default", "x");
        if (oneIn(5)) {
            open("attribute", attributes);
            annotation();
            close("attribute");
        } else {
            leaf("attribute", attributes);
        }
    }
}

void SchemaGenerator::extension(int depth) {
    // A valid base is an earlier type, so that no type is its own.
    const std::string base =
        m_kind == Odd ? elementType() : prefixed(m_complexTypes[m_random() % m_current]);
    open("complexContent");
    open("extension", oddOneIn(20) ? Attributes() : Attributes{{"base", base}});
    if (!oneIn(3))
        elements("sequence", depth);
    attributes();
    close("extension");
    close("complexContent");
}

void SchemaGenerator::restriction() {
    open("complexContent");
    open("restriction",
         {{"base", m_kind == Odd && oneIn(2) ? elementType() : std::string("xs:anyType")}});
    if (oddOneIn(4))
        leaf("enumeration", {{"value", "x"}});
    attributes();
    close("restriction");
    close("complexContent");
}

void SchemaGenerator::complexType(const Attributes& typeAttributes, int depth) {
    open("complexType", typeAttributes);
    annotation();
    if (m_kind == Valid) {
        switch (m_random() % 6) {
        case 0:
            elements("choice", depth);
            break;
        case 1:
        case 2:
            if (m_current > 0) {
                extension(depth);
                break;
            }
            [[fallthrough]];
        case 3:
        case 4:
            elements("sequence", depth);
            attributes();
            break;
        default:
            restriction();
        }
    } else {
        if (!oneIn(4))
            elements("sequence", depth);
        if (oneIn(2))
            elements("choice", depth);
        if (oneIn(3))
            attributes();
        if (oneIn(3))
            extension(depth);
        if (oneIn(10))
            restriction();
        if (oneIn(20))
            annotation();
        if (oneIn(20))
            elements("sequence", depth);
    }
    close("complexType");
}

void SchemaGenerator::simpleType(std::size_t index) {
    open("simpleType", oddOneIn(20) ? Attributes() : Attributes{{"name", m_simpleTypes[index]}});
    annotation();
    const bool plain = oneIn(3);
    const std::string base = m_plainSimpleTypes.empty() || oneIn(2)
                                 ? std::string("xs:string")
                                 : prefixed(anyOf(m_plainSimpleTypes));
    open("restriction", {{"base", oddOneIn(3) ? elementType() : base}});
    for (auto count = plain ? 0 : m_random() % 3 + 1; count > 0; --count)
        leaf("enumeration", {{"value", fresh("value")}});
    close("restriction");
    close("simpleType");
    if (plain)
        m_plainSimpleTypes.push_back(m_simpleTypes[index]);
}

void SchemaGenerator::rootElement() {
    Attributes attributes;
    if (!oddOneIn(20))
        attributes.emplace_back("name", m_kind == Valid ? fresh("Root") : anyOf(commonNames));
    if (!oddOneIn(20))
        attributes.emplace_back("type", elementType());
    if (!oddOneIn(10)) {
        leaf("element", attributes);
        return;
    }
    open("element", attributes);
    complexType({}, 0);
    close("element");
}

std::string SchemaGenerator::schema() {
    m_lines.clear();
    m_indentation.clear();
    m_lineEnd = oneIn(8) ? "\r\n" : "\n";
    m_prefixDeclared = !oneIn(4);
    m_wild = oddOneIn(4);
    m_complexTypes.clear();
    m_simpleTypes.clear();
    m_plainSimpleTypes.clear();
    m_childNames = commonNames;
    m_attributeNames = commonNames;
    for (auto count = m_random() % 6 + (m_kind == Valid ? 1 : 0); count > 0; --count)
        m_complexTypes.push_back(m_kind == Valid ? fresh("Type") : anyOf(commonTypes));
    for (auto count = m_random() % 3; count > 0; --count)
        m_simpleTypes.push_back(m_kind == Valid ? fresh("Simple") : anyOf(commonTypes));

    if (oneIn(2))
        put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    put(m_prefixDeclared ? suiteHeader : suiteHeaderWithoutPrefix);
    odd();
    for (auto count = m_random() % 2; count > 0; --count)
        rootElement();
    for (std::size_t i = 0; i < m_simpleTypes.size(); ++i)
        simpleType(i);
    for (m_current = 0; m_current < m_complexTypes.size(); ++m_current)
        complexType(oddOneIn(20) ? Attributes() : Attributes{{"name", m_complexTypes[m_current]}},
                    2);
    for (auto count = m_random() % 3; count > 0; --count)
        rootElement();
    m_lines += "</xs:schema>" + (oneIn(4) ? std::string() : m_lineEnd);
    return m_lines;
}

SchemaFilter SchemaGenerator::filter() {
    Strings types = m_complexTypes;
    types.insert(types.end(), m_simpleTypes.begin(), m_simpleTypes.end());
    types.insert(types.end(), {"Undeclared", "xs:int", ""});
    SchemaFilter filter = {static_cast<SchemaFilter::Kind>(m_random() % 3), anyOf(types), {}};
    if (m_kind == Odd)
        types.push_back("ov:" + anyOf(types));
    filter.names = someOf(filter.kind == SchemaFilter::Elements       ? types
                          : filter.kind == SchemaFilter::ChildElement ? m_childNames
                                                                      : m_attributeNames);
    return filter;
}

} // namespace Orvant::Support
