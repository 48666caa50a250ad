#include "map/map_site.h"

#include <QtWidgets/QApplication>

#include <gtest/gtest.h>
#include <unistd.h>

// Without a screen, and with the browser engine as the program prepares it.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); // it refuses to start in its sandbox as root
    tremor::registerMapScheme();
    QApplication application(argc, argv);
    application.setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
