#include "camera/CncCamera.h"

#include <QMutexLocker>

#include <chrono>
#include <future>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

static constexpr unsigned long WAKE_US = 100'000;   // a thread that waits or writes comes round within this
static constexpr unsigned long POLL_US = 1'000;
static constexpr unsigned long LOOK_US = 10'000;   // between two looks at what may not wait

CCncCamera::CCncCamera(std::unique_ptr<CFrameSource> pCapture)
    : m_pCapture(std::move(pCapture)), m_pWriter(std::make_unique<cv::VideoWriter>())
{
}

CCncCamera::~CCncCamera()
{
    StopVideoCapture();
    wait();
}

QString CCncCamera::GetErrorMsg() const
{
    const QMutexLocker lock(&m_mtxMsg);
    return m_strErrMsg;
}

void CCncCamera::SetErrorMsg(const QString& strMsg)
{
    const QMutexLocker lock(&m_mtxMsg);
    m_strErrMsg = strMsg;
}

// On the interface thread.
void CCncCamera::Wait(unsigned long uUs) const
{
    for (unsigned long uPassed = 0; uPassed < uUs; uPassed += LOOK_US) {
        usleep(LOOK_US);
        if (m_fnWhileWaiting) m_fnWhileWaiting();
    }
}

bool CCncCamera::OpenSource()
{
    bool bOpen = false;
    try {
        bOpen = m_pCapture->Open();
        // Here, because the source belongs to the thread from its start.
        m_FrameSize = {static_cast<int>(m_pCapture->Get(cv::CAP_PROP_FRAME_WIDTH)),
                       static_cast<int>(m_pCapture->Get(cv::CAP_PROP_FRAME_HEIGHT))};
        m_iFormatCode = static_cast<int>(m_pCapture->Get(cv::CAP_PROP_FOURCC));
    } catch (...) {
        bOpen = false;   // told like any other camera that does not open
    }
    return bOpen;
}

bool CCncCamera::StartVideoCapture()
{
    while (isRunning()) Wait(LOOK_US);   // one that has lost its camera closes the source on its way out
    wait();
    std::future<bool> opening = std::async(std::launch::async, [this] { return OpenSource(); });   // may take seconds
    while (opening.wait_for(std::chrono::microseconds(0)) != std::future_status::ready) Wait(LOOK_US);
    const bool bOpen = opening.get();
    m_bCamOpen = bOpen;
    SetErrorMsg(bOpen ? QString() : QStringLiteral("unable to open Camera"));
    if (!bOpen) return false;
    m_bRun = true;
    m_bThreadAlive = true;
    m_bFrameConsumed = 1;   // nobody will take a frame of the time before
    start(QThread::InheritPriority);
    return true;
}

void CCncCamera::StopVideoCapture()
{
    if (m_bRecording) StopVideoRecord();
    m_bRun = false;
    while (m_bThreadAlive) {
        m_bFrameConsumed = 1;   // it may be waiting for the interface, which is here
        Wait(WAKE_US);
    }
    SetErrorMsg(QString());
    m_bCamOpen = false;
}

QImage CCncCamera::TakeImage()
{
    const QMutexLocker lock(&m_mtxImage);
    if (m_bFrameConsumed == 1) return {};   // a signal from before a stop: its frame is gone
    QImage image = m_Image;
    m_bFrameConsumed = 1;
    return image;
}

void CCncCamera::run()
{
    try {
        while (m_bRun)
            if (Grab()) emit NewImage();
    } catch (...) {   // whatever the camera's library throws when the plug is pulled
        m_bCamOpen = false;
        SetErrorMsg(QStringLiteral("Camera Connection Lost"));
        try {
            m_pCapture->Release();
        } catch (...) {   // it is gone anyway
        }
        emit NewImage();
    }
    m_bFrameConsumed = 1;
    m_bThreadAlive = false;   // last: whoever waits for it goes on at once
}

// False: told to end while it waited for the interface.
bool CCncCamera::Grab()
{
    while (m_bFrameConsumed != 1) usleep(POLL_US);
    if (!m_bRun) return false;
    cv::Mat frame, rgb;
    (void)m_pCapture->Read(frame);   // nothing read is an empty frame, which the conversion refuses
    {
        const QMutexLocker lock(&m_mtxWriter);
        if (m_bRecording) m_pWriter->write(frame);
    }
    cv::cvtColor(frame, rgb, cv::COLOR_BGR2RGB);
    const QMutexLocker lock(&m_mtxImage);
    m_Image = QImage(rgb.data, rgb.cols, rgb.rows, static_cast<qsizetype>(rgb.step), QImage::Format_RGB888).copy();
    m_bFrameConsumed = 0;
    return true;
}

bool CCncCamera::StartVideoRecord(QString strFile)
{
    if (!m_bCamOpen) {
        SetErrorMsg(QStringLiteral("Camera not opened"));
        return false;
    }
    const QMutexLocker lock(&m_mtxWriter);
    bool bOpen = false;
    try {
        bOpen = m_pWriter->open(strFile.toStdString(), m_iFormatCode, m_fRecFps,
                                cv::Size(m_FrameSize.width(), m_FrameSize.height()), true);
    } catch (...) {   // told like any other file that does not open
    }
    if (!bOpen) SetErrorMsg(QStringLiteral("Could not open the output video file for write\n"));
    m_bRecording = bOpen;
    return bOpen;
}

void CCncCamera::StopVideoRecord()
{
    m_bRecording = false;
    Wait(WAKE_US);   // the frame in flight
    const QMutexLocker lock(&m_mtxWriter);
    try {
        m_pWriter->release();
    } catch (...) {   // a full disk: what it holds is closed as far as it goes
    }
}
