#include "core/frm_about.h"
#include "core/version.h"
#include "support/window_driver.h"

#include <QtGui/QTextBlock>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTextEdit>

#include <gtest/gtest.h>

namespace tremor {
namespace {

using testing::child;
using testing::pressKey;

class FrmAboutTest : public ::testing::Test {
  protected:
    ~FrmAboutTest() override { delete form.data(); }

    void load() {
        form = new FrmAbout(settings, nullptr);
        form->show();
        QCoreApplication::processEvents();
    }

    // True when the form is closed and has deleted itself.
    bool unloaded() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return form.isNull();
    }

    AppSettings settings;
    QPointer<FrmAbout> form;
};

TEST_F(FrmAboutTest, HasTheTitleOfTheProgram) {
    load();
    EXPECT_EQ(form->objectName(), QStringLiteral("FrmAbout"));
    EXPECT_EQ(form->windowTitle(), QStringLiteral("TREMORLEDGER"));
}

TEST_F(FrmAboutTest, IsAWindowOfItsOwnOverItsOwnerAndBlocksNothing) {
    QWidget owner;
    FrmAbout about(settings, &owner);
    about.setAttribute(Qt::WA_DeleteOnClose, false);
    EXPECT_TRUE(about.isWindow());
    EXPECT_FALSE(about.isModal());
    EXPECT_EQ(about.parentWidget(), &owner);
}

TEST_F(FrmAboutTest, ShowsNameInBoldThenVersionAndContact) {
    load();
    const auto* text = child<QTextEdit>(*form, "Text1");
    EXPECT_TRUE(text->isReadOnly());
    const QStringList lines = text->toPlainText().split(u'\n');
    EXPECT_EQ(lines.value(0), QStringLiteral("TremorLedger"));
    EXPECT_EQ(lines.value(1), QStringLiteral("Version %1.%2.%3")
                                  .arg(versionMajor)
                                  .arg(versionMinor)
                                  .arg(versionRevision));
    EXPECT_TRUE(text->toPlainText().contains(QLatin1String("earthquake catalogues")));
    EXPECT_TRUE(text->toPlainText().contains(QLatin1String("TremorLedger project")));
    for (QTextBlock block = text->document()->begin(); block.isValid(); block = block.next()) {
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
            const bool bold = fragment.fragment().charFormat().fontWeight() == QFont::Bold;
            EXPECT_EQ(bold, block.blockNumber() == 0) << block.text().toStdString();
        }
    }
}

TEST_F(FrmAboutTest, DrawsItsEmblem) {
    load();
    const QImage image = child<QWidget>(*form, "Image1")->grab().toImage();
    const QColor corner = image.pixelColor(0, 0);
    const QColor top = image.pixelColor(image.width() / 2, image.height() / 8);
    EXPECT_NE(top, corner) << "the ground has round corners";
    int white = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            white += image.pixelColor(x, y).lightness() > 240 && x > 4 && x < image.width() - 4 &&
                     y > 12 && y < image.height() - 12;
    }
    EXPECT_GT(white, 150) << "the trace";
}

TEST_F(FrmAboutTest, ShowsTheSettingInItsCheckBox) {
    load();
    auto* nologo = child<QCheckBox>(*form, "nologo");
    EXPECT_EQ(nologo->text(), QStringLiteral("Don't show at startup"));
    EXPECT_FALSE(nologo->isChecked());
    delete form.data();
    settings.StartupLogo = 7;
    load();
    EXPECT_TRUE(child<QCheckBox>(*form, "nologo")->isChecked());
    EXPECT_EQ(settings.StartupLogo, 7) << "loading alone changes nothing";
}

TEST_F(FrmAboutTest, WritesTheSettingAtEachClick) {
    load();
    auto* nologo = child<QCheckBox>(*form, "nologo");
    nologo->click();
    EXPECT_EQ(settings.StartupLogo, 1);
    nologo->click();
    EXPECT_EQ(settings.StartupLogo, 0);
}

TEST_F(FrmAboutTest, UnloadsAtCloseEscapeAndTheTitleBar) {
    load();
    EXPECT_EQ(child<QPushButton>(*form, "cmdClose")->text(), QStringLiteral("Close"));
    child<QPushButton>(*form, "cmdClose")->click();
    EXPECT_TRUE(unloaded());
    load();
    form->close();
    EXPECT_TRUE(unloaded());
}

TEST_F(FrmAboutTest, UnloadsAtEscapeWhereverTheFocusIs) {
    for (const char* focus : {"Text1", "nologo", "cmdClose"}) {
        load();
        child<QWidget>(*form, focus)->setFocus();
        pressKey(*form->windowHandle(), Qt::Key_Escape);
        EXPECT_TRUE(unloaded()) << focus;
    }
}

TEST_F(FrmAboutTest, ClosesAtEnterOnlyWhereTheCloseButtonHasTheFocus) {
    load();
    child<QWidget>(*form, "nologo")->setFocus();
    pressKey(*form->windowHandle(), Qt::Key_Return);
    EXPECT_FALSE(unloaded());
    child<QWidget>(*form, "cmdClose")->setFocus();
    pressKey(*form->windowHandle(), Qt::Key_Return);
    EXPECT_TRUE(unloaded());
}

} // namespace
} // namespace tremor
