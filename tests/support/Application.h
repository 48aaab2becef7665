#pragma once
#include <QGuiApplication>

// Fonts and posted events need an application object. Never destroyed: it would take the thread pool with it, which
// later tests of this process need.
inline void NeedApplication()
{
    static int iArguments = 1;
    static char szName[] = "tests";
    static char* lst[] = {szName, nullptr};
    if (QCoreApplication::instance()) return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    (void)new QGuiApplication(iArguments, lst);
}
