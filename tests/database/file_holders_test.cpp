#include "database/file_holders.h"
#include "support/child_process.h"
#include "support/fakes.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/prctl.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::ChildProcess;

// A list of processes as the system keeps it, made by hand.
class FileHolders : public ::testing::Test {
  protected:
    FileHolders() {
        write(catalogue);
        write(folder.file("other.sqlite"));
        fs::create_directory(processes);
    }
    static void write(const std::string& file, const std::string& text = {}) {
        std::ofstream(file, std::ios::binary) << text;
    }
    void addProcess(const std::string& id, const std::string& name,
                    const std::string& opened = {}) {
        const std::string process = processes + "/" + id;
        fs::create_directories(process + "/fd");
        write(process + "/comm", name + "\n");
        fs::create_symlink("pipe:[4711]", process + "/fd/0");
        if (!opened.empty())
            fs::create_symlink(opened, process + "/fd/3");
    }
    std::string listed() {
        status = 99;
        return ListRunningPrograms(status, catalogue, processes);
    }

    testing::TemporaryFolder folder;
    std::string catalogue = folder.file("catalogue.sqlite");
    std::string processes = folder.file("proc");
    std::int32_t status = 0;
};

TEST_F(FileHolders, AreNoneWhenNobodyHoldsTheFile) {
    addProcess("1", "init");
    addProcess("17", "sqlite3", folder.file("other.sqlite"));
    EXPECT_EQ(listed(), "");
    EXPECT_EQ(status, 0);
}

TEST_F(FileHolders, AreTheViewerInAnyCaseAndWhoHasTheFileOpen) {
    addProcess("1", "TREMORVIEW.EXE");
    addProcess("2", "tremorview");
    addProcess("3", "TremorView.exe");
    addProcess("4", "sqlite3", catalogue);
    const std::string list = listed();
    for (const std::string name : {"TREMORVIEW.EXE", "tremorview", "TremorView.exe", "sqlite3"})
        EXPECT_NE(("\r\n" + list + "\r\n").find("\r\n" + name + "\r\n"), std::string::npos) << list;
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 3);
}

TEST_F(FileHolders, AreNotProgramsWithASimilarName) {
    addProcess("1", "TREMORVIEW2");
    addProcess("2", "MYTREMORVIEW");
    addProcess("3", "TREMORVIEW.EX");
    EXPECT_EQ(listed(), "");
}

TEST_F(FileHolders, AreFoundUnderAnotherNameOfTheFile) {
    fs::create_hard_link(catalogue, folder.file("hard"));
    fs::create_symlink(catalogue, folder.file("soft"));
    addProcess("1", "one", folder.file("hard"));
    addProcess("2", "two", folder.file("soft"));
    EXPECT_EQ(listed().size(), std::string("one\r\ntwo").size());
}

TEST_F(FileHolders, AreNamedOnce) {
    addProcess("1", "TREMORVIEW");
    addProcess("2", "TREMORVIEW", catalogue);
    EXPECT_EQ(listed(), "TREMORVIEW");
}

TEST_F(FileHolders, AreNeverThisProcess) {
    addProcess(fmt::format("{}", ::getpid()), "TREMORVIEW", catalogue);
    EXPECT_EQ(listed(), "");
}

TEST_F(FileHolders, AreFoundBesideWhatIsNoProcess) {
    addProcess("self", "TREMORVIEW", catalogue);
    addProcess("12x", "TREMORVIEW", catalogue);
    write(processes + "/uptime", "1 1");
    fs::create_directory(processes + "/5"); // has just ended
    write(processes + "/6");
    fs::create_directories(processes + "/7/comm");
    addProcess("8", "");
    addProcess("9", "tail", catalogue);
    EXPECT_EQ(listed(), "tail");
}

TEST_F(FileHolders, AreTheViewersAloneWhenTheFileIsMissing) {
    addProcess("1", "TREMORVIEW");
    addProcess("2", "sqlite3", catalogue);
    fs::remove(catalogue);
    EXPECT_EQ(listed(), "TREMORVIEW");
}

TEST_F(FileHolders, AreUnknownWithoutAListOfProcesses) {
    processes = folder.file("missing");
    EXPECT_EQ(listed(), "");
    EXPECT_EQ(status, 1);
    processes = catalogue;
    EXPECT_EQ(listed(), "");
    EXPECT_EQ(status, 1);
}

TEST_F(FileHolders, AreFoundOnThisSystem) {
    std::int32_t found = 99;
    ChildProcess holder([&] {
        ::prctl(PR_SET_NAME, "gridreader");
        if (::open(catalogue.c_str(), O_RDONLY) < 0)
            ::_exit(1);
    });
    const ChildProcess viewer([] { ::prctl(PR_SET_NAME, "TremorView.exe"); });
    const std::string list = ListRunningPrograms(found, catalogue);
    EXPECT_EQ(found, 0);
    EXPECT_NE(list.find("gridreader"), std::string::npos) << list;
    EXPECT_NE(list.find("TremorView.exe"), std::string::npos) << list;
    holder.end();
    EXPECT_EQ(ListRunningPrograms(found, catalogue), "TremorView.exe");
}

} // namespace
} // namespace tremor
