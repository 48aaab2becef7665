#include "app/RunWindow.h"
#include "common/OperatorScreen.h"
#include "common/Paths.h"
#include "motion/AllAxisCtrl.h"
#include "platform/Computer.h"
#include "platform/PinKind.h"
#include "widgets/Look.h"

#include <QApplication>
#include <QLockFile>
#include <QMessageBox>
#include <QTimer>

// One that was built without the pin libraries looks like the machine's in everything, so it says at once, where the
// operator reads and where the system's journal does, that no machine will move.
static void TellVirtualPins()
{
    if (PinsAreReal()) return;
    const QString strMsg = QStringLiteral("Built without the pin libraries: pins are virtual, no machine will move");
    qWarning("vantor: %s", qUtf8Printable(strMsg));
    COperatorScreen::Get().AddLogMsg(strMsg, MSG_ERROR);
}

// Ahead of the window, whose homing at start must not run beside it; once more behind it where later pages are not
// locked by themselves.
static eLockedMemory TouchAndLock()
{
    CAllAxisCtrl::TouchThreads();
    return LockMemory();
}

static void TellLocked(eLockedMemory eLocked)
{
    static constexpr const char* TEXTS[] = {"Memory could not be locked: a page that is fetched in a move delays it",
                                            "Memory of the start is locked, later pages are not (see the self-test)",
                                            "All memory is locked"};
    if (eLocked == LOCKED_PRESENT) (void)LockMemory();
    COperatorScreen::Get().AddLogMsg(QString::fromLatin1(TEXTS[eLocked]),
                                     eLocked == LOCKED_NOTHING ? MSG_NOTICE : MSG_INFO);
}

// A second window would set the pins up under the job of the first. The box goes by itself: it lies over a machine that
// may be cutting.
static int TellSecondStart(QApplication& app)
{
    static constexpr int SHOWN_MS = 5000;
    const QString strMsg = QStringLiteral("VANTOR already runs on this computer.");
    qWarning("vantor: %s", qUtf8Printable(strMsg));
    CLook::Apply(app);
    QMessageBox box(QMessageBox::Critical, QStringLiteral("Error"), strMsg, QMessageBox::Ok);
    QTimer::singleShot(SHOWN_MS, &box, &QMessageBox::accept);
    box.exec();
    return 1;
}

// vantor: the machine's own program.
int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    // Beside the machine's files, which are the same whoever starts it. Of a program that has died it counts no more.
    QLockFile lock(CPaths::Establish() + QStringLiteral("/VANTOR/.running"));
    lock.setStaleLockTime(0);
    if (!lock.tryLock() && lock.error() == QLockFile::LockFailedError) return TellSecondStart(app);
    const eLockedMemory eLocked = TouchAndLock();
    return RunWindow(app, [eLocked](QWidget&) {
        TellVirtualPins();
        TellLocked(eLocked);
    });
}
