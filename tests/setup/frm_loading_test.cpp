#include "core/qt_text.h"
#include "setup/frm_loading.h"
#include "support/window_driver.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>

#include <gtest/gtest.h>

namespace tremor {
namespace {

TEST(FrmLoading, ShowsTextAndBar) {
    FrmLoading window(nullptr);
    EXPECT_FALSE(window.isVisible());
    window.updateProgress(70, "Applying settings...");
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(toBytes(window.windowTitle()), "Loading");
    EXPECT_EQ(toBytes(testing::child<QLabel>(window, "lblLoading")->text()),
              "Applying settings...");
    EXPECT_EQ(testing::child<QProgressBar>(window, "prgLoading")->value(), 70);
}

} // namespace
} // namespace tremor
