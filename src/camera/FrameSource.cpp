#include "camera/FrameSource.h"

#include <opencv2/videoio.hpp>

namespace {
class CCameraSource : public CFrameSource
{
public:
    bool Open() override { return m_Capture.open(0, cv::CAP_ANY); }
    bool Read(cv::Mat& frame) override { return m_Capture.read(frame); }
    void Release() override { m_Capture.release(); }
    double Get(int iProperty) const override { return m_Capture.get(iProperty); }

private:
    cv::VideoCapture m_Capture;
};
}   // namespace

static std::function<std::unique_ptr<CFrameSource>()> g_fnMake;

std::unique_ptr<CFrameSource> CFrameSource::Camera()
{
    return g_fnMake ? g_fnMake() : std::make_unique<CCameraSource>();
}

void CFrameSource::ReplaceCamera(std::function<std::unique_ptr<CFrameSource>()> fnMake)
{
    g_fnMake = std::move(fnMake);
}
