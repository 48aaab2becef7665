#pragma once
#include "preview/ToolPathPicture.h"

#include <QImage>
#include <QString>

class CCncCamera;
class CMyView;
class CScreenHost;
class QPushButton;
class QWidget;

// The picture at the lower left: the path of the tool on the work piece, or what the camera sees, which can be
// recorded. The path is drawn on while the camera is shown. Interface thread.
class CPicturePanel
{
public:
    struct stWidgets
    {
        CMyView& view;
        QPushButton *pLength, *pWidth, *pHeight, *pToolPaths, *pCamera, *pRecord;
    };
    CPicturePanel(const stWidgets& widgets, CCncCamera& camera, CScreenHost& host)
        : m_Widgets(widgets), m_CncCamera(camera), m_Host(host)
    {
    }
    void SetUp(QWidget* pParent);

    void Clear();
    void Draw();
    void FollowJob();   // draws while a job cuts

    // ---- Size of the work piece ----
    void AskLength();
    void AskWidth();
    void AskHeight();
    void SetHeight(double fHeight);   // mm

    // ---- Camera ----
    void SelectToolPaths();
    void SelectCamera();
    void ToggleRecording();
    void ShowFrame();   // a new one is there, or the camera is lost
    void CloseCamera();

private:
    double AskSize(QPushButton* pButton, const QString& strTitle, const QString& strLabel, double fSize);
    void Show();
    bool StartRecording();

    stWidgets m_Widgets;
    CCncCamera& m_CncCamera;
    CScreenHost& m_Host;
    CToolPathPicture m_Picture;
    QImage m_CameraImage;   // what is shown of the camera
};
