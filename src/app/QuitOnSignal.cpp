#include "app/QuitOnSignal.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/eventfd.h>
#include <unistd.h>

// A handler may call next to nothing: it raises a counter that the event loop watches.
static int g_iEvent = -1;

static void OnSignal(int)
{
    const quint64 uOne = 1;
    [[maybe_unused]] const ssize_t lWritten = write(g_iEvent, &uOne, sizeof uOne);
}

CQuitOnSignal::CQuitOnSignal(QObject* pParent) : QObject(pParent)
{
    g_iEvent = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (g_iEvent < 0) return;
    auto* pNotifier = new QSocketNotifier(g_iEvent, QSocketNotifier::Read, this);
    connect(pNotifier, &QSocketNotifier::activated, this, [] { QCoreApplication::quit(); });
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}
