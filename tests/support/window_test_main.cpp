#include <QApplication>

#include <gtest/gtest.h>

// Window tests run without a screen; the platform is chosen by QT_QPA_PLATFORM.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen"); // the build lists the tests, too
    QApplication application(argc, argv);
    application.setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
