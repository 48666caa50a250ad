#include "core/qt_prompts.h"
#include "support/fakes.h"
#include "support/window_driver.h"

#include <QtCore/QDeadlineTimer>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>

#include <gtest/gtest.h>

#include <fstream>
#include <memory>

namespace tremor {
namespace {

using testing::child;
using testing::pressKey;
using testing::TemporaryFolder;
using testing::WhenModal;

template <class Dialog>
Dialog& as(QDialog& dialog) {
    auto* cast = qobject_cast<Dialog*>(&dialog);
    if (cast == nullptr)
        throw std::runtime_error("another kind of dialog");
    return *cast;
}

void clickButton(QDialog& dialog, QMessageBox::StandardButton button) {
    as<QMessageBox>(dialog).button(button)->click();
}

BoxAnswer answerOf(const MessageBox& box, std::function<void(QDialog&)> act) {
    QtPrompts prompts;
    const WhenModal hand("messageBox", std::move(act));
    return prompts.showMessageBox(box);
}

TEST(ShowMessageBox, ShowsTitleAndTextWithItsLines) {
    answerOf({"First line.\r\nSecond line.", "Error..."}, [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Error..."));
        EXPECT_EQ(as<QMessageBox>(dialog).text(), QStringLiteral("First line.\nSecond line."));
        dialog.reject();
    });
}

TEST(ShowMessageBox, HasTheProgramsTitleWhenNoneIsGiven) {
    for (const MessageBox& box : {MessageBox{"text"}, MessageBox{"text", ""}}) {
        answerOf(box, [](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("TREMORLEDGER"));
            dialog.reject();
        });
    }
}

TEST(ShowMessageBox, NeverTakesTextForMarkup) {
    answerOf({"<b>bold</b> <img src=x> & &x"}, [](QDialog& dialog) {
        auto& box = as<QMessageBox>(dialog);
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        const auto* label = child<QLabel>(dialog, "qt_msgbox_label");
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
        EXPECT_EQ(label->text(), QStringLiteral("<b>bold</b> <img src=x> & &x"));
        dialog.reject();
    });
}

TEST(ShowMessageBox, KeepsItsButtonsOnTheScreenForAnEndlessText) {
    std::string lines;
    for (int i = 1; i <= 500; ++i)
        lines += "line " + std::to_string(i) + "\r\n";
    for (const std::string& text : {lines, std::string(50000, 'x')}) {
        answerOf({text}, [&](QDialog& dialog) {
            EXPECT_LT(dialog.height(), 600);
            EXPECT_EQ(as<QMessageBox>(dialog).detailedText(),
                      QString::fromStdString(text).remove(u'\r'));
            dialog.reject();
        });
    }
}

TEST(ShowMessageBox, ShowsATextOfTwentyLinesAsItIs) {
    const QString text = QStringLiteral("line\n").repeated(19) + QStringLiteral("last");
    answerOf({text.toStdString()}, [&](QDialog& dialog) {
        EXPECT_EQ(as<QMessageBox>(dialog).text(), text);
        EXPECT_TRUE(as<QMessageBox>(dialog).detailedText().isEmpty());
        dialog.reject();
    });
}

TEST(ShowMessageBox, DecodesBytesThatAreNoUtf8) {
    answerOf({"Forl\xEC"}, [](QDialog& dialog) {
        EXPECT_EQ(as<QMessageBox>(dialog).text(), QStringLiteral("Forl\u00EC"));
        dialog.reject();
    });
}

TEST(ShowMessageBox, ShowsTheIconOfTheRequest) {
    const std::pair<BoxIcon, QMessageBox::Icon> icons[] = {
        {BoxIcon::None, QMessageBox::NoIcon},
        {BoxIcon::Critical, QMessageBox::Critical},
        {BoxIcon::Question, QMessageBox::Question},
        {BoxIcon::Exclamation, QMessageBox::Warning},
        {BoxIcon::Information, QMessageBox::Information}};
    for (const auto& [asked, shown] : icons) {
        answerOf({"text", "title", asked}, [expected = shown](QDialog& dialog) {
            EXPECT_EQ(as<QMessageBox>(dialog).icon(), expected);
            dialog.reject();
        });
    }
}

struct ButtonCase {
    BoxButtons buttons = BoxButtons::Ok;
    QMessageBox::StandardButtons shown;
    BoxAnswer enter = BoxAnswer::Ok;
    BoxAnswer escape = BoxAnswer::Ok;
};

const ButtonCase buttonCases[] = {
    {BoxButtons::Ok, QMessageBox::Ok, BoxAnswer::Ok, BoxAnswer::Ok},
    {BoxButtons::OkCancel, QMessageBox::Ok | QMessageBox::Cancel, BoxAnswer::Ok, BoxAnswer::Cancel},
    {BoxButtons::YesNo, QMessageBox::Yes | QMessageBox::No, BoxAnswer::Yes, BoxAnswer::No}};

TEST(ShowMessageBox, HasTheButtonsOfTheRequest) {
    for (const ButtonCase& c : buttonCases) {
        answerOf({"text", "title", BoxIcon::None, c.buttons}, [&c](QDialog& dialog) {
            EXPECT_EQ(as<QMessageBox>(dialog).standardButtons(), c.shown);
            dialog.reject();
        });
    }
}

TEST(ShowMessageBox, AnswersTheFirstButtonForEnter) {
    for (const ButtonCase& c : buttonCases) {
        EXPECT_EQ(answerOf({"text", "title", BoxIcon::None, c.buttons},
                           [](QDialog& d) { pressKey(*d.windowHandle(), Qt::Key_Return); }),
                  c.enter);
    }
}

TEST(ShowMessageBox, AnswersTheCautiousButtonForEscapeAndForClosing) {
    for (const ButtonCase& c : buttonCases) {
        const MessageBox box{"text", "title", BoxIcon::None, c.buttons};
        EXPECT_EQ(answerOf(box, [](QDialog& d) { pressKey(*d.windowHandle(), Qt::Key_Escape); }),
                  c.escape);
        EXPECT_EQ(answerOf(box, [](QDialog& d) { d.close(); }), c.escape);
    }
}

TEST(ShowMessageBox, AnswersTheClickedButton) {
    const MessageBox yesNo{"text", "title", BoxIcon::Question, BoxButtons::YesNo};
    const MessageBox okCancel{"text", "title", BoxIcon::Question, BoxButtons::OkCancel};
    const auto click = [](QMessageBox::StandardButton b) {
        return [b](QDialog& dialog) { clickButton(dialog, b); };
    };
    EXPECT_EQ(answerOf(yesNo, click(QMessageBox::Yes)), BoxAnswer::Yes);
    EXPECT_EQ(answerOf(yesNo, click(QMessageBox::No)), BoxAnswer::No);
    EXPECT_EQ(answerOf(okCancel, click(QMessageBox::Ok)), BoxAnswer::Ok);
    EXPECT_EQ(answerOf(okCancel, click(QMessageBox::Cancel)), BoxAnswer::Cancel);
}

TEST(ShowMessageBox, StandsOverItsParentWindow) {
    QtPrompts prompts;
    QWidget window;
    prompts.setParentWindow(&window);
    const WhenModal hand("messageBox", [&](QDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), &window);
        dialog.reject();
    });
    prompts.showMessageBox({"text"});
}

TEST(ShowMessageBox, StandsOverTheWindowInWhichTheOperatorWorks) {
    QtPrompts prompts;
    QWidget window;
    prompts.setParentWindow(&window);
    QWidget other;
    for (QWidget* each : {&window, &other})
        each->show();
    other.activateWindow();
    const QDeadlineTimer deadline(5000);
    while (!other.isActiveWindow() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    ASSERT_TRUE(other.isActiveWindow());
    const WhenModal hand("messageBox", [&](QDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), &other);
        dialog.reject();
    });
    prompts.showMessageBox({"text"});
}

// The main window is disabled while the setup window is open, and with it what it owns.
TEST(ShowMessageBox, CanBeAnsweredOverADisabledParentWindow) {
    QtPrompts prompts;
    QWidget window;
    window.show();
    window.setEnabled(false);
    prompts.setParentWindow(&window);
    const WhenModal hand("messageBox", [&](QDialog& dialog) {
        EXPECT_TRUE(dialog.isEnabled());
        clickButton(dialog, QMessageBox::Yes);
    });
    EXPECT_EQ(prompts.showMessageBox({"text", "title", BoxIcon::None, BoxButtons::YesNo}),
              BoxAnswer::Yes);
}

TEST(ShowMessageBox, CountsAsCancelledWhenItsParentWindowDies) {
    QtPrompts prompts;
    auto window = std::make_unique<QWidget>();
    prompts.setParentWindow(window.get());
    {
        const WhenModal hand("messageBox", [&](QDialog&) { window.reset(); });
        EXPECT_EQ(prompts.showMessageBox({"text", "title", BoxIcon::None, BoxButtons::YesNo}),
                  BoxAnswer::No);
    }
    const WhenModal hand("messageBox", [&](QDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), nullptr);
        dialog.reject();
    });
    EXPECT_EQ(prompts.showMessageBox({"text"}), BoxAnswer::Ok);
}

TEST(ShowMessageBox, LetsTimersRunMeanwhile) {
    QtPrompts prompts;
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { ++ticks; });
    timer.start(5);
    const WhenModal hand(
        "messageBox", [](QDialog& dialog) { QTimer::singleShot(80, &dialog, &QDialog::reject); });
    prompts.showMessageBox({"text"});
    EXPECT_GE(ticks, 3);
}

std::optional<std::string> typedInto(std::string_view prompt, std::function<void(QDialog&)> act) {
    QtPrompts prompts;
    const WhenModal hand("inputBox", std::move(act));
    return prompts.inputBox(prompt, "TREMORLEDGER");
}

TEST(InputBox, GivesTheTypedTextInUtf8) {
    const auto typed = typedInto("Choose a Name of your new Database.", [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("TREMORLEDGER"));
        EXPECT_EQ(as<QInputDialog>(dialog).labelText(),
                  QStringLiteral("Choose a Name of your new Database."));
        for (const QChar c : QStringLiteral("Forl\u00EC"))
            pressKey(*dialog.windowHandle(), Qt::Key_unknown, {}, QString(c));
        pressKey(*dialog.windowHandle(), Qt::Key_Return);
    });
    EXPECT_EQ(typed, "Forl\xC3\xAC");
}

TEST(InputBox, TellsAnEmptyTextFromACancelledBox) {
    EXPECT_EQ(typedInto("Name?", [](QDialog& d) { d.accept(); }), "");
    EXPECT_EQ(typedInto("Name?", [](QDialog& d) { pressKey(*d.windowHandle(), Qt::Key_Escape); }),
              std::nullopt);
    EXPECT_EQ(typedInto("Name?", [](QDialog& d) { d.close(); }), std::nullopt);
}

TEST(InputBox, ShowsItsPromptAsPlainTextWithItsLinesAndAmpersands) {
    typedInto("<i>R&D</i>\r\nName?", [](QDialog& dialog) {
        const auto* label = dialog.findChild<QLabel*>();
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
        EXPECT_EQ(label->text(), QStringLiteral("<i>R&&D</i>\nName?"));
        dialog.reject();
    });
}

TEST(InputBox, CountsAsCancelledWhenItsParentWindowDies) {
    QtPrompts prompts;
    auto window = std::make_unique<QWidget>();
    prompts.setParentWindow(window.get());
    const WhenModal hand("inputBox", [&](QDialog&) { window.reset(); });
    EXPECT_EQ(prompts.inputBox("Name?", ""), std::nullopt);
}

class FileDialogTest : public ::testing::Test {
  protected:
    void makeFile(const std::string& name) { std::ofstream(folder.file(name)) << "x"; }

    FileDialogRequest request(std::string filter = "Sqlite File (*.sqlite)|*.sqlite") const {
        FileDialogRequest result;
        result.title = "Select Sqlite file...";
        result.initialFolder = folder.path();
        result.filter = std::move(filter);
        result.defaultExtension = "db";
        return result;
    }

    std::optional<std::string> choose(const FileDialogRequest& asked,
                                      std::function<void(QDialog&)> act) {
        const WhenModal hand("fileDialog", std::move(act));
        return prompts.showFileDialog(asked);
    }

    // Types names and presses the button that accepts.
    std::optional<std::string> type(const FileDialogRequest& asked, const QString& names) {
        return choose(asked, [&](QDialog& dialog) {
            child<QLineEdit>(dialog, "fileNameEdit")->setText(names);
            pressKey(*dialog.windowHandle(), Qt::Key_Return);
        });
    }

    QStringList nameFilters(const std::string& filter) {
        QStringList result;
        choose(request(filter), [&](QDialog& dialog) {
            result = as<QFileDialog>(dialog).nameFilters();
            dialog.reject();
        });
        return result;
    }

    TemporaryFolder folder;
    QtPrompts prompts;
};

TEST_F(FileDialogTest, OpensWithTitleFolderAndFilter) {
    choose(request(), [&](QDialog& dialog) {
        auto& chooser = as<QFileDialog>(dialog);
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select Sqlite file..."));
        EXPECT_EQ(chooser.directory().absolutePath().toStdString(), folder.path());
        EXPECT_EQ(chooser.nameFilters(), QStringList(QStringLiteral("Sqlite File (*.sqlite)")));
        EXPECT_EQ(chooser.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(chooser.fileMode(), QFileDialog::ExistingFile);
        dialog.reject();
    });
}

TEST_F(FileDialogTest, GivesThePathOfTheChosenFile) {
    makeFile("Forl\xC3\xAC.sqlite");
    EXPECT_EQ(type(request(), QStringLiteral("Forl\u00EC.sqlite")),
              folder.file("Forl\xC3\xAC.sqlite"));
}

TEST_F(FileDialogTest, GivesNothingWhenCancelled) {
    EXPECT_EQ(choose(request(), [](QDialog& d) { d.reject(); }), std::nullopt);
    EXPECT_EQ(choose(request(), [](QDialog& d) { pressKey(*d.windowHandle(), Qt::Key_Escape); }),
              std::nullopt);
}

TEST_F(FileDialogTest, AddsTheDefaultExtensionToANameWithoutOne) {
    FileDialogRequest asked = request();
    asked.forSaving = true;
    EXPECT_EQ(type(asked, QStringLiteral("new")), folder.file("new.db"));
    EXPECT_EQ(type(asked, QStringLiteral("new.sqlite")), folder.file("new.sqlite"));
}

TEST_F(FileDialogTest, ProposesTheInitialName) {
    FileDialogRequest asked = request();
    asked.forSaving = true;
    asked.initialName = "DB.csv";
    EXPECT_EQ(choose(asked,
                     [](QDialog& dialog) {
                         auto& chooser = as<QFileDialog>(dialog);
                         EXPECT_EQ(chooser.acceptMode(), QFileDialog::AcceptSave);
                         EXPECT_EQ(child<QLineEdit>(dialog, "fileNameEdit")->text(),
                                   QStringLiteral("DB.csv"));
                         pressKey(*dialog.windowHandle(), Qt::Key_Return);
                     }),
              folder.file("DB.csv"));
}

TEST_F(FileDialogTest, SeparatesSeveralPathsByAZeroCharacter) {
    makeFile("a.sqlite");
    makeFile("b.sqlite");
    FileDialogRequest asked = request();
    asked.multiSelect = true;
    EXPECT_EQ(type(asked, QStringLiteral("\"a.sqlite\" \"b.sqlite\"")),
              folder.file("a.sqlite") + '\0' + folder.file("b.sqlite"));
}

TEST_F(FileDialogTest, TurnsPairsOfLabelAndPatternIntoNameFilters) {
    EXPECT_EQ(nameFilters("Wav File (*.Wav)|*.Wav"),
              QStringList(QStringLiteral("Wav File (*.Wav)")));
    EXPECT_EQ(
        nameFilters("Pictures|*.jpg; *.bmp|All files (*.*)|*.*"),
        (QStringList{QStringLiteral("Pictures (*.jpg *.bmp)"), QStringLiteral("All files (*)")}));
}

TEST_F(FileDialogTest, LeavesOutALabelWithoutPattern) {
    EXPECT_EQ(nameFilters("A (*.a)|*.a|B"), QStringList(QStringLiteral("A (*.a)")));
    EXPECT_TRUE(nameFilters("nothing").isEmpty());
}

TEST_F(FileDialogTest, CountsAsCancelledWhenItsParentWindowDies) {
    auto window = std::make_unique<QWidget>();
    prompts.setParentWindow(window.get());
    EXPECT_EQ(choose(request(), [&](QDialog&) { window.reset(); }), std::nullopt);
}

TEST_F(FileDialogTest, BrowsesForAFolder) {
    const WhenModal hand("folderDialog", [&](QDialog& dialog) {
        auto& chooser = as<QFileDialog>(dialog);
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select Pins folder."));
        EXPECT_EQ(chooser.fileMode(), QFileDialog::Directory);
        EXPECT_TRUE(chooser.testOption(QFileDialog::ShowDirsOnly));
        child<QLineEdit>(dialog, "fileNameEdit")->setText(QString::fromStdString(folder.path()));
        pressKey(*dialog.windowHandle(), Qt::Key_Return);
    });
    EXPECT_EQ(prompts.browseForFolder("Select Pins folder."), folder.path());
}

TEST_F(FileDialogTest, GivesTheEmptyTextForACancelledFolder) {
    const WhenModal hand("folderDialog", [](QDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(prompts.browseForFolder("Select Pins folder."), "");
}

TEST(ShowRuntimeError, ShowsTheReportAndGivesTheAnswer) {
    QtPrompts prompts;
    QWidget window;
    prompts.setParentWindow(&window);
    const WhenModal hand("runtimeErrorBox", [&](QDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), &window);
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("TREMORLEDGER 1.0.0 - Runtime error"));
        EXPECT_EQ(child<QPlainTextEdit>(dialog, "report")->toPlainText(),
                  QStringLiteral("There was a runtime error.\nNumber: 13\n"));
        EXPECT_EQ(child<QLabel>(dialog, "countdown")->text(), QStringLiteral("Ignore in 60 s"));
        child<QPushButton>(dialog, "cmdRetry")->click();
    });
    EXPECT_EQ(prompts.showRuntimeError("TREMORLEDGER 1.0.0 - Runtime error",
                                       "There was a runtime error.\r\nNumber: 13\r\n", 60),
              ErrorAnswer::Retry);
    EXPECT_TRUE(window.findChildren<QDialog*>().isEmpty());
}

TEST(ShowRuntimeError, AnswersIgnoreAfterTheUnattendedSeconds) {
    QtPrompts prompts;
    const WhenModal hand("runtimeErrorBox", [](QDialog&) {});
    EXPECT_EQ(prompts.showRuntimeError("title", "report", 1), ErrorAnswer::Ignore);
}

TEST(ShowRuntimeError, AnswersIgnoreWhenItsParentWindowDies) {
    QtPrompts prompts;
    auto window = std::make_unique<QWidget>();
    prompts.setParentWindow(window.get());
    const WhenModal hand("runtimeErrorBox", [&](QDialog&) { window.reset(); });
    EXPECT_EQ(prompts.showRuntimeError("title", "report", 0), ErrorAnswer::Ignore);
}

} // namespace
} // namespace tremor
