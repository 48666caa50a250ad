#include "workspaces/frm_workspaces.h"

#include "core/qt_text.h"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QFrame>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace tremor {
namespace {

constexpr int mapMargin = 10;

} // namespace

FrmWorkspaces::FrmWorkspaces(const std::string& caption, WorkspaceMapMaker& maker,
                             std::function<void()> unloaded)
    : WebBrowser1(new QFrame(this)), unloaded_(std::move(unloaded)) {
    setObjectName(QStringLiteral("frmWorkspaces"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(fromBytes(caption));
    setMinimumSize(240, 180);
    resize(640, 480);
    WebBrowser1->setObjectName(QStringLiteral("WebBrowser1"));
    WebBrowser1->setAccessibleName(tr("Map of the workspace"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(mapMargin, mapMargin, mapMargin, mapMargin);
    layout->addWidget(WebBrowser1);
    map_ = maker.makeMap(*WebBrowser1);
}

FrmWorkspaces::~FrmWorkspaces() = default;

void FrmWorkspaces::unload() {
    unloaded_ = nullptr;
    close();
}

void FrmWorkspaces::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (const auto unloaded = std::exchange(unloaded_, nullptr))
        unloaded();
}

FrmWorkspacesMaker::~FrmWorkspacesMaker() {
    for (const auto& form : forms_)
        delete form.data();
}

WorkspaceWindow& FrmWorkspacesMaker::openWindow(const std::string& caption,
                                                std::function<void()> unloaded) {
    std::erase_if(forms_, [](const auto& form) { return form.isNull(); });
    auto* form = new FrmWorkspaces(caption, maps_, std::move(unloaded));
    forms_.emplace_back(form);
    form->show();
    return *form;
}

} // namespace tremor
