#include "journeys/map_journey.h"
#include "support/texts.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace tremor::journeys {
namespace {

constexpr std::uint32_t sea = 0xD3E2EC;
constexpr std::uint32_t land = 0xF6F2E9;
constexpr int cut = 17 + 2; // pixels of the control that the pictures leave out

// A picture as an independent program reads it; without pixels when that calls it damaged.
class SavedPicture {
  public:
    explicit SavedPicture(const std::string& path) {
        const std::string command = "convert 'jpeg:" + path + "' -depth 8 ppm:- 2>/dev/null";
        std::unique_ptr<FILE, int (*)(FILE*)> reader(::popen(command.c_str(), "r"), ::pclose);
        int largest = 0;
        if (std::fscanf(reader.get(), "P6 %d %d %d%*c", &width_, &height_, &largest) != 3)
            return;
        rgb_.resize(std::size_t{3} * static_cast<std::size_t>(width_) *
                    static_cast<std::size_t>(height_));
        rgb_.resize(std::fread(rgb_.data(), 1, rgb_.size(), reader.get()));
        if (::pclose(reader.release()) != 0 || largest != 255)
            rgb_.clear();
    }

    int width() const { return width_; }
    int height() const { return height_; }

    // Apart from what a JPEG loses.
    bool isAt(int x, int y, std::uint32_t colour) const {
        constexpr int loss = 6;
        if (x < 0 || y < 0 || x >= width_ || y >= height_)
            return false;
        const std::size_t place =
            3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                 static_cast<std::size_t>(x));
        if (place + 2 >= rgb_.size())
            return false;
        for (const unsigned part : {0U, 1U, 2U})
            if (std::abs(static_cast<int>(rgb_[place + part]) -
                         static_cast<int>(colour >> (16 - 8 * part) & 0xFF)) > loss)
                return false;
        return true;
    }
    double share(std::uint32_t colour) const { // of its area
        double pixels = 0;
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x)
                pixels += isAt(x, y, colour) ? 1 : 0;
        return pixels / (width_ * height_);
    }
    double mapShare() const { return share(sea) + share(land); }

  private:
    int width_ = 0;
    int height_ = 0;
    std::vector<unsigned char> rgb_;
};

class SnapshotJourney : public MapJourney {
  protected:
    SnapshotJourney()
        : MapJourney({"UsePrimaryDataSource=1", "IsideOrIngv=1", "PrimaryLastNHours=1"}) {
        journey_.change("catalogue.sqlite",
                        "insert into Workspace values ('South', 39, 13, 6, 36, 8, 42, 16, 0, 10, "
                        "0, 1000), ('../out', 39, 13, 6, 36, 8, 42, 16, 0, 10, 0, 1000)");
    }

    std::string inHistory(const std::string& name) const {
        return journey_.file("History/" + name);
    }
    bool stands(const std::string& name) const { return std::filesystem::exists(inHistory(name)); }
    SavedPicture picture(const std::string& name) const { return SavedPicture(inHistory(name)); }
    void poll(int count) {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("F5");
        ASSERT_TRUE(journey_.waitForLog(" Events imported from INGV", count, longEnough))
            << journey_.activityLog();
    }
    // The circles of all known events but the newest, whose picture moves.
    std::string missing(const SavedPicture& saved) const {
        std::string missing;
        for (const KnownEvent& event : events()) {
            const Point point = onScreen(event.place, firstView);
            if (&event != &events().front() &&
                !saved.isAt(static_cast<int>(point.x) - map_.x, static_cast<int>(point.y) - map_.y,
                            event.colour))
                missing += " " + event.depth + "km";
        }
        return missing;
    }
};

TEST_F(SnapshotJourney, PollsLeavePicturesOfTheMapsAndTheLastEvent) {
    showFirstView();
    EXPECT_FALSE(stands("current.jpg"));
    poll(1);
    ASSERT_TRUE(soon([&] { return stands("current.jpg"); })) << journey_.activityLog();
    EXPECT_FALSE(stands("tmpcurrent.sr"));

    const SavedPicture current = picture("current.jpg");
    EXPECT_EQ(current.width(), map_.width - cut);
    EXPECT_EQ(current.height(), map_.height);
    EXPECT_EQ(missing(current), "");
    EXPECT_GT(current.mapShare(), 0.6);
    EXPECT_GT(current.share(sea), 0.1);

    const SavedPicture last = picture("tmplastEvent.jpg");
    EXPECT_EQ(last.width(), lastEventMap_.width - cut);
    EXPECT_EQ(last.height(), lastEventMap_.height);
    EXPECT_GT(last.mapShare(), 0.6);

    const std::string text = journey_.readFile("History/lastEvents.txt");
    EXPECT_EQ(text.rfind("UTC: ", 0), 0U) << text;
    EXPECT_NE(text.find(" | LATLNG(41.0,15.0) | Mg. 4.0 | Depth. 120.0\r\n\r\n"), std::string::npos)
        << text;
}

TEST_F(SnapshotJourney, CurrentIsAWholePictureAtAnyMoment) {
    showFirstView();
    poll(1);
    ASSERT_TRUE(soon([&] { return stands("current.jpg"); }));
    // Read as fast as can be while two more pictures take their place.
    int changes = 0;
    auto before = std::filesystem::last_write_time(inHistory("current.jpg"));
    int polls = 1;
    journey_.key("F5");
    EXPECT_TRUE(soon([&] {
        const std::string bytes = testing::contentOf(inHistory("current.jpg"));
        EXPECT_TRUE(bytes.starts_with("\xFF\xD8") && bytes.ends_with("\xFF\xD9")) << bytes.size();
        const auto now = std::filesystem::last_write_time(inHistory("current.jpg"));
        if (now != before && ++changes < 2)
            poll(++polls + 1);
        before = now;
        return changes == 2;
    }));
}

TEST_F(SnapshotJourney, OpenWorkspacesHaveAPictureEach) {
    showFirstView();
    journey_.key("alt+w");
    journey_.key("o");
    journey_.waitForWindow("Tremorledger South", 60);
    const Rectangle window = journey_.geometry("Tremorledger South");
    constexpr std::uint32_t yellow = 0xFFFF00; // 38 N 13 E
    const auto southIsComplete = [&] {
        const SavedPicture south = picture("currentSouth.JPG");
        const Point from = projected({39, 13}, 6);
        const Point to = projected({38, 13}, 6);
        return south.isAt(static_cast<int>((south.width() + cut) / 2.0 + to.x - from.x),
                          static_cast<int>(south.height() / 2.0 + to.y - from.y), yellow);
    };
    int polls = 0;
    // Each poll takes the pictures of what the windows show by then.
    ASSERT_TRUE(soon([&] {
        poll(++polls);
        return southIsComplete();
    })) << journey_.activityLog();
    const SavedPicture south = picture("currentSouth.JPG");
    EXPECT_GT(south.width(), window.width / 2);
    EXPECT_LT(south.width(), window.width);
    EXPECT_GT(south.mapShare(), 0.5);
    // The one whose name leads elsewhere has none.
    EXPECT_FALSE(std::filesystem::exists(journey_.file("out.JPG")));
    EXPECT_FALSE(std::filesystem::exists(journey_.file("../out.JPG")));
    for (const auto& entry : std::filesystem::directory_iterator(journey_.file("History")))
        EXPECT_EQ(entry.path().filename().string().find(".."), std::string::npos) << entry.path();
}

TEST_F(SnapshotJourney, AFileInThePlaceOfTheFolderIsToldOnceAndThePollsGoOn) {
    std::ofstream(journey_.file("History")) << "mine";
    showFirstView();
    journey_.key("F5");
    journey_.waitForWindow(" - Runtime error", 60);
    journey_.key("alt+i");
    ASSERT_TRUE(journey_.waitForLog(" Events imported from INGV", 1, longEnough))
        << journey_.activityLog();
    poll(2);
    EXPECT_TRUE(menuOpens());
    EXPECT_EQ(journey_.readFile("History"), "mine");
}

} // namespace
} // namespace tremor::journeys
