// Uses what each public header is for, so that it links only when all of it is there.

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <ConfigurationFramework/XsdConfigReader.h>
#include <ConfigurationFramework/xsd/ov_schema.h>
#include <ExceptionHandling/OvException.h>
#include <FileHandling/FileName.h>
#include <FileHandling/FileUtilities.h>
#include <FileHandling/OvFstream.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <GeneralServices/XmlErrorHandler.h>
#include <Logging/Logging.h>
#include <System/XercesInitializationMutex.h>
#include <VersionControl/BuildInformation.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace {

void expect(bool holds, const char* what) {
    if (holds)
        return;
    std::cerr << "Not so: " << what << '\n';
    std::exit(1);
}

class Plotter : public Orvant::ConfigurationObject {
public:
    Plotter() : ConfigurationObject("Plotter", "", LoadAndSave, AllProducts) {
        addConfigurationValue(new Orvant::ConfigurationValue<int>("Copies", "", 1, Visible,
                                                                  LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new Plotter; }

    Orvant::ConfigurationValue<int>& copies() const {
        return dynamic_cast<Orvant::ConfigurationValue<int>&>(*getConfigurationValue("Copies"));
    }
};

void saveAndLoad(const Orvant::FileName& file) {
    auto& manager = Orvant::ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setConfigurationFile(file);
    const auto saved = std::make_shared<Plotter>();
    manager.addConfigurationObject(saved, "Plotter");
    saved->copies().setValue(3);
    expect(manager.saveConfiguration("1.0"), "settings are saved");
    expect(Orvant::FileUtilities::exists(file), "the file is there");

    manager.reset();
    manager.setValidVersionList({"1.0"});
    manager.setConfigurationFile(file);
    const auto loaded = std::make_shared<Plotter>();
    manager.addConfigurationObject(loaded, "Plotter");
    expect(loaded->copies().getValue() == 3, "settings are loaded");
}

void throwAndCatch() {
    try {
        Orvant::SimpleConfigReader("no such file", "", {"1.0"});
        expect(false, "a missing file is told");
    } catch (const Orvant::OvException& e) {
        expect(std::string(e.what()).starts_with("ConfigException"), "exceptions have a name");
    }
}

void parseByItself() {
    const boost::unique_lock<boost::mutex> lock(Orvant::XercesInitializationMutex::getMutex());
    xercesc::XMLPlatformUtils::Initialize();
    {
        const std::string text = "<a><b></a>";
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()),
                                                text.size(), "text");
        Orvant::XmlErrorHandler errors;
        xercesc::XercesDOMParser parser;
        parser.setErrorHandler(&errors);
        parser.parse(source);
        expect(errors.getSawErrors(), "errors are seen");
    }
    xercesc::XMLPlatformUtils::Terminate();
    const auto tag = Orvant::XercesHelperFunctions::stringToXmlCh("tag");
    expect(Orvant::XercesHelperFunctions::xmlChToString(tag.c_str()) == "tag", "text stays");
}

void reduceSchema() {
    Orvant::OvOfstream("machine.xsd") << R"(<?xml version="1.0" encoding="UTF-8"?>
<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" xmlns:ov="http://www.orvant.com/OV_QLV100" xmlns="http://www.orvant.com/OV_QLV100" targetNamespace="http://www.orvant.com/OV_QLV100" elementFormDefault="qualified">
  <xs:complexType name="Machine"/>
  <xs:complexType name="Tool"/>
</xs:schema>
)";
    Orvant::XsdConfigReader reader("machine.xsd");
    reader.readXSD(true);
    reader.keepXSDElement({"Tool"});
    expect(reader.getXsdTree().size() == 1, "schemas are reduced");

    const OV_XsdReader::ov_schema empty;
    expect(empty.complexType().empty(), "the document model is there");
}

} // namespace

int main() {
    saveAndLoad("settings.xml");
    throwAndCatch();
    reduceSchema();
    parseByItself();
    Orvant::BuildInformation::setProductType(2);
    expect(Orvant::BuildInformation::getProductType() == 2, "the product is told");
    Orvant::Logging("application").logERROR("All is well", __FILE__, __func__, __LINE__);
}
