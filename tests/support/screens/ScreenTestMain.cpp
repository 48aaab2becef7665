#include "support/screens/ScreenSupport.h"
#include "widgets/DlgTextPad.h"
#include "widgets/Look.h"

// Screens are tested on a display of their own in memory, with the look and the fonts of the program.
int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("FONTCONFIG_FILE", TEST_DATA_DIR "/fonts.conf");
    testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    app.setQuitOnLastWindowClosed(false);
    CLook::Apply(app);
    CTextPadOpener::WatchFileDialogs(app);
    CAnswer::Watch();
    return RUN_ALL_TESTS();
}
