#include "RandomDocuments.h"

namespace Orvant::Support {

namespace {

/// Adds random content to a document: elements of few names, texts of all kinds, and whatever
/// else may be between them.
void addContent(std::string& document, int depth, Random& random) {
    static const std::vector<std::string> pieces = {
        "true",       "false",      " true",         "12",      "-1",
        "4294967295", "2147483648", "1.5e3",         "1e",      "0x1F",
        "abc",        " ",          "\n  ",          "\r\n",    "&#x41;",
        "&amp;",      "&text;",     "&element;",     "&empty;", "&number;",
        "<!--c-->",   "<?pi d?>",   "<![CDATA[1]]>", "ä"};
    const auto count = random() % 5;
    for (auto i = count; i > 0; --i) {
        if (random() % 2 == 0 || depth == 0) {
            document += anyOf(pieces, random);
            continue;
        }
        const std::string& name = fewNames[random() % 6];
        document += '<' + name;
        if (random() % 3 == 0)
            document += " key='" + fewKeys[random() % 4] + '\'';
        if (random() % 4 == 0)
            document += random() % 2 == 0 ? " editable='false'" : " editable='no'";
        if (random() % 8 == 0) {
            document += "/>";
            continue;
        }
        document += '>';
        addContent(document, depth - 1, random);
        document += "</" + name + '>';
    }
}

} // namespace

const std::string prolog = "<!DOCTYPE Configuration [\n"
                           "<!ENTITY text 'some text'><!ENTITY element '<A><Value>1</Value></A>'>\n"
                           "<!ENTITY nested '&text; and &element;'><!ENTITY empty ''>\n"
                           "<!ENTITY number '42'><!ENTITY amp2 '&#38;amp;'>\n"
                           "<!ELEMENT Configuration ANY><!ELEMENT A (Value*,item*)>\n"
                           "<!ATTLIST A key CDATA 'k' editable (true|false) 'false'>\n"
                           "<!ATTLIST Value editable CDATA #FIXED 'false' other CDATA 'x'>\n"
                           "<!ATTLIST Configuration version CDATA '1'>\n"
                           "<!NOTATION n SYSTEM 'n'><!ENTITY % parameter ''> %parameter;\n"
                           "<!-- comment --><?pi in the prolog?>]>\n";

std::string randomDocument(const std::string& root, Random& random, int breadth) {
    std::string document = prolog + root;
    for (int i = 0; i < breadth; ++i)
        addContent(document, 4, random);
    return document + "</Configuration>";
}

} // namespace Orvant::Support
