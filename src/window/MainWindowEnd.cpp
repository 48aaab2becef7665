// How the window ends: whether it may close, and what is left behind it; and the boxes that carry a Stop.
#include "hardware/VantorGpio.h"
#include "motion/AllAxisCtrl.h"
#include "ui_MainWindow.h"
#include "window/FeedPanel.h"
#include "window/KeyPilot.h"
#include "window/LogList.h"
#include "window/MachineButtons.h"
#include "window/MainWindow.h"
#include "window/OperationStates.h"
#include "window/PicturePanel.h"
#include "window/PositionPanel.h"
#include "window/ScreenStack.h"
#include "window/SpindlePanel.h"
#include "window/StartStop.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QThreadPool>
#include <QTimer>

void MainWindow::closeEvent(QCloseEvent* pEvent)
{
    bool bClose = m_bQuitting || m_AppControl.m_eOperation == OP_NONE;
    if (!bClose) {
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Warning"),
                        QStringLiteral("The machine is in use. Stop it and close?"), QMessageBox::Yes | QMessageBox::No,
                        this);
        AddStop(box);
        bClose = box.exec() == QMessageBox::Yes || m_bQuitting;
    }
    pEvent->setAccepted(bClose);
}

// A box takes the round button away: the touch that goes down here stops at once.
void MainWindow::AddStop(QMessageBox& box)
{
    QPushButton* pStop = box.addButton(QStringLiteral("Stop"), QMessageBox::ActionRole);
    connect(pStop, &QPushButton::pressed, this, [this] {
        if (CSupervision::WhyNotReleased().isEmpty()) m_pStartStop->ToggleStop();
    });
}

// The box is not opened from within the call: in a tick of the supervision loop it would keep the inputs from being
// read. At start-up there is no tick yet.
void MainWindow::ShowCriticalBox(const QString& strTitle, const QString& strText)
{
    const auto fnShow = [this, strTitle, strText] {
        QMessageBox box(QMessageBox::Critical, strTitle, strText, QMessageBox::Ok, this);
        if (!IsMachineFree()) AddStop(box);
        box.exec();
    };
    if (m_bStarting)
        fnShow();
    else
        QMetaObject::invokeMethod(this, fnShow, Qt::QueuedConnection);
}

void MainWindow::StopForGood()
{
    m_pStartStop->StopForGood();
}

MainWindow::~MainWindow()
{
    // Pulses cease and relays open here, and not behind a camera that hangs.
    m_AppControl.Abandon();
    m_AppControl.m_AxisCommands.RequestStop();
    CAllAxisCtrl::StopAutoMode();
    m_AppControl.SwitchOff();
    m_CncCamera.SetWhileWaiting([this] { m_AppControl.SwitchOff(); });   // a worker may have been about to write one
    m_pPicture->CloseCamera();
    CVANTORGPIO::PwmStop();
    m_pSupervisionTimer->stop();
    m_AppControl.StopAll();
    m_AppControl.SwitchOff();
    m_AppControl.wait();
    m_AppControl.m_AxisCommands.StopAxes();         // one that the worker was just about to start
    m_AppControl.SwitchOff();                       // an output that the worker was just about to write
    QThreadPool::globalInstance()->waitForDone();   // a load or a compilation reports to a screen
    COperatorScreen::Set(nullptr);
    delete m_pSupervisionTimer;
    delete m_pBtnClickTimer;
    // Only the record: the frames are children of the window and go behind the bars, which are members.
    delete m_pUi;
}
