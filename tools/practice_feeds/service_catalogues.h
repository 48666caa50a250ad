#pragma once

#include "practice_feeds/growing_catalogue.h"

#include <string>

// The catalogues with which the services and locators begin, on the clock of the system.
namespace tremor::practice {

// INGV's, and that of the ISIDE site: real documents from `dataFolder`/ingv. Throws
// std::runtime_error when one cannot be read.
GrowingCatalogue ingvCatalogue(const std::string& dataFolder, const CatalogueOptions& options);

// Made up.
GrowingCatalogue usgsCatalogue(const CatalogueOptions& options);
GrowingCatalogue emscCatalogue(const CatalogueOptions& options);
GrowingCatalogue localCatalogue(const CatalogueOptions& options);

} // namespace tremor::practice
