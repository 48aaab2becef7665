#include "app/RunWindow.h"

#include "app/QuitOnSignal.h"
#include "widgets/DlgTextPad.h"
#include "widgets/Look.h"
#include "window/MainWindow.h"

#include <QApplication>
#include <QMessageBox>

int RunGuarded(const std::function<int()>& fnRun, const std::function<void()>& fnStop)
{
    try {
        return fnRun();
    } catch (...) {
        fnStop();
        QMessageBox::warning(nullptr, QStringLiteral("error here"), QStringLiteral("something screwed up"),
                             QMessageBox::Ok);
    }
    return 0;   // no error status: wanted, the operator has been told
}

int RunWindow(QApplication& app, const std::function<void(QWidget& window)>& fnBeside)
{
    CLook::Apply(app);
    CTextPadOpener::WatchFileDialogs(app);
    MainWindow window;
    const CQuitOnSignal quit;
    return RunGuarded(
        [&] {
            window.show();
            if (fnBeside) fnBeside(window);
            return QApplication::exec();
        },
        [&] { window.StopForGood(); });
}
