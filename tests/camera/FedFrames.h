#pragma once
#include "camera/FrameSource.h"

#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <opencv2/videoio.hpp>

// What the sources of a test share with it, from both threads.
struct stFeed
{
    std::atomic<int> iFrames = 0;   // that may be read before the camera is pulled out
    std::atomic<int> iReads = 0, iReleases = 0;
    std::atomic<bool> bOpens = true, bHold = false, bHoldOpen = false;
    QSemaphore inRead, goOn;   // of a read that is held
};

// Frame n is one colour: red n, green 100, blue 200. Behind the last one the library throws.
class CFedFrames : public CFrameSource
{
public:
    explicit CFedFrames(std::shared_ptr<stFeed> pFeed) : m_pFeed(std::move(pFeed)) {}
    bool Open() override
    {
        if (m_pFeed->bHoldOpen) m_pFeed->goOn.acquire();
        return m_pFeed->bOpens;
    }
    bool Read(cv::Mat& frame) override
    {
        if (m_pFeed->bHold) {
            m_pFeed->inRead.release();
            m_pFeed->goOn.acquire();
        }
        const int iFrame = m_pFeed->iReads++;
        if (iFrame >= m_pFeed->iFrames) throw std::runtime_error("unplugged");
        frame = cv::Mat(48, 64, CV_8UC3, cv::Scalar(200, 100, iFrame));
        return true;
    }
    void Release() override { ++m_pFeed->iReleases; }
    double Get(int iProperty) const override
    {
        if (iProperty == cv::CAP_PROP_FRAME_WIDTH) return 64;
        return iProperty == cv::CAP_PROP_FRAME_HEIGHT ? 48 : cv::VideoWriter::fourcc('M', 'J', 'P', 'G');
    }

private:
    std::shared_ptr<stFeed> m_pFeed;
};
