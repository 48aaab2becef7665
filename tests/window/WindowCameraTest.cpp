#include "camera/FedFrames.h"
#include "widgets/ButtonStyle.h"
#include "window/WindowSupport.h"

class WindowCamera : public CWindowTest
{
protected:
    WindowCamera()
    {
        CFrameSource::ReplaceCamera([this] { return std::make_unique<CFedFrames>(m_pFeed); });
    }
    ~WindowCamera() override
    {
        if (m_pWindow) TouchButton("Btn_SelectToolPaths");
        QCoreApplication::processEvents();   // what the camera has posted
        Close();
        CFrameSource::ReplaceCamera(nullptr);
    }
    QImage View() { return Child<CMyView>(Window(), "m_ToolPathView").grab().toImage(); }
    QColor Middle()
    {
        const QImage view = View();
        return view.pixelColor(view.rect().center());
    }
    bool ShowsCamera() { return Middle().blue() == 200 && Middle().green() == 100; }
    bool IsGreen(const char* szButton) { return Button(szButton).styleSheet() == BTN_BKGND_GREEN; }
    QString File() { return m_Home.filePath("work"); }
    // Opens the settings of a recording, whose dialog is answered by the given steps.
    void Record(const CAnswer::Fn& fnDialog)
    {
        CAnswer answer(fnDialog);
        TouchButton("Btn_CameraRecStop");
    }

    std::shared_ptr<stFeed> m_pFeed = std::make_shared<stFeed>();
};

TEST_F(WindowCamera, AHungOneHoldsNoStopUp)
{
    m_pFeed->bHoldOpen = true;
    Open();
    std::atomic<bool> bActed = false;
    std::thread hand([&] {
        QThread::msleep(100);
        Carriages().PressEmergencyStop(true);
        for (int n = 0; n < 1000 && !bActed; ++n) {
            QThread::msleep(5);
            bActed = AppConfig::m_bEmergencyStopON;
        }
        m_pFeed->goOn.release();
    });
    TouchButton("Btn_SelectCamera");   // opening it hangs until the stop has come through
    hand.join();
    EXPECT_TRUE(bActed && Round("m_BtnStop").IsPressed());
}

TEST_F(WindowCamera, AHungOneKeepsNoSpindleTurningBehindTheWindow)
{
    m_pFeed->bHold = true;
    Open();
    TouchButton("Btn_SpindleCWOnOff");
    TouchButton("Btn_SelectCamera");
    m_pFeed->inRead.acquire();   // where it hangs
    const int iRelay = AppConfig::m_lstMCodesPin[3];
    std::atomic<bool> bOpened = false;
    std::thread hand([&] {
        for (int n = 0; n < 400 && !bOpened; ++n) {
            QThread::msleep(5);
            bOpened = CVirtualPins::Level(iRelay) == 0;
        }
        m_pFeed->goOn.release();
    });
    Close();
    hand.join();
    EXPECT_TRUE(bOpened);
}

TEST_F(WindowCamera, TakesThePictureAreaUntilItIsPulledOut)
{
    m_pFeed->bOpens = false;
    Open();
    const QColor box = Middle();
    const QImage empty = View();
    TouchButton("Btn_SelectCamera");
    EXPECT_EQ(Log().value(0), "unable to open Camera");
    EXPECT_TRUE(WaitFor([this] { return !IsGreen("Btn_SelectCamera"); }));
    EXPECT_FALSE(Button("Btn_CameraRecStop").isEnabled());

    m_pFeed->bOpens = true;
    m_pFeed->iFrames = 1 << 30;
    TouchButton("Btn_SelectCamera");
    EXPECT_TRUE(WaitFor([this] { return ShowsCamera(); }));
    EXPECT_TRUE(IsGreen("Btn_SelectCamera") && !IsGreen("Btn_SelectToolPaths"));
    TouchButton("Btn_SelectCamera");
    Window().ClearToolGraphics();   // drawn, and not shown
    EXPECT_TRUE(ShowsCamera());
    SaveScreen(Window(), "camera");

    ClearLog();
    m_pFeed->iFrames = 0;
    EXPECT_TRUE(WaitFor([this] { return IsGreen("Btn_SelectToolPaths"); }));
    QTest::qWait(50);
    EXPECT_EQ(Log(), QStringList("Camera Connection Lost"));
    EXPECT_FALSE(ShowsCamera() || IsGreen("Btn_SelectCamera") || Button("Btn_CameraRecStop").isEnabled());

    m_pFeed->iFrames = 1 << 30;
    TouchButton("Btn_SelectCamera");
    EXPECT_TRUE(WaitFor([this] { return ShowsCamera(); }));
    Window().DrawToolPaths();
    TouchButton("Btn_SelectToolPaths");
    EXPECT_EQ(Middle(), box) << "the tool paths are back without a job";
    QTest::qWait(50);   // the frame that was on its way
    EXPECT_NE(View(), empty) << "the tool's path, and not wiped";
    EXPECT_TRUE(IsGreen("Btn_SelectToolPaths") && !IsGreen("Btn_SelectCamera"));
}

TEST_F(WindowCamera, IsRecordedToAFileThatStaysToBeClosedWhenItIsLost)
{
    m_pFeed->iFrames = 1 << 30;
    Open();
    TouchButton("Btn_SelectCamera");
    Record([](QWidget& dialog) { Click(dialog, "Btn_Cancel"); });
    EXPECT_TRUE(Button("Btn_SelectToolPaths").isEnabled());

    Record([this](QWidget& dialog) {
        EXPECT_TIDY(dialog);
        const auto Fps = [&dialog](const QString& strKeys) {
            CAnswer answer(CAnswer::Keys(strKeys));
            Click(dialog, "Btn_VideoRecFps");
            return Child(dialog, "Btn_VideoRecFps").text();
        };
        EXPECT_EQ(Fps("C10"), "16\nFrames/Sec");
        EXPECT_EQ(Fps("C30"), "25\nFrames/Sec");
        {
            CAnswer file(CAnswer::File(File()));
            Click(dialog, "Btn_BrowseVideoRecFile");
        }
        EXPECT_TRUE(Child<QLabel>(dialog, "Lbl_VideoRecFile").text().endsWith("work.avi"));
        SaveScreen(dialog, "video_recording");
        Click(dialog, "Btn_Ok");
    });
    EXPECT_FALSE(Button("Btn_SelectToolPaths").isEnabled()) << "the camera is not left while it records";
    QTest::qWait(100);
    m_pFeed->iFrames = 0;
    EXPECT_TRUE(WaitFor([this] { return Logged("Camera Connection Lost"); }));
    EXPECT_TRUE(Button("Btn_CameraRecStop").isEnabled());
    m_pFeed->bOpens = false;
    TouchButton("Btn_SelectCamera");   // still unplugged
    m_pFeed->bOpens = true;
    TouchButton("Btn_CameraRecStop");
    EXPECT_FALSE(Button("Btn_CameraRecStop").isEnabled());
    EXPECT_TRUE(Button("Btn_SelectToolPaths").isEnabled());
    EXPECT_TRUE(cv::VideoCapture((File() + ".avi").toStdString()).isOpened());

    m_pFeed->iFrames = 1 << 30;
    TouchButton("Btn_SelectCamera");
    Record([this](QWidget& dialog) {
        {
            CAnswer old(CAnswer::File(File())), no(QMessageBox::No);   // ".avi" has been recorded
            Click(dialog, "Btn_BrowseVideoRecFile");
        }
        CAnswer file(CAnswer::File(m_Home.filePath("no/such")));
        Click(dialog, "Btn_BrowseVideoRecFile");
        Click(dialog, "Btn_Ok");
    });
    EXPECT_EQ(Log().value(0), "Could not open the output video file for write\n");
    EXPECT_TRUE(Button("Btn_SelectToolPaths").isEnabled());
}
