#pragma once

#include "alerts/telegram_bot.h"
#include "alerts/telegram_documents.h"
#include "database/catalogue_support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::testing {

// A service that gives one reply to each method; without one nobody answers.
class ScriptedTelegram : public TelegramTransfer {
  public:
    bool DownloadFile(std::string_view url, std::string_view target, std::int32_t chunkSize,
                      bool withoutStatusCheck) override {
        EXPECT_EQ(chunkSize, 4096);
        EXPECT_TRUE(withoutStatusCheck);
        urls.emplace_back(url);
        files.push_back(std::filesystem::path(target).filename());
        const std::string path(target);
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        const std::string given(url);
        if (onRequest)
            onRequest(given);
        const std::string rest = given.substr(given.find("/bot") + 4);
        const std::string method = rest.substr(rest.find('/') + 1);
        const auto reply = replies.find(method.substr(0, method.find('?')));
        if (reply == replies.end())
            return false;
        std::ofstream stream(path, std::ios::binary);
        stream << reply->second;
        return stream.good();
    }

    // The requests of a method, behind the token.
    std::vector<std::string> of(const std::string& method) const {
        std::vector<std::string> found;
        for (const std::string& url : urls) {
            if (const auto place = url.find("/" + method); place != std::string::npos)
                found.push_back(url.substr(place));
        }
        return found;
    }

    std::map<std::string, std::string> replies;
    std::function<void(const std::string& url)> onRequest;
    std::vector<std::string> urls;
    std::vector<std::string> files;
};

class ScriptedEarthOfBot : public EarthRoutines {
  public:
    double distance(std::string_view, std::string_view, std::string_view,
                    std::string_view longitude, std::string_view) const override {
        return longitude == "1" ? 3.27 : 16.41;
    }
    std::string revealBounds(double, double, std::string_view bearing, double) const override {
        return bearing == "0" ? "90|180" : "0|0";
    }
};

class NoTownsList : public TownsList {
  public:
    void clear() override {}
    void add(std::string_view) override {}
};

// A bot with an open catalogue and a scripted service.
class TelegramTest : public CatalogueTest {
  protected:
    TelegramTest() {
        makeCatalogue();
        EXPECT_EQ(database.slsOpen(settings.Path, ""), 0);
        settings.TelegramToken = "12:secret";
        settings.enableTelegram = 1;
        service.replies["getUpdates"] = telegramReply("getUpdates_empty.json");
        service.replies["getMe"] = telegramReply("getMe_2026.json");
        service.replies["sendMessage"] = telegramReply("sendMessage_ok_group.json");
        service.replies["sendLocation"] = telegramReply("sendMessage_ok_group.json");
    }
    ~TelegramTest() override {
        // Nothing for people ever holds the token.
        for (const std::string& message : log.messages)
            EXPECT_EQ(message.find("secret"), std::string::npos) << message;
        EXPECT_EQ(prompts.lastErrorText.find("secret"), std::string::npos);
    }

    void run(const std::string& sql) {
        EXPECT_EQ(database.slsExe(sql), 0) << sql << ": " << database.slGetError();
    }
    void storeEvent() {
        run("insert into Events(UTC, Latitude, Longitude, Depth, Magnitude) values "
            "('2016-08-24 01:36:32', 42.7, 13.23, 8.1, 6)");
    }
    void follow(const std::string& id) {
        run("insert into TelegramChats values ('" + id + "', 'n')");
    }
    // "id|name", by id.
    std::vector<std::string> stored() {
        std::vector<std::string> rows;
        for (const auto& row : rowsOf(database, "select * from TelegramChats order by chat_id"))
            rows.push_back(row[0] + "|" + row[1]);
        return rows;
    }
    std::int32_t check() {
        std::int32_t added = 0;
        bool changed = true;
        bot.checkIdTelegram(added, changed);
        EXPECT_EQ(changed, added > 0);
        EXPECT_FALSE(session.ImportInProgress);
        return added;
    }

    ScriptedTelegram service;
    ScriptedEarthOfBot earth;
    NoTownsList list;
    NearbyTowns towns{database, NumberLocale::point(), earth, list, harness.errors};
    TelegramBot bot{settings, session,        database,      towns,           service,
                    log,      harness.errors, folder.path(), "http://service"};
};

} // namespace tremor::testing
