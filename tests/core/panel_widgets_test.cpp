#include "core/panel_widgets.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QWidget>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace tremor {
namespace {

constexpr std::int32_t menuHeight = 345; // twips

class PanelWidgetsTest : public ::testing::Test {
  protected:
    PanelWidgetsTest() : widgets(centre) {
        widgets.applyLayout(layoutPanel(minimumFormSize, menuHeight));
        centre.resize(933, 644);
        centre.show();
    }
    std::string caption(const char* name) const {
        const auto* button = centre.findChild<QAbstractButton*>(QLatin1StringView(name));
        return button == nullptr ? "missing"
                                 : QString(button->text()).remove(QLatin1Char('&')).toStdString();
    }

    QWidget centre;
    PanelWidgets widgets;
};

TEST_F(PanelWidgetsTest, HasEveryControlUnderItsName) {
    for (const char* name : {"WebBrowser1",
                             "wbr_last",
                             "FrmLastEvent",
                             "wbrSaveMaps",
                             "updateFromRemoteWbr",
                             "GridEvents",
                             "PicEvHist",
                             "Frame2",
                             "lst_prog_log",
                             "lbl_log_bkg",
                             "FrmWorkspace",
                             "cmb_wrkSp",
                             "cmd_SaveArea",
                             "cmd_save_maps",
                             "cmd_JumpWRK",
                             "chk_fault",
                             "chk_Legend",
                             "chk_SearchMode",
                             "chk_ShowStations",
                             "txtMouseCoord",
                             "picScaleControl",
                             "lbl_tot",
                             "lbl_events",
                             "Label1",
                             "prgBar",
                             "List1",
                             "filedir",
                             "DirLocal",
                             "Command1"})
        EXPECT_NE(centre.findChild<QWidget*>(QLatin1StringView(name)), nullptr) << name;
}

TEST_F(PanelWidgetsTest, HasTheGivenCaptions) {
    EXPECT_EQ(widgets.FrmLastEvent->title(), QStringLiteral("The last Event"));
    EXPECT_EQ(widgets.FrmWorkspace->title(), QStringLiteral("Workspace"));
    EXPECT_EQ(widgets.Frame2->title(), QStringLiteral("Event History"));
    EXPECT_EQ(caption("cmd_SaveArea"), "Save as...");
    EXPECT_EQ(caption("cmd_save_maps"), "Save Maps");
    EXPECT_EQ(caption("cmd_JumpWRK"), "Jump to WRK");
    EXPECT_EQ(caption("chk_fault"), "Show Faults");
    EXPECT_EQ(caption("chk_Legend"), "Show Legend");
    EXPECT_EQ(caption("chk_SearchMode"), "Search Mode");
    EXPECT_EQ(caption("chk_ShowStations"), "Show Stations");
}

TEST_F(PanelWidgetsTest, ExplainsSearchModeOnBothBoxes) {
    const QString tip = QStringLiteral("When 'Search Mode' is active, Workspace Map and The Last "
                                       "Event Map will not be update with new events.");
    EXPECT_EQ(widgets.chk_SearchMode->toolTip(), tip);
    EXPECT_EQ(widgets.chk_ShowStations->toolTip(), tip);
    EXPECT_TRUE(widgets.chk_fault->toolTip().isEmpty());
}

TEST_F(PanelWidgetsTest, OffersTheGlobalWorkspaceFromTheStart) {
    EXPECT_EQ(widgets.cmb_wrkSp->count(), 1);
    EXPECT_EQ(widgets.cmb_wrkSp->currentText(), QStringLiteral("Global"));
}

TEST_F(PanelWidgetsTest, ShowsTextsFromOutsideAsTheyStand) {
    for (const QLabel* label :
         {widgets.Label1, widgets.lbl_log_bkg, widgets.lbl_events, widgets.lbl_tot})
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->objectName().toStdString();
}

TEST_F(PanelWidgetsTest, KeepsTheHiddenControlsOutOfSight) {
    for (const QWidget* widget :
         std::initializer_list<const QWidget*>{widgets.wbrSaveMaps, widgets.updateFromRemoteWbr,
                                               widgets.DirLocal, widgets.filedir, widgets.Command1})
        EXPECT_FALSE(widget->isVisible()) << widget->objectName().toStdString();
}

TEST_F(PanelWidgetsTest, ClipsNoCaptionInTheSmallestWindow) {
    for (const QAbstractButton* button : centre.findChildren<QAbstractButton*>()) {
        if (!button->isVisible())
            continue;
        EXPECT_GE(button->width(), button->minimumSizeHint().width())
            << button->objectName().toStdString();
        EXPECT_LE(button->geometry().right(), button->parentWidget()->width())
            << button->objectName().toStdString();
    }
    for (const QLabel* label : centre.findChildren<QLabel*>())
        if (label->isVisible() && !label->text().isEmpty()) {
            EXPECT_GE(label->width(), label->minimumSizeHint().width())
                << label->text().toStdString();
        }
    EXPECT_GE(widgets.cmb_wrkSp->width(), widgets.cmb_wrkSp->minimumSizeHint().width());
}

TEST_F(PanelWidgetsTest, LeavesRoomForTheLongestStatusTexts) {
    widgets.lbl_log_bkg->setText(QStringLiteral("Next update from alternate source in 9960 sec."));
    widgets.lbl_events->setText(QStringLiteral("12345 / 12345"));
    widgets.lbl_tot->setText(QStringLiteral("12345 Kb"));
    QCoreApplication::processEvents();
    centre.grab(); // carries the layout out
    for (const QLabel* label : {widgets.lbl_log_bkg, widgets.lbl_events, widgets.lbl_tot})
        EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->text().toStdString();
    EXPECT_GE(widgets.prgBar->width(), 50);
}

TEST_F(PanelWidgetsTest, GivesEveryMnemonicToOneControlOnly) {
    // Alt+F, Alt+S, Alt+W and Alt+? belong to the menu bar.
    std::set<std::string> used{"Alt+F", "Alt+S", "Alt+W", "Alt+?"};
    const auto use = [&](const QString& text) {
        const QKeySequence mnemonic = QKeySequence::mnemonic(text);
        if (!mnemonic.isEmpty()) {
            EXPECT_TRUE(used.insert(mnemonic.toString().toStdString()).second)
                << text.toStdString();
        }
    };
    for (const QAbstractButton* button : centre.findChildren<QAbstractButton*>())
        use(button->text());
    for (const QLabel* label : centre.findChildren<QLabel*>())
        use(label->text());
    EXPECT_TRUE(used.contains("Alt+L")) << "the log";
    EXPECT_TRUE(used.contains("Alt+E")) << "the events";
}

TEST_F(PanelWidgetsTest, NamesWhatCarriesNoCaption) {
    for (const QWidget* widget : std::initializer_list<const QWidget*>{
             widgets.wbr_last, widgets.List1, widgets.lst_prog_log, widgets.gridEvents,
             widgets.cmb_wrkSp, widgets.picScaleControl, widgets.txtMouseCoord, widgets.WebBrowser1,
             widgets.PicEvHist, widgets.prgBar})
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
}

TEST_F(PanelWidgetsTest, PlacesNeighboursWithoutOverlapInPixels) {
    EXPECT_LT(widgets.FrmLastEvent->geometry().bottom(), widgets.List1->geometry().top());
    EXPECT_LT(widgets.List1->geometry().bottom(), widgets.lst_prog_log->geometry().top());
    EXPECT_LT(widgets.lst_prog_log->geometry().bottom(), widgets.gridEvents->geometry().top());
    EXPECT_LT(widgets.gridEvents->geometry().right(), widgets.FrmWorkspace->geometry().left());
    EXPECT_LT(widgets.FrmWorkspace->geometry().bottom(), widgets.Frame2->geometry().top());
    EXPECT_LE(widgets.Frame2->geometry().right(), 933);
}

} // namespace
} // namespace tremor
