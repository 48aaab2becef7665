#pragma once
#include "camera/FrameSource.h"
#include "common/Shared.h"

#include <QImage>
#include <QMutex>
#include <QSize>
#include <QThread>

#include <functional>
#include <memory>

namespace cv {
class VideoWriter;
}

// The camera that looks at the work: a thread that grabs frames, hands each to the interface and, while recording, to a
// file. It never runs ahead of the display: no frame is grabbed until the last one has been shown. Frames are counted
// by NewImage(), which is also emitted once when the camera has been lost. Interface thread, but for run.
class CCncCamera : public QThread
{
    Q_OBJECT

public:
    explicit CCncCamera(std::unique_ptr<CFrameSource> pCapture = CFrameSource::Camera());
    ~CCncCamera() override;

    bool StartVideoCapture();   // false: see GetErrorMsg
    // Waits for the thread, which ends behind the read that it is in.
    void StopVideoCapture();
    // The format is the camera's own. False: see GetErrorMsg.
    bool StartVideoRecord(QString strFile);
    void StopVideoRecord();

    QString GetErrorMsg() const;
    bool IsCamOpen() const { return m_bCamOpen; }
    bool IsRecording() const { return m_bRecording; }

    // The newest frame, which the interface takes with it: the thread may grab the next. Null: it has been taken.
    QImage TakeImage();

    // Called every 10 ms while the interface waits here for the camera, which may hang: what may not wait meanwhile.
    void SetWhileWaiting(std::function<void()> fnWhileWaiting) { m_fnWhileWaiting = std::move(fnWhileWaiting); }

    QString m_strRecFile;      // of the recording to come, as the operator has chosen it
    double m_fRecFps = 16.0;   // frames per second

signals:
    void NewImage();

protected:
    void run() override;

private:
    bool Grab();
    bool OpenSource();
    void Wait(unsigned long uUs) const;
    void SetErrorMsg(const QString& strMsg);

    std::function<void()> m_fnWhileWaiting;
    QString m_strErrMsg;
    CShared<bool> m_bRun = false;       // the loop shall go on
    CShared<bool> m_bCamOpen = false;   // open and delivering
    QImage m_Image;                     // RGB, a buffer of its own
    CShared<qint32> m_bFrameConsumed = 1;
    std::unique_ptr<CFrameSource> m_pCapture;
    QSize m_FrameSize;   // of the source, as it was opened
    int m_iFormatCode = 0;
    CShared<bool> m_bThreadAlive = false;   // has not yet left run
    CShared<bool> m_bRecording = false;
    std::unique_ptr<cv::VideoWriter> m_pWriter;
    mutable QMutex m_mtxMsg, m_mtxImage, m_mtxWriter;
};
