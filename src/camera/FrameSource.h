#pragma once
#include <functional>
#include <memory>

namespace cv {
class Mat;
}

// Where frames come from, as the capture thread sees it: a camera, in tests whatever feeds it. May throw from every
// call, as the camera's library does.
class CFrameSource
{
public:
    virtual ~CFrameSource() = default;

    virtual bool Open() = 0;
    virtual bool Read(cv::Mat& frame) = 0;   // waits for the next frame; BGR
    virtual void Release() = 0;
    virtual double Get(int iProperty) const = 0;   // by OpenCV's numbers: 3 width, 4 height, 6 format code

    // The first camera of the computer, or what stands in for it.
    static std::unique_ptr<CFrameSource> Camera();
    static void ReplaceCamera(std::function<std::unique_ptr<CFrameSource>()> fnMake);   // null: the computer's again
};
