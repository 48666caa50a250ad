#include "core/qt_prompts.h"

#include "core/qt_text.h"
#include "core/runtime_error_box.h"
#include "core/version.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>

namespace tremor {
namespace {

// The window that the operator works in, so that the keyboard comes back to it.
QWidget* ownerOf(QWidget* mainWindow) {
    QWidget* const active = QApplication::activeWindow();
    return mainWindow != nullptr && active != nullptr ? active : mainWindow;
}

// A dialog that may die with its parent while it is open: ticks go on behind it and can close
// windows.
template <class Dialog>
class HeldDialog {
  public:
    explicit HeldDialog(QWidget* parent) : dialog_(new Dialog(ownerOf(parent))) {}
    ~HeldDialog() { delete dialog_.data(); }
    HeldDialog(const HeldDialog&) = delete;
    HeldDialog& operator=(const HeldDialog&) = delete;

    Dialog* operator->() const { return dialog_.data(); }
    Dialog& operator*() const { return *dialog_; }

    // The result of exec(); 0 when the dialog has died.
    int run() {
        const int result = dialog_->exec();
        return dialog_.isNull() ? 0 : result;
    }

  private:
    QPointer<Dialog> dialog_;
};

QString titleText(std::string_view title) {
    return fromBytes(title.empty() ? std::string_view(programTitle) : title);
}

QMessageBox::Icon iconOf(BoxIcon icon) {
    switch (icon) {
    case BoxIcon::Critical:
        return QMessageBox::Critical;
    case BoxIcon::Question:
        return QMessageBox::Question;
    case BoxIcon::Exclamation:
        return QMessageBox::Warning;
    case BoxIcon::Information:
        return QMessageBox::Information;
    case BoxIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

struct ButtonSet {
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton enter = QMessageBox::NoButton;
    QMessageBox::StandardButton escape = QMessageBox::NoButton;
};

ButtonSet buttonSetOf(BoxButtons buttons) {
    switch (buttons) {
    case BoxButtons::OkCancel:
        return {QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, QMessageBox::Cancel};
    case BoxButtons::YesNo:
        return {QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No};
    case BoxButtons::Ok:
        break;
    }
    return {QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok};
}

BoxAnswer answerOf(int button) {
    switch (button) {
    case QMessageBox::Yes:
        return BoxAnswer::Yes;
    case QMessageBox::No:
        return BoxAnswer::No;
    case QMessageBox::Cancel:
        return BoxAnswer::Cancel;
    default:
        return BoxAnswer::Ok;
    }
}

// A text too long for a screen would push the buttons out of it: the box then shows its head, and
// the whole of it as scrolling details.
void setBoundedText(QMessageBox& box, const QString& text) {
    constexpr qsizetype mostLines = 20;
    constexpr qsizetype mostCharacters = 1500;
    const QString head = text.section(u'\n', 0, mostLines - 1).left(mostCharacters);
    if (head.size() == text.size()) {
        box.setText(text);
        return;
    }
    box.setText(head + QStringLiteral("\n\u2026"));
    box.setDetailedText(text);
}

// "*.jpg;*.bmp" to "*.jpg *.bmp". "*.*" means every file, also one without a point.
QString patternsOf(const QString& patterns) {
    QStringList list = patterns.split(u';', Qt::SkipEmptyParts);
    for (QString& pattern : list) {
        pattern = pattern.trimmed();
        if (pattern == QLatin1String("*.*"))
            pattern = QStringLiteral("*");
    }
    return list.join(u' ');
}

// "Sqlite File (*.sqlite)|*.sqlite" to {"Sqlite File (*.sqlite)"}. What stands in parentheses at
// the end of the label is replaced by the patterns that really hold.
QStringList nameFiltersOf(std::string_view filter) {
    const QStringList parts = fromBytes(filter).split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString label = parts[i].trimmed();
        const qsizetype parenthesis = label.lastIndexOf(u'(');
        if (parenthesis >= 0 && label.endsWith(u')'))
            label = label.left(parenthesis).trimmed();
        filters += QStringLiteral("%1 (%2)").arg(label, patternsOf(parts[i + 1]));
    }
    return filters;
}

QFileDialog::FileMode fileModeOf(const FileDialogRequest& request) {
    if (request.forSaving)
        return QFileDialog::AnyFile;
    return request.multiSelect ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile;
}

} // namespace

BoxAnswer QtPrompts::showMessageBox(const MessageBox& request) {
    const ButtonSet set = buttonSetOf(request.buttons);
    HeldDialog<QMessageBox> box(parent_);
    box->setObjectName(QStringLiteral("messageBox"));
    box->setWindowTitle(titleText(request.title));
    box->setTextFormat(Qt::PlainText);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse);
    box->setIcon(iconOf(request.icon));
    box->setStandardButtons(set.buttons);
    box->setDefaultButton(set.enter);
    box->setEscapeButton(set.escape);
    setBoundedText(*box, fromBytesWithLines(request.text));
    const int button = box.run();
    return answerOf(button == 0 ? set.escape : button);
}

std::optional<std::string> QtPrompts::inputBox(std::string_view prompt, std::string_view title) {
    HeldDialog<QInputDialog> box(parent_);
    box->setObjectName(QStringLiteral("inputBox"));
    box->setWindowTitle(titleText(title));
    // The label belongs to the field, so a single "&" would be taken for its mnemonic.
    box->setLabelText(fromBytesWithLines(prompt).replace(u'&', QStringLiteral("&&")));
    for (auto* label : box->findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    box->resize(420, 0);
    if (box.run() != QDialog::Accepted)
        return std::nullopt;
    return toBytes(box->textValue());
}

std::optional<std::string> QtPrompts::showFileDialog(const FileDialogRequest& request) {
    HeldDialog<QFileDialog> dialog(parent_);
    dialog->setObjectName(QStringLiteral("fileDialog"));
    // The desktop's own chooser matches patterns by case, which would hide "ALARM.WAV".
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setWindowTitle(titleText(request.title));
    dialog->setAcceptMode(request.forSaving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog->setFileMode(fileModeOf(request));
    dialog->setNameFilters(nameFiltersOf(request.filter));
    dialog->setDefaultSuffix(fromBytes(request.defaultExtension));
    if (!request.initialFolder.empty())
        dialog->setDirectory(fromBytes(request.initialFolder));
    if (!request.initialName.empty())
        dialog->selectFile(fromBytes(request.initialName));
    if (dialog.run() != QDialog::Accepted)
        return std::nullopt;
    return toBytes(dialog->selectedFiles().join(QChar(u'\0')));
}

std::string QtPrompts::browseForFolder(std::string_view title) {
    HeldDialog<QFileDialog> dialog(parent_);
    dialog->setObjectName(QStringLiteral("folderDialog"));
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setWindowTitle(titleText(title));
    dialog->setFileMode(QFileDialog::Directory);
    if (dialog.run() != QDialog::Accepted)
        return {};
    return toBytes(dialog->selectedFiles().value(0));
}

ErrorAnswer QtPrompts::showRuntimeError(std::string_view title, std::string_view text,
                                        int unattendedSeconds) {
    const QPointer<RuntimeErrorBox> box =
        new RuntimeErrorBox(titleText(title), fromBytesWithLines(text), unattendedSeconds, parent_);
    const ErrorAnswer answer = box->ask();
    delete box.data();
    return answer;
}

} // namespace tremor
