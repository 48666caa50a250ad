#include "support/window_driver.h"
#include "workspaces/frm_workspaces.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include <string_view>
#include <utility>

namespace tremor {
namespace {

using testing::child;
using testing::pressKey;

class LabelMap : public WorkspaceMap {
  public:
    LabelMap(QWidget& frame, int& living) : living_(living) {
        auto* layout = new QVBoxLayout(&frame);
        layout->setContentsMargins(0, 0, 0, 0);
        auto* label = new QLabel(QStringLiteral("the map"), &frame);
        label->setAlignment(Qt::AlignCenter);
        label->setStyleSheet(QStringLiteral("background: #b5d0e8"));
        layout->addWidget(label);
        ++living_;
    }
    ~LabelMap() override { --living_; }
    LabelMap(const LabelMap&) = delete;
    LabelMap& operator=(const LabelMap&) = delete;

    bool complete() const override { return true; }
    void setAttribute(std::string_view, std::string_view, std::string_view) override {}
    void onclick(std::string_view) override {}
    void click(std::string_view) override {}
    void MapsWorkspaces(std::string_view) override {}
    void eventsInMapWRKS(std::string_view) override {}
    void mapsInJPG(std::string_view) override {}

  private:
    int& living_;
};

struct LabelMaps : WorkspaceMapMaker {
    std::unique_ptr<WorkspaceMap> makeMap(QWidget& frame) override {
        return std::make_unique<LabelMap>(frame, living);
    }
    int living = 0;
};

class FrmWorkspacesTest : public ::testing::Test {
  protected:
    void open(const std::string& caption = "Tremorledger Alps") {
        form = dynamic_cast<FrmWorkspaces*>(&maker->openWindow(caption, [this] { ++unloads; }));
        ASSERT_FALSE(form.isNull());
    }
    static void deleteWhatIsClosed() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    LabelMaps maps;
    std::unique_ptr<FrmWorkspacesMaker> maker = std::make_unique<FrmWorkspacesMaker>(maps);
    QPointer<FrmWorkspaces> form;
    int unloads = 0;
};

TEST_F(FrmWorkspacesTest, IsAVisibleWindowOfItsOwnWithTheCaption) {
    open();
    EXPECT_EQ(form->objectName(), QStringLiteral("frmWorkspaces"));
    EXPECT_EQ(form->windowTitle(), QStringLiteral("Tremorledger Alps"));
    EXPECT_TRUE(form->isVisible());
    EXPECT_TRUE(form->isWindow());
    EXPECT_FALSE(form->isModal());
    EXPECT_LE(form->width(), 933);
    EXPECT_LE(form->height(), 667);
}

TEST_F(FrmWorkspacesTest, ShowsNamesAsTheyAreWritten) {
    open("Tremorledger Forl\xC3\xAC <b>&amp;</b>");
    EXPECT_EQ(form->windowTitle(), QString::fromUtf8("Tremorledger Forlì <b>&amp;</b>"));
}

TEST_F(FrmWorkspacesTest, KeepsItsSizeUnderANameOfTenThousandCharacters) {
    open();
    const QSize size = form->size();
    open("Tremorledger " + std::string(10000, 'n'));
    EXPECT_EQ(form->size(), size);
    EXPECT_EQ(form->windowTitle().size(), 10013);
}

TEST_F(FrmWorkspacesTest, GivesItsMapAllButTwentyPixelsAtEachSize) {
    open();
    const auto* map = child<QFrame>(*form, "WebBrowser1");
    for (const QSize size : {QSize(640, 480), QSize(300, 200), QSize(900, 620)}) {
        form->resize(size);
        QCoreApplication::sendPostedEvents();
        EXPECT_EQ(map->size(), size - QSize(20, 20));
    }
}

TEST_F(FrmWorkspacesTest, TellsOnceThatTheOperatorHasClosedItAndGoesAway) {
    open();
    form->close();
    EXPECT_EQ(unloads, 1);
    EXPECT_FALSE(form->isVisible());
    form->close();
    EXPECT_EQ(unloads, 1);
    deleteWhatIsClosed();
    EXPECT_TRUE(form.isNull());
    EXPECT_EQ(maps.living, 0);
}

TEST_F(FrmWorkspacesTest, GoesAwayWithoutAWordWhenTheProgramClosesIt) {
    open();
    form->unload();
    EXPECT_FALSE(form->isVisible());
    deleteWhatIsClosed();
    EXPECT_TRUE(form.isNull());
    EXPECT_EQ(unloads, 0);
}

TEST_F(FrmWorkspacesTest, StaysOpenAtEscapeAndReturn) {
    open();
    pressKey(*form, Qt::Key_Escape);
    pressKey(*form, Qt::Key_Return);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(unloads, 0);
}

TEST_F(FrmWorkspacesTest, IsDeletedWithItsMaker) {
    open();
    const QPointer<FrmWorkspaces> first = form;
    open();
    form->unload(); // closed, but its deletion is still to come
    maker.reset();
    EXPECT_TRUE(first.isNull());
    EXPECT_TRUE(form.isNull());
    EXPECT_EQ(maps.living, 0);
    EXPECT_EQ(unloads, 0);
}

TEST_F(FrmWorkspacesTest, GivesTheMapThatFillsIt) {
    open();
    EXPECT_EQ(maps.living, 1);
    EXPECT_TRUE(form->map().complete());
    EXPECT_EQ(child<QFrame>(*form, "WebBrowser1")->accessibleName(),
              QStringLiteral("Map of the workspace"));
}

} // namespace
} // namespace tremor
