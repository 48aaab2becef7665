#include "app/RunWindow.h"
#include "common/OperatorScreen.h"
#include "platform/PinKind.h"

#include <QApplication>

// One that was built without the pin libraries looks like the machine's in everything, so it says at once, where the
// operator reads and where the system's journal does, that no machine will move.
static void TellVirtualPins(QWidget&)
{
    if (PinsAreReal()) return;
    const QString strMsg = QStringLiteral("Built without the pin libraries: pins are virtual, no machine will move");
    qWarning("vantor: %s", qUtf8Printable(strMsg));
    COperatorScreen::Get().AddLogMsg(strMsg, MSG_ERROR);
}

// vantor: the machine's own program.
int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    return RunWindow(app, TellVirtualPins);
}
