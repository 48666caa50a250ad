#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

// A fresh program folder on a virtual desktop of its own, with practice services beside it, and
// what an operator can do and see there. Every wait has an end; a step that fails throws
// std::runtime_error with the words of the failure, which fails the test.
namespace tremor::journeys {

class ScreenPicture;

// Asks again and again; false when the condition does not become true within the limit.
bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit);

// One row of the catalogue's table Events, as text.
struct EventRow {
    std::string utc;
    std::string latitude;
    std::string longitude;
    std::string depth;
    std::string magnitude;
    std::string source;
    auto operator<=>(const EventRow&) const = default;
};

struct Rectangle {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

class Journey {
  public:
    // Starts display and services and lays out the folder: the executable, its shared files, a
    // hosts.ini that points at the services, and the given lines of settings.ini. The named local
    // locators, "seiscomp" or "liveloc", write into folders of these names beside the program.
    // There are no new events but those that a journey asks for, unless `serviceOptions` say
    // otherwise: more words for the command line of practice_feeds.
    //
    // Variables of the environment called like the places of the build (TREMOR_PROGRAM,
    // TREMOR_SHARE, TREMOR_PRACTICE_FEEDS, TREMOR_DESKTOP_TOOL) name other ones.
    explicit Journey(const std::vector<std::string>& settingsLines,
                     const std::vector<std::string>& locators = {},
                     const std::vector<std::string>& serviceOptions = {});
    ~Journey();
    Journey(const Journey&) = delete;
    Journey& operator=(const Journey&) = delete;

    // A line of hosts.ini, before the program starts: "MapsEngine=online".
    void addHost(const std::string& line) const;
    // The same of settings.ini: "SMTPport=2525".
    void addSetting(const std::string& line) const;
    // A variable of the program's environment, "SDL_AUDIODRIVER=disk".
    void addVariable(const std::string& assignment);

    // The program.
    void startProgram();
    // Starts it where there is no catalogue yet, and creates the one of this name ("sources").
    void startWithNewCatalogue(const std::string& name);
    bool programRuns();
    int waitForExit(std::chrono::seconds limit); // exit code; throws when it still runs
    void killProgram();                          // with all its processes, at once
    pid_t programId() const { return program_; }
    const std::string& display() const { return display_; } // ":99"

    // The operator's hands and eyes.
    void waitForWindow(const std::string& title, int seconds = 30);
    void waitForNoWindow(const std::string& title, int seconds = 30);
    std::vector<std::string> windowTitles();
    void key(const std::string& keys); // "alt+f c"
    void type(const std::string& text);
    void paste(const std::string& text);
    void click(int x, int y, int button = 1);
    void drag(int x1, int y1, int x2, int y2);
    void movePointer(int x, int y);
    std::string activityLog(); // CR LF and LF as line ends
    std::string copyText();    // of the box or the cell with the focus, which must not be empty
    // Waits until the log has `count` lines that are this text (or end in it, when it begins with a
    // blank); false after `limit`.
    bool waitForLog(const std::string& text, int count, std::chrono::seconds limit);
    Rectangle geometry(const std::string& title); // inside of a window on the screen, pixels
    void resize(const std::string& title, int width, int height);
    long pixelsOfColour(const std::string& rrggbb); // on the whole screen
    ScreenPicture picture() const;

    // The services.
    std::string service(const std::string& pathAndQuery); // body of a GET, any status

    // The folder.
    std::string folder() const { return folder_ + "/program"; }
    std::string file(const std::string& name) const { return folder() + "/" + name; }
    std::string readFile(const std::string& name) const;
    std::map<std::string, std::string> settings() const; // key -> value of settings.ini
    std::vector<EventRow> events(const std::string& catalogue) const;
    std::string queryOne(const std::string& catalogue, const std::string& sql) const;
    void change(const std::string& catalogue, const std::string& sql) const; // as a stranger

  private:
    std::string desktop(const std::vector<std::string>& arguments);
    std::string copied(const std::string& verb);

    std::string folder_;
    std::string servicesUrl_;
    std::string display_;
    std::vector<std::string> variables_;
    pid_t services_ = -1;
    pid_t program_ = -1;
};

} // namespace tremor::journeys
