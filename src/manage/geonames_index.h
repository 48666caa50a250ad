#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// What the export area of GeoNames (https://download.geonames.org/export/dump/) offers: its index
// page lists the files, countryInfo.txt names the countries.
namespace tremor {

// One offered dump.
struct GeoNamesFile {
    std::string Id;        // ISO code of the country, "IT"
    std::string Name;      // of the country, "Italy"
    std::string FileName;  // "IT.zip"
    bool imported = false; // the catalogue holds points of interest of this country
};

// There are fewer than 300 countries; what a page lists beyond this is no list of countries.
inline constexpr std::size_t maximumGeoNamesFiles = 1000;

// The file names of six characters on an index page, each once, in the order of the page. A line
// counts when it begins with "<img", such as
//
//     <img src="/icons/compressed.gif" alt="[   ]"> <a href="AD.zip">AD.zip</a>  2025-11-19 03:05
//
// and the name stands behind `p">` (the end of the link's target) up to the next "<". What stands
// in front of the point becomes part of a path and of statements, so only letters and digits are
// taken there. A page of another layout gives no names.
std::vector<std::string> listedFileNames(std::string_view indexPage);

// The listed files whose name in front of the point is a country's code, with the country's name,
// in the order given; the others are dropped. Lines of countryInfo.txt are separated by line feeds,
// their fields by tabs: field 0 is the code, field 4 the name. Lines that begin with "#" and lines
// with fewer fields are passed over. The last line of a code wins.
//
//     IT	ITA	380	IT	Italy	Rome	301230	60431283	EU	.it	EUR
//     …
std::vector<GeoNamesFile> nameCountries(const std::vector<std::string>& fileNames,
                                        std::string_view countryInfo);

} // namespace tremor
