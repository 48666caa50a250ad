// Any bytes as replies of Telegram's Bot API: through the cuts, the catalogue and a dispatch to the
// followers that came of them.
#include "alerts/telegram_bot.h"
#include "core/code_pages.h"
#include "ignoring_prompts.h"

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using namespace tremor;

void require(bool holds) {
    if (!holds)
        std::abort();
}

// Answers every request with the same bytes.
struct Echo : TelegramTransfer {
    bool DownloadFile(std::string_view, std::string_view target, std::int32_t, bool) override {
        std::ofstream stream(std::string(target), std::ios::binary | std::ios::trunc);
        stream << reply;
        return stream.good();
    }
    std::string_view reply;
};

struct Silent : fuzzing::IgnoringPrompts, Log, EarthRoutines, TownsList {
    void addLogToList(std::string_view message) override {
        require(message.find("1:token") == std::string_view::npos);
    }
    double distance(std::string_view, std::string_view, std::string_view, std::string_view,
                    std::string_view) const override {
        return 1;
    }
    std::string revealBounds(double, double, std::string_view, double) const override {
        return "0|0";
    }
    void clear() override {}
    void add(std::string_view) override {}
};

// One bot for all inputs, its catalogue emptied before each.
class World {
  public:
    World() {
        require(::mkdtemp(folder_.data()) != nullptr);
        require(database_.slsOpen(folder_ + "/catalogue.sqlite", "C") == 0);
        for (const char* sql :
             {"pragma synchronous = off", "pragma journal_mode = memory",
              "CREATE TABLE TelegramChats ('chat_id' TEXT PRIMARY KEY NOT NULL UNIQUE, "
              "'Username' TEXT)",
              "CREATE TABLE Events (UTC, Latitude, Longitude, Depth, Magnitude)",
              "CREATE TABLE Cities (Name, Latitude, Longitude)",
              "insert into Events values ('2016-08-24 01:36:32', 42.7, 13.23, 8.1, 6.0)"})
            require(database_.slsExe(sql) == 0);
        settings_.enableTelegram = 1;
        settings_.TelegramToken = "1:token";
    }
    ~World() {
        database_.slClose();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    void receive(std::string_view reply) {
        require(database_.slsExe("delete from TelegramChats") == 0);
        service_.reply = reply;
        silent_.errors = 0;
        std::int32_t added = 0;
        bool changed = false;
        bot_.checkIdTelegram(added, changed);
        require(silent_.errors <= 1 && changed == (added > 0) && !session_.ImportInProgress);
        const std::size_t came = count("select count(*) from TelegramChats");
        require(came <= static_cast<std::size_t>(added));
        bot_.checkIdTelegram(added, changed);
        require(count("select count(*) from TelegramChats") == came);
        bot_.generateMsgTelegram();
        require(count("select count(*) from Events") == 1);
        std::string botName;
        bot_.testToken("1:token", botName);
        require(botName.size() <= reply.size());
    }

  private:
    std::size_t count(std::string_view sql) {
        require(database_.slsSel(sql) == 0 && database_.slsGetRow());
        return std::strtoull(database_.slsFX(1).c_str(), nullptr, 10);
    }

    std::string folder_ = (std::filesystem::temp_directory_path() / "tremor-fuzz-XXXXXX").string();
    bool ticksHeld_ = false;
    AppSettings settings_;
    Session session_;
    Database database_;
    Silent silent_;
    ErrorReport errors_{silent_, [] { std::abort(); }, 0, ticksHeld_};
    NearbyTowns towns_{database_, NumberLocale::point(), silent_, silent_, errors_};
    Echo service_;
    TelegramBot bot_{settings_, session_, database_, towns_,          service_,
                     silent_,   errors_,  folder_,   "http://service"};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static World world;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    world.receive(bytes);
    const std::string message = messageText(bytes, 16);
    require(isValidUtf8(message) && messageText(message, 16) == message);
    return 0;
}
