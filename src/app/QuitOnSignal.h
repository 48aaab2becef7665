#pragma once
#include <QObject>

// SIGTERM and SIGINT end the event loop, so that the window's shut-down runs: pulses cease, the spindle stops. Nothing
// is asked. Made once, on the interface thread, behind the application object.
class CQuitOnSignal : public QObject
{
    Q_OBJECT

public:
    explicit CQuitOnSignal(QObject* pParent = nullptr);
};
