#include "Benchmarks.h"

#include <QCoreApplication>
#include <boost/version.hpp>
#include <kconfig_version.h>
#include <libxml/xmlversion.h>
#include <pugixml.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XercesVersion.hpp>

#include <string>

namespace {

std::string dotted(int major, int minor, int patch) {
    return std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch);
}

/// Names, for the report, what was measured.
void addVersion(const std::string& name, const std::string& version) {
    benchmark::AddCustomContext("version of " + name, version);
}

void addBuild() {
    benchmark::AddCustomContext("build type", BUILD_TYPE);
    addVersion(COMPILER " C++", COMPILER_VERSION);
    addVersion("Xerces-C++", XERCES_FULLVERSIONDOT);
    addVersion("KConfig", KCONFIG_VERSION_STRING);
    addVersion("Qt", qVersion());
    addVersion("Boost",
               dotted(BOOST_VERSION / 100'000, BOOST_VERSION / 100 % 1'000, BOOST_VERSION % 100));
    addVersion("pugixml",
               dotted(PUGIXML_VERSION / 1'000, PUGIXML_VERSION / 10 % 100, PUGIXML_VERSION % 10));
    addVersion("libxml2", LIBXML_DOTTED_VERSION);
}

} // namespace

int main(int argc, char** argv) {
    using namespace Orvant::Benchmarks;

    const QCoreApplication application(argc, argv);
    xercesc::XMLPlatformUtils::Initialize();

    registerLoadBenchmarks();
    registerReadOneBenchmarks();
    registerDeclarationBenchmarks();
    registerSaveBenchmarks();
    registerCheckBenchmarks();
    registerMemoryBenchmarks();
    registerSchemaBenchmarks();
    registerGrowthBenchmarks();

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    addBuild();
    return benchmark::RunSpecifiedBenchmarks() == 0 ? 1 : 0;
}
