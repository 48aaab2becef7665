#include "camera/CncCamera.h"
#include "camera/FedFrames.h"
#include "support/screens/ScreenSupport.h"

#include <QTemporaryDir>

#include <thread>

class ThreadsCamera : public testing::Test
{
protected:
    ThreadsCamera()
    {
        QObject::connect(&m_Camera, &CCncCamera::NewImage, &m_Interface, [this] {
            ++m_iSignals;
            if (!m_bTake || !m_Camera.IsCamOpen()) return;
            if (const QImage image = m_Camera.TakeImage(); !image.isNull()) m_lstImages.push_back(image);
        });
    }
    // The thread sanitizer does not see that Qt hands a posted event over: none may be left to be thrown away.
    ~ThreadsCamera() override
    {
        m_Camera.StopVideoCapture();
        m_Camera.wait();
        QCoreApplication::processEvents();
    }
    bool WaitLost()
    {
        return WaitFor([this] { return !m_Camera.IsCamOpen() && m_Camera.isFinished(); });
    }

    std::shared_ptr<stFeed> m_pFeed = std::make_shared<stFeed>();
    CCncCamera m_Camera{std::make_unique<CFedFrames>(m_pFeed)};
    QObject m_Interface;
    bool m_bTake = true;
    int m_iSignals = 0;
    std::vector<QImage> m_lstImages;
    QTemporaryDir m_Folder;
};

TEST_F(ThreadsCamera, FramesArriveInOrderEachWithPixelsOfItsOwnAndTheLossIsToldOnce)
{
    m_pFeed->iFrames = 40;
    ASSERT_TRUE(m_Camera.StartVideoCapture());
    ASSERT_TRUE(WaitLost());
    QTest::qWait(20);   // nothing more may come
    ASSERT_EQ(m_lstImages.size(), 40u);
    for (size_t n = 0; n < 40; ++n) ASSERT_EQ(m_lstImages[n].pixelColor(63, 47), QColor(static_cast<int>(n), 100, 200));
    EXPECT_EQ(m_iSignals, 41);
    EXPECT_EQ(m_Camera.GetErrorMsg(), "Camera Connection Lost");
    EXPECT_EQ(m_pFeed->iReleases, 1);

    m_pFeed->iFrames = 1000;   // plugged in again
    ASSERT_TRUE(m_Camera.StartVideoCapture());
    EXPECT_EQ(m_Camera.GetErrorMsg(), "");
    EXPECT_TRUE(WaitFor([this] { return m_lstImages.size() > 41; }));
}

// An emergency-stop input, say, while a camera hangs in its opening, or in a read behind which it is to stop.
TEST_F(ThreadsCamera, WhoeverWaitsForItIsAskedForWhatMayNotWait)
{
    int iLooks = 0;
    m_Camera.SetWhileWaiting([&] {
        if (++iLooks == 3) m_pFeed->goOn.release();
    });
    m_pFeed->iFrames = 1000;
    m_pFeed->bHoldOpen = m_pFeed->bHold = true;   // the first read too: nobody takes a frame here
    ASSERT_TRUE(m_Camera.StartVideoCapture());
    EXPECT_GE(iLooks, 3);
    m_pFeed->inRead.acquire();
    iLooks = 0;
    m_Camera.StopVideoCapture();
    EXPECT_GE(iLooks, 3);
    m_Camera.SetWhileWaiting({});
}

TEST_F(ThreadsCamera, ReadsNothingMoreWhileTheInterfaceIsBusyAndEndsFromThere)
{
    m_pFeed->iFrames = 1000;
    m_bTake = false;
    ASSERT_TRUE(m_Camera.StartVideoCapture());
    ASSERT_TRUE(WaitFor([this] { return m_iSignals == 1; }));
    QTest::qWait(20);
    EXPECT_EQ(m_pFeed->iReads, 1);
    m_Camera.StopVideoCapture();
    EXPECT_FALSE(m_Camera.IsCamOpen());
    EXPECT_LE(m_pFeed->iReads, 2);
    EXPECT_TRUE(m_Camera.wait(10000));
    EXPECT_EQ(m_Camera.GetErrorMsg(), "");
}

TEST_F(ThreadsCamera, EndsBehindTheReadThatItIsInAndAFrameFromBeforeAStopIsGone)
{
    m_pFeed->iFrames = 1000;
    m_pFeed->bHold = true;
    ASSERT_TRUE(m_Camera.StartVideoCapture());
    m_pFeed->inRead.acquire();
    std::thread slow([this] {
        QThread::msleep(150);   // longer than the stop looks away
        m_pFeed->bHold = false;
        m_pFeed->goOn.release();
    });
    m_Camera.StopVideoCapture();
    EXPECT_EQ(m_pFeed->iReads, 1) << "returned while the read was still to come back, or read on";
    slow.join();
    m_pFeed->bOpens = false;
    EXPECT_FALSE(m_Camera.StartVideoCapture());
    EXPECT_EQ(m_Camera.GetErrorMsg(), "unable to open Camera");
    QCoreApplication::processEvents();   // the frame's signal
    EXPECT_EQ(m_iSignals, 1);
    EXPECT_TRUE(m_lstImages.empty() && m_Camera.TakeImage().isNull());
}

TEST_F(ThreadsCamera, RecordsWhatTheCameraSees)
{
    const QString strFile = m_Folder.filePath("work.avi");
    EXPECT_FALSE(m_Camera.StartVideoRecord(strFile));
    EXPECT_EQ(m_Camera.GetErrorMsg(), "Camera not opened");

    m_pFeed->iFrames = 1000;
    m_pFeed->bHold = true;   // so that every frame behind the first one is recorded
    ASSERT_TRUE(m_Camera.StartVideoCapture());
    EXPECT_FALSE(m_Camera.StartVideoRecord(m_Folder.filePath("no/such/folder.avi")));
    EXPECT_EQ(m_Camera.GetErrorMsg(), "Could not open the output video file for write\n");
    m_Camera.m_fRecFps = 20.0;
    ASSERT_TRUE(m_Camera.StartVideoRecord(strFile));
    m_pFeed->bHold = false;
    m_pFeed->goOn.release(1);
    ASSERT_TRUE(WaitFor([this] { return m_lstImages.size() >= 30; }));
    m_Camera.StopVideoRecord();
    const int iAtStop = m_pFeed->iReads;
    m_Camera.StopVideoCapture();

    cv::VideoCapture film(strFile.toStdString());
    ASSERT_TRUE(film.isOpened());
    EXPECT_EQ(film.get(cv::CAP_PROP_FPS), 20.0);
    int iFrames = 0;
    for (cv::Mat frame; film.read(frame); ++iFrames) {
        ASSERT_EQ(frame.size(), cv::Size(64, 48));
        ASSERT_NEAR(frame.at<cv::Vec3b>(20, 20)[2], iFrames, 6) << "red counts the frames, lossy";
        ASSERT_NEAR(frame.at<cv::Vec3b>(20, 20)[0], 200, 6);
    }
    EXPECT_GE(iFrames, 30);
    EXPECT_LE(iFrames, iAtStop);
}

// A camera of OpenCV's own: its end is an empty frame, which must end the capture as a loss does.
TEST_F(ThreadsCamera, AFilmThatEndsIsALostCamera)
{
    class CFilm : public CFrameSource
    {
    public:
        explicit CFilm(std::string strFile) : m_strFile(std::move(strFile)) {}
        bool Open() override { return m_Film.open(m_strFile); }
        bool Read(cv::Mat& frame) override { return m_Film.read(frame); }
        void Release() override { m_Film.release(); }
        double Get(int iProperty) const override { return m_Film.get(iProperty); }

    private:
        std::string m_strFile;
        cv::VideoCapture m_Film;
    };
    const std::string strFile = m_Folder.filePath("film.avi").toStdString();
    {
        cv::VideoWriter writer(strFile, cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 25.0, cv::Size(64, 48));
        ASSERT_TRUE(writer.isOpened());
        for (int n = 0; n < 5; ++n) writer.write(cv::Mat(48, 64, CV_8UC3, cv::Scalar(0, 0, 50 * n)));
    }
    CCncCamera camera(std::make_unique<CFilm>(strFile));
    int iFrames = 0;
    QObject::connect(&camera, &CCncCamera::NewImage, &m_Interface, [&] {
        if (camera.IsCamOpen() && !camera.TakeImage().isNull()) ++iFrames;
    });
    ASSERT_TRUE(camera.StartVideoCapture());
    EXPECT_TRUE(WaitFor([&] { return !camera.IsCamOpen(); }));
    EXPECT_EQ(iFrames, 5);
    EXPECT_EQ(camera.GetErrorMsg(), "Camera Connection Lost");
}
