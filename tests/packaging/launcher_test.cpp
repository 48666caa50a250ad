#include "support/fakes.h"
#include "support/file_size_limit.h"
#include "support/ordinary_user.h"
#include "support/texts.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

// The start script of the package, on an installation of a few files with a program that only tells
// where it is and its arguments.
namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::contentOf;
using testing::FileSizeLimit;
using testing::OrdinaryUser;
using testing::TemporaryFolder;

void put(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

void putProgram(const std::string& path, const std::string& script) {
    put(path, "#!/bin/sh\n" + script);
    fs::permissions(path, fs::perms(0755));
}

struct Outcome {
    int status = -1; // of the exit
    std::string output;
};

using Variables = std::map<std::string, std::string>;

class Launcher : public ::testing::Test {
  protected:
    Launcher() {
        fs::create_directory(home());
        fs::create_directories(installed("bin"));
        fs::copy_file(TREMOR_LAUNCHER, installed("bin/tremorledger"));
        installProgram("started");
        deliver("Img/o_14.png", "first pin");
        deliver("Sounds/level1.wav", "first sound");
        deliver("hosts.ini.example", "first example");
    }

    std::string home() const { return folder_.file("home of Jürgen"); }
    std::string mine(const std::string& name = {}) const {
        return home() + "/.local/share/tremorledger" + (name.empty() ? name : "/" + name);
    }
    std::string installed(const std::string& name) const {
        return folder_.file("inst alled/" + name);
    }
    void installProgram(const std::string& word) const {
        putProgram(installed("lib/tremorledger/TremorLedger"),
                   "printf '%s\\n' '" + word + "' \"$0\" \"$@\"\n");
    }
    void deliver(const std::string& name, const std::string& text) const {
        put(installed("share/tremorledger/" + name), text);
    }
    void deliverSecondVersion() const {
        deliver("Img/o_14.png", "second pin");
        deliver("Sounds/level1.wav", "second sound");
    }

    // Begins a start with only the variables given. `script` is another name of the start script.
    pid_t begin(const Variables& variables, std::vector<std::string> arguments = {},
                const std::string& script = {}, bool asRoot = false) {
        arguments.insert(arguments.begin(),
                         script.empty() ? installed("bin/tremorledger") : script);
        const std::string output = outputFile(++starts_);
        const pid_t id = ::fork();
        if (id != 0)
            return id;
        if (::seteuid(::getuid()) != 0 || (!asRoot && ::getuid() == 0 && ::setuid(65534) != 0))
            ::_exit(126);
        const int out = ::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ::dup2(out, STDOUT_FILENO);
        ::dup2(out, STDERR_FILENO);
        ::clearenv();
        for (const auto& [name, value] : variables)
            ::setenv(name.c_str(), value.c_str(), 1);
        std::vector<char*> pointers;
        pointers.reserve(arguments.size() + 1);
        for (std::string& argument : arguments)
            pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }
    Outcome finish(pid_t id, int start) const {
        int status = 0;
        EXPECT_EQ(::waitpid(id, &status, 0), id);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(outputFile(start))};
    }
    Outcome start(const Variables& variables, const std::vector<std::string>& arguments = {}) {
        const pid_t id = begin(variables, arguments);
        return finish(id, starts_);
    }
    Variables atHome() const {
        return {{"HOME", home()}, {"PATH", "/usr/bin:/bin"}, {"LC_ALL", "C.UTF-8"}};
    }
    Variables atHomeWith(const std::string& name, const std::string& value) const {
        Variables variables = atHome();
        variables[name] = value;
        return variables;
    }
    // Programs that come before those of the system.
    std::string firstOnPath(const std::string& name, const std::string& script) const {
        putProgram(folder_.file("first/" + name), script);
        return folder_.file("first") + ":/usr/bin:/bin";
    }
    std::string fullDisk() const {
        return firstOnPath("cp", "echo \"cp: error writing '$2': No space left on device\" >&2\n"
                                 "printf half >\"$2\"\nexit 1\n");
    }
    std::vector<std::string> leftovers() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(mine()))
            if (entry.path().extension() == ".new")
                names.push_back(entry.path());
        return names;
    }

    std::string outputFile(int start) const {
        return folder_.file("output" + std::to_string(start));
    }

    const OrdinaryUser user_;
    const TemporaryFolder folder_;
    int starts_ = 0;
};

TEST_F(Launcher, TheFirstStartMakesAFolderWithPicturesAndSounds) {
    const Outcome outcome = start(atHome());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "started\n" + mine("TremorLedger") + "\n");
    EXPECT_EQ(contentOf(mine("Img/o_14.png")), "first pin");
    EXPECT_EQ(contentOf(mine("Sounds/level1.wav")), "first sound");
    EXPECT_EQ(contentOf(mine("hosts.ini.example")), "first example");
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
}

TEST_F(Launcher, TheFolderIsNobodyElsesBusiness) {
    start(atHome());
    EXPECT_EQ(fs::status(mine()).permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(mine("Img")).permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(mine("hosts.ini.example")).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::status(mine("TremorLedger")).permissions(), fs::perms(0700));
}

TEST_F(Launcher, ASecondStartWritesNoFileAgain) {
    start(atHome());
    const auto numbers = [&] {
        std::map<std::string, ino_t> result;
        for (const auto& entry : fs::recursive_directory_iterator(mine())) {
            struct stat status {};
            EXPECT_EQ(::lstat(entry.path().c_str(), &status), 0);
            result[entry.path()] = status.st_ino;
        }
        return result;
    };
    const auto before = numbers();
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(numbers(), before);
}

TEST_F(Launcher, ArgumentsReachTheProgram) {
    const Outcome outcome = start(atHome(), {"-name", "two words", ""});
    EXPECT_EQ(outcome.output, "started\n" + mine("TremorLedger") + "\n-name\ntwo words\n\n");
}

TEST_F(Launcher, ALinkToTheScriptFindsTheInstallation) {
    fs::create_symlink(installed("bin/tremorledger"), folder_.file("link"));
    const pid_t id = begin(atHome(), {}, folder_.file("link"));
    EXPECT_EQ(finish(id, starts_).status, 0);
    EXPECT_EQ(contentOf(mine("Img/o_14.png")), "first pin");
}

TEST_F(Launcher, AnUpgradeBringsTheProgram) {
    start(atHome());
    installProgram("version 2");
    EXPECT_EQ(start(atHome()).output, "version 2\n" + mine("TremorLedger") + "\n");
    EXPECT_EQ(fs::status(mine("TremorLedger")).permissions(), fs::perms(0700));
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
}

TEST_F(Launcher, AnUpgradeLeavesARunningProgramAlone) {
    // A binary: it could not be written to while it runs.
    const std::string program = installed("lib/tremorledger/TremorLedger");
    fs::copy_file("/bin/sleep", program, fs::copy_options::overwrite_existing);
    const pid_t old = begin(atHome(), {"60"});
    const auto runs = [&] {
        std::error_code notYet; // between setuid and exec it tells nobody
        return fs::read_symlink("/proc/" + std::to_string(old) + "/exe", notYet);
    };
    for (int i = 0; i < 500 && runs() != mine("TremorLedger"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(runs(), mine("TremorLedger"));

    installProgram("version 2");
    EXPECT_EQ(start(atHome()).output, "version 2\n" + mine("TremorLedger") + "\n");
    EXPECT_EQ(runs(), mine("TremorLedger") + " (deleted)");
    EXPECT_EQ(::waitpid(old, nullptr, WNOHANG), 0);
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
    EXPECT_EQ(::kill(old, SIGTERM), 0);
    EXPECT_EQ(::waitpid(old, nullptr, 0), old);
}

TEST_F(Launcher, TheProgramIsAlwaysThatOfThePackage) {
    put(mine("TremorLedger"), "from elsewhere");
    const std::string output = "started\n" + mine("TremorLedger") + "\n";
    EXPECT_EQ(start(atHome()).output, output);
    fs::permissions(mine("TremorLedger"), fs::perms(0600));
    EXPECT_EQ(start(atHome()).output, output);
    // Behind a link, the program would take the folder that the link leads to for its own.
    fs::remove(mine("TremorLedger"));
    fs::create_symlink(installed("lib/tremorledger/TremorLedger"), mine("TremorLedger"));
    EXPECT_EQ(start(atHome()).output, output);
    EXPECT_FALSE(fs::is_symlink(mine("TremorLedger")));
    EXPECT_EQ(contentOf(mine(".delivered")).find("TremorLedger"), std::string::npos);
}

TEST_F(Launcher, APieceOfTheProgramDoesNotStay) {
    start(atHome());
    put(mine("TremorLedger.new"), "#!/bi");
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
    put(mine("TremorLedger.new"), "#!/bi"); // without the right to run it
    installProgram("version 2");
    EXPECT_EQ(start(atHome()).output, "version 2\n" + mine("TremorLedger") + "\n");
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
}

TEST_F(Launcher, AFolderInTheWayOfTheProgramIsNamed) {
    fs::create_directories(mine("TremorLedger"));
    const Outcome outcome = start(atHome());
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find("cannot overwrite directory '" + mine("TremorLedger")),
              std::string::npos)
        << outcome.output;
    EXPECT_TRUE(fs::is_empty(mine("TremorLedger")));
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
}

TEST_F(Launcher, AnUpgradeBringsWhatNobodyHasChanged) {
    start(atHome());
    deliverSecondVersion();
    deliver("Img/z_14.png", "a pin that is new");
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Img/o_14.png")), "second pin");
    EXPECT_EQ(contentOf(mine("Img/z_14.png")), "a pin that is new");
    EXPECT_EQ(contentOf(mine("hosts.ini.example")), "first example");
    deliver("Img/o_14.png", "third pin");
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Img/o_14.png")), "third pin");
}

TEST_F(Launcher, AnUpgradeKeepsSettingsHostsAndCatalogues) {
    start(atHome());
    put(mine("settings.ini"), "[DATABASE]");
    put(mine("hosts.ini"), "[HOSTS]");
    put(mine("catalogue.sqlite"), "events");
    deliverSecondVersion();
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("settings.ini")), "[DATABASE]");
    EXPECT_EQ(contentOf(mine("hosts.ini")), "[HOSTS]");
    EXPECT_EQ(contentOf(mine("catalogue.sqlite")), "events");
}

TEST_F(Launcher, ASoundOfTheOperatorStaysThroughUpgrades) {
    start(atHome());
    put(mine("Sounds/level1.wav"), "siren");
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Sounds/level1.wav")), "siren");
    deliverSecondVersion();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(start(atHome()).status, 0);
        EXPECT_EQ(contentOf(mine("Sounds/level1.wav")), "siren");
        EXPECT_EQ(contentOf(mine("Img/o_14.png")), "second pin");
    }
    deliver("Sounds/level1.wav", "third sound");
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Sounds/level1.wav")), "siren");
}

TEST_F(Launcher, AFileThatWasThereBeforeTheFirstStartStays) {
    put(mine("Sounds/level1.wav"), "siren");
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Sounds/level1.wav")), "siren");
}

TEST_F(Launcher, LinksOfTheOperatorStay) {
    put(folder_.file("sounds/siren.wav"), "siren");
    fs::create_directories(mine("Sounds"));
    fs::create_symlink(folder_.file("sounds/siren.wav"), mine("Sounds/level1.wav"));
    fs::create_symlink(folder_.file("nowhere"), mine("hosts.ini.example"));
    EXPECT_EQ(start(atHome()).status, 0);
    deliverSecondVersion();
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_TRUE(fs::is_symlink(mine("Sounds/level1.wav")));
    EXPECT_EQ(contentOf(folder_.file("sounds/siren.wav")), "siren");
    EXPECT_TRUE(fs::is_symlink(mine("hosts.ini.example")));
    EXPECT_FALSE(fs::exists(folder_.file("nowhere")));
}

TEST_F(Launcher, ADeletedFileIsBroughtBack) {
    start(atHome());
    fs::remove_all(mine("Img"));
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Img/o_14.png")), "first pin");
}

TEST_F(Launcher, AnUpgradeThatWasInterruptedIsFinished) {
    start(atHome());
    deliverSecondVersion();
    // One file has come, the record has not been written, and a piece lies about.
    put(mine("Img/o_14.png"), "second pin");
    put(mine("Sounds/level1.wav.new"), "sec");
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Sounds/level1.wav")), "second sound");
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
    deliver("Img/o_14.png", "third pin");
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Img/o_14.png")), "third pin");
}

TEST_F(Launcher, AFolderInTheWayOfAFileIsLeftAlone) {
    fs::create_directories(mine("Sounds/level1.wav"));
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_TRUE(fs::is_directory(mine("Sounds/level1.wav")));
}

TEST_F(Launcher, TheDataFolderOfTheDesktopCounts) {
    const std::string data = folder_.file("data of mine");
    const Outcome outcome = start(atHomeWith("XDG_DATA_HOME", data));
    EXPECT_EQ(outcome.output, "started\n" + data + "/tremorledger/TremorLedger\n");
    EXPECT_EQ(contentOf(data + "/tremorledger/Img/o_14.png"), "first pin");
    EXPECT_FALSE(fs::exists(mine()));
}

TEST_F(Launcher, ARelativeDataFolderIsPassedOver) {
    EXPECT_EQ(start(atHomeWith("XDG_DATA_HOME", "data")).status, 0);
    EXPECT_TRUE(fs::exists(mine("Img")));
}

TEST_F(Launcher, WithoutAHomeItSaysSo) {
    for (const char* value : {"", "home"}) {
        const Outcome outcome = start(atHomeWith("HOME", value));
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output,
                  "TremorLedger cannot start: the variable HOME names no folder.\n");
    }
}

TEST_F(Launcher, AHomeThatCannotBeWrittenIsNamed) {
    fs::permissions(home(), fs::perms(0500));
    const Outcome outcome = start(atHome());
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.starts_with("TremorLedger cannot start: ")) << outcome.output;
    EXPECT_NE(outcome.output.find(".local"), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.output.find("Permission denied"), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find("started"), std::string::npos);
}

TEST_F(Launcher, AFolderThatHasBecomeReadOnlyIsNamed) {
    start(atHome());
    fs::permissions(mine(), fs::perms(0500));
    EXPECT_EQ(start(atHome()).output,
              "TremorLedger cannot start: " + mine() + " cannot be written.\n");
    fs::permissions(mine(), fs::perms(0700));
    fs::permissions(mine(".lock"), fs::perms(0400));
    const Outcome outcome = start(atHome());
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find(mine(".lock")), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find("started"), std::string::npos);
}

TEST_F(Launcher, AFullDiskLeavesNoHalfFile) {
    deliver("Sounds/level1.wav", std::string(1000, 's'));
    for (const rlim_t bytes : {5, 100}) { // the program is between them
        const FileSizeLimit full(bytes);
        const pid_t id = begin(atHome());
        int status = 0;
        ::waitpid(id, &status, 0);
        EXPECT_EQ(WEXITSTATUS(status), 1);
        EXPECT_EQ(fs::exists(mine("TremorLedger")), bytes == 100);
        EXPECT_FALSE(fs::exists(mine("Sounds/level1.wav")));
        EXPECT_EQ(leftovers(), std::vector<std::string>{});
    }
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Img/o_14.png")), "first pin");
}

TEST_F(Launcher, AFailedUpgradeLeavesTheOldFileAndSaysWhy) {
    start(atHome());
    deliverSecondVersion();
    const Outcome outcome = start(atHomeWith("PATH", fullDisk()));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find("No space left on device"), std::string::npos) << outcome.output;
    EXPECT_EQ(contentOf(mine("Img/o_14.png")), "first pin");
    EXPECT_EQ(contentOf(mine("Sounds/level1.wav")), "first sound");
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
    EXPECT_EQ(start(atHome()).status, 0);
    EXPECT_EQ(contentOf(mine("Sounds/level1.wav")), "second sound");
}

// A home on a file system of its own: in a name space in which the user seems to be root.
class LauncherInAHomeOfItsOwn : public Launcher {
  protected:
    void SetUp() override {
        const Outcome outcome = startOn("exec");
        if (outcome.output.starts_with("unshare: ") || outcome.output.starts_with("mount: "))
            GTEST_SKIP() << "no name spaces: " << outcome.output;
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.output, "started\n" + mine("TremorLedger") + "\n");
    }
    Outcome startOn(const std::string& mountOptions) {
        const std::string script = "mount -t tmpfs -o \"$0\" none \"$1\" && shift && exec \"$@\"";
        const pid_t id = begin(atHomeWith("QTWEBENGINE_DISABLE_SANDBOX", "1"),
                               {"--map-root-user", "--mount", "sh", "-c", script, mountOptions,
                                home(), installed("bin/tremorledger")},
                               "/usr/bin/unshare");
        return finish(id, starts_);
    }
};

TEST_F(LauncherInAHomeOfItsOwn, WhereNoProgramMayRunItSaysSo) {
    const Outcome outcome = startOn("noexec");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "TremorLedger cannot start: no program can be run in " + mine() +
                                  ", because its file system is mounted with the option noexec. "
                                  "Set XDG_DATA_HOME to a folder on another one.\n");
}

TEST_F(LauncherInAHomeOfItsOwn, WithoutSpaceForTheProgramItSaysSo) {
    installProgram(std::string(100'000, 'x'));
    const Outcome outcome = startOn("size=32k");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.starts_with("TremorLedger cannot start: ")) << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with("TremorLedger.new': No space left on device\n"))
        << outcome.output;
}

TEST_F(Launcher, AFailedUpgradeOfTheProgramKeepsTheOldOne) {
    start(atHome());
    const std::string before = contentOf(mine("TremorLedger"));
    installProgram("version 2");
    const Outcome outcome = start(atHomeWith("PATH", fullDisk()));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find("No space left on device"), std::string::npos) << outcome.output;
    EXPECT_EQ(contentOf(mine("TremorLedger")), before);
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
    EXPECT_EQ(start(atHome()).output, "version 2\n" + mine("TremorLedger") + "\n");
}

TEST_F(Launcher, ADamagedInstallationIsNamed) {
    fs::remove_all(installed("share"));
    Outcome outcome = start(atHome());
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find(installed("share/tremorledger") + " cannot be read."),
              std::string::npos)
        << outcome.output;
    fs::remove_all(installed("lib"));
    outcome = start(atHome());
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find(installed("lib/tremorledger/TremorLedger")), std::string::npos)
        << outcome.output;
}

TEST_F(Launcher, ASecondStartWaitsUntilTheFirstHasWritten) {
    fs::create_directories(mine());
    const int lock = ::open(mine(".lock").c_str(), O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    ::fcntl(lock, F_SETFD, FD_CLOEXEC);
    const pid_t id = begin(atHome());
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(::waitpid(id, nullptr, WNOHANG), 0);
    EXPECT_FALSE(fs::exists(mine("Img")));
    ::flock(lock, LOCK_UN);
    ::close(lock);
    EXPECT_EQ(finish(id, starts_).status, 0);
    EXPECT_EQ(contentOf(mine("Img/o_14.png")), "first pin");
}

TEST_F(Launcher, AStartThatWaitsTooLongSaysSo) {
    const Outcome outcome = start(atHomeWith("PATH", firstOnPath("flock", "exit 1\n")));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              "TremorLedger cannot start: another start is still writing into " + mine() + ".\n");
}

TEST_F(Launcher, ManyStartsAtOnceAllSucceed) {
    const std::string program(5'000'000, 'x');
    putProgram(installed("lib/tremorledger/TremorLedger"), "echo started; exit\n" + program);
    for (int i = 0; i < 50; ++i)
        deliver("Img/" + std::to_string(i) + ".png", std::string(10'000, 'x'));
    std::array<pid_t, 4> ids{};
    for (pid_t& id : ids)
        id = begin(atHome());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const Outcome outcome = finish(ids[i], static_cast<int>(i) + 1);
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_EQ(outcome.output, "started\n");
    }
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(fs::file_size(mine("Img/" + std::to_string(i) + ".png")), 10'000U);
    EXPECT_EQ(leftovers(), std::vector<std::string>{});
}

TEST_F(Launcher, WithADisplayAndNoTerminalTheMessageHasAWindow) {
    const std::string path =
        firstOnPath("zenity", "printf '%s\\n' \"$@\" >\"" + folder_.file("box") + "\"\nexit 5\n");
    Variables variables{{"PATH", path}, {"DISPLAY", ":99"}};
    const Outcome outcome = start(variables);
    EXPECT_EQ(outcome.status, 1);
    const std::string message = "TremorLedger cannot start: the variable HOME names no folder.\n";
    EXPECT_EQ(outcome.output, message);
    EXPECT_TRUE(contentOf(folder_.file("box")).ends_with("--text\n" + message));
    fs::remove(folder_.file("box"));
    variables.erase("DISPLAY");
    EXPECT_EQ(start(variables).status, 1);
    EXPECT_FALSE(fs::exists(folder_.file("box")));
}

TEST_F(Launcher, RootIsRefusedUnlessTheSandboxIsOff) {
    if (::getuid() != 0)
        GTEST_SKIP() << "needs root";
    pid_t id = begin(atHome(), {}, {}, true);
    Outcome outcome = finish(id, starts_);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "TremorLedger cannot start: the browser engine of the maps does not "
                              "run as root. Start it as an ordinary user.\n");
    EXPECT_FALSE(fs::exists(mine()));
    id = begin(atHomeWith("QTWEBENGINE_DISABLE_SANDBOX", "1"), {}, {}, true);
    outcome = finish(id, starts_);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.starts_with("started\n"));
    const uid_t ordinary = ::geteuid();
    ASSERT_EQ(::seteuid(0), 0);
    fs::remove_all(home()); // root's files, which the ordinary user cannot remove
    ASSERT_EQ(::seteuid(ordinary), 0);
}

} // namespace
} // namespace tremor
