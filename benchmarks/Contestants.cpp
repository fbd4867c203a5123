#include "Contestants.h"

#include "Benchmarks.h"
#include "KConfigPeer.h"
#include "Library.h"
#include "PropertyTreePeer.h"
#include "PugixmlPeer.h"
#include "QSettingsPeer.h"
#include "XmlParsers.h"

#include <utility>

namespace Orvant::Benchmarks {

namespace {

template <std::shared_ptr<void> (*parse)(const std::string&)>
Loaded parseBoth(const SettingsFiles& files) {
    using Both = std::pair<std::shared_ptr<void>, std::shared_ptr<void>>;
    return {std::make_shared<Both>(parse(files.systemXml()), parse(files.userXml()))};
}

} // namespace

const std::vector<Contestant>& contestants() {
    static const std::vector<Contestant> s_contestants{
        {thisLibrary, loadInBatch},
        {"this library, to save by Replace", loadInBatchFor<SaveMode::Replace>},
        {"this library, to save by Merge", loadInBatchFor<SaveMode::Merge>},
        {"KConfig", loadWithKConfig},
        {"QSettings", loadWithQSettings},
        {"Boost.PropertyTree", loadWithPropertyTree},
        {"pugixml by hand", loadWithPugixml},
        {"libxml2, parsing only", parseBoth<parseWithLibxml2>},
        {"XercesDOMParser, parsing only", parseBoth<parseWithXercesDom>},
        {"Xerces SAXParser, scanning only", parseBoth<scanWithXercesSax>},
    };
    return s_contestants;
}

} // namespace Orvant::Benchmarks
