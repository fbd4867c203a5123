#pragma once

#include <ConfigurationFramework/Settings.h>

#include <string>

namespace Shop {

struct Sales : Orvant::Settings<Sales> {
    Sales();
    Orvant::Setting<std::string> currency;
};

struct Till : Orvant::Settings<Till> {
    Till();
    Orvant::Setting<int> number;
};

} // namespace Shop
