#include "core/error_report.h"
#include "core/hosts.h"
#include "core/panel.h"
#include "core/panel_browsers.h"
#include "core/prerequisites.h"
#include "core/qt_clock.h"
#include "core/qt_prompts.h"
#include "core/qt_text.h"
#include "core/sdl_sound.h"
#include "core/session.h"
#include "map/map_site.h"

#include <QtCore/QDir>
#include <QtGui/QIcon>
#include <QtWidgets/QApplication>

#include <sys/stat.h>

#include <cstdlib>

namespace {

QIcon programIcon() {
    QIcon icon;
    for (const int size : {48, 64, 128, 256})
        icon.addFile(QStringLiteral(":/icons/%1x%1/apps/tremorledger.png").arg(size));
    return icon;
}

} // namespace

int main(int argc, char* argv[]) {
    // Settings, logs and downloads hold passwords and are nobody else's business.
    umask(077);
    tremor::registerMapScheme();
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    // The main window says when it is over; no other window's end ends the program.
    QApplication::setQuitOnLastWindowClosed(false);

    QApplication::setWindowIcon(programIcon());
    // Some desktops look the icon up by the name of the desktop entry.
    QApplication::setDesktopFileName(QStringLiteral("tremorledger"));

    // A relative path in the settings means beside the program.
    const QString folder = QApplication::applicationDirPath();
    QDir::setCurrent(folder);
    const std::string applicationPath = tremor::toBytes(folder);

    tremor::Session session;
    const tremor::Hosts hosts = tremor::readHosts(applicationPath + "/hosts.ini");
    tremor::QtPrompts prompts;
    tremor::QtClock clock(session);
    tremor::ErrorReport errors(
        prompts, [] { std::_Exit(0); }, hosts.UnattendedAnswerSeconds, session.TicksHeld);
    tremor::SystemRuntimeParts parts;
    if (!tremor::checkPrerequisites(parts, prompts, errors))
        return 0;

    tremor::QtBrowserMaker browsers(hosts, applicationPath, clock);
    tremor::SdlSound sound(clock, session);
    tremor::panel window({session, prompts, clock, errors, hosts, applicationPath,
                          tremor::numberLocale(), browsers, sound});
    prompts.setParentWindow(&window);
    // Closing can happen deep inside a wait: the loop ends once everything has returned to it.
    QObject::connect(&window, &tremor::panel::unloaded, &application, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    QMetaObject::invokeMethod(&window, &tremor::panel::Form_Load, Qt::QueuedConnection);
    return QApplication::exec();
}
