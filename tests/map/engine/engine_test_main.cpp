#include <QApplication>

#include <gtest/gtest.h>
#include <unistd.h>

// Like the other window tests without a screen; CTest's list of variables holds only one, so the
// rest of what the browser engine needs is set here.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); // it refuses to start in its sandbox as root
    // Lets the memory test collect garbage before it measures.
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--js-flags=--expose-gc --enable-precise-memory-info");
    QApplication application(argc, argv);
    application.setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
