#pragma once

#include <cstdint>
#include <string>

namespace tremor {

// Every setting of the program, one field for each key of settings.ini, in the order of the
// record; the defaults are those of a first start. Flags hold 0 or 1. Rules for reading and
// writing stand in one table in settings_table.cpp.
struct AppSettings {
    std::int16_t UseLocalSource = 0;
    std::string LocalSourcePath;
    std::int32_t LocalPollEvery = 0; // minutes
    std::int16_t SeisCompOrLIVELOC = 0;
    std::int16_t UsePrimaryDataSource = 0;
    std::string PrimaryDataSource; // address of the ISIDE web site
    std::string PrimarySourceUsername;
    std::string PrimarySourcePassword;
    std::int32_t PrimaryPollEvery = 1;   // minutes
    std::int32_t PrimaryLastNHours = 24; // hours
    std::int16_t IsideOrIngv = 0;        // 1 INGV, 0 ISIDE
    std::int16_t UseAlternateDataSource = 0;
    std::string AlternateDataSource;
    std::string AlternateSourceUsername;
    std::string AlternateSourcePassword;
    std::int32_t AlternatePollEvery = 0;   // minutes
    std::int32_t AlternateLastNHours = 24; // hours
    std::int16_t EmscOrUsgs = 0;           // 1 USGS, 0 EMSC
    std::int32_t RangeHoursOfEventsInMap = 24;
    std::string LastEventMapZoomLevel = "8";
    std::string DefaultMapZoomLevel = "4";
    std::string PathPins; // prefix of the pin images, "/" at its end
    std::int16_t PinMode = 1;
    std::int32_t PinScale = 3;
    std::int32_t PriorityEvents = 1;
    std::string LastWorkSpace = "Global";
    std::int32_t PanelXSize = 0; // twips
    std::int32_t PanelYSize = 0; // twips
    std::string LastEvent;       // yyyy/mm/dd
    std::string searchParQuery;  // SQL condition in force
    std::int16_t wrkSpaceUpdating = 1;
    std::int16_t Legend = 0;
    double CenterLatitude = 41.0;  // degrees
    double CenterLongitude = 12.0; // degrees
    std::int32_t Zoom = 5;
    std::int32_t StartupLogo = 0; // non-zero: no logo at start
    std::string Path;             // the catalogue
    std::string PathDbStationKit; // the station database
    std::int32_t SaveInKml = 0;
    std::int32_t SaveInCsv = 0;
    float MagLevel1 = 0;
    float MagLevel2 = 0;
    float MagLevel3 = 0;
    float MagLevel4 = 0;
    std::string MagLevelSound1; // WAV files
    std::string MagLevelSound2;
    std::string MagLevelSound3;
    std::string MagLevelSound4;
    std::string startDate; // "YYYY-MM-DD HH:mm:ss"
    std::string endDate;
    std::string AnimatedGif = "lastepic.gif"; // neither read nor written
    std::string SMTPserver;
    std::string SMTPusername;
    std::string SMTPpassword;
    std::int16_t SMTPport = 0;
    std::int16_t SMTPreqSSL = 0;
    std::string SMTPfromName;
    std::string SMTPfromEmail;
    std::string SMTPrecipient;
    std::int16_t enableEmail = 0;
    std::int32_t MagToSend = 0;
    std::string PGLserver;
    std::string PGLport;
    std::int32_t PGLmagToSend = 0;
    std::int16_t PGLAllOrSelected = 0;
    std::string PGLselectedUsers;
    std::int16_t enablePagerlink = 0;
    std::string TelegramToken;
    std::int16_t enableTelegram = 0;
    std::int32_t TelegramPollEvery = 1; // minutes
    std::int16_t abilitaPagerlink = 0;  // read when a file has it, never written
};

} // namespace tremor
