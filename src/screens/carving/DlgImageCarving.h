#pragma once
#include "screens/host/ScreenHost.h"
#include "widgets/MyView.h"

#include <QDialog>
#include <QImage>

#include <memory>

struct stImgCarvingData;
struct stImgCarvingInfo;
struct stNumberField;
namespace Ui {
class CDlgImageCarving;
}

// The screen of a relief: loads a picture, sets up the job in the worker's own record, and carves it or writes it as
// G-code. The window is its parent before ConfigSettings. Interface thread.
class CDlgImageCarving : public QDialog
{
    Q_OBJECT

public:
    explicit CDlgImageCarving(QWidget* pParent = nullptr);
    ~CDlgImageCarving() override;

    void ConfigSettings();
    void UpdatePlungeFeed();   // the two buttons of the tool, which other screens change too
    void ResetUI(bool bEnable);

    // True: the job has been started. False: refused, with a line in the log.
    bool StartImgCarving();
    // With the start row marked, or in a job the row reached. The image stays the caller's, and is copied.
    void DisplayImage(QImage* pImage, bool bInJob);
    // Called by the window's timer during a job: shows the row where it has changed.
    void FollowCarving();

    void reject() override {}   // Escape must not hide a screen

private slots:
    void on_Btn_LoadImage_clicked();
    void on_Btn_GenerateGCode_clicked();
    void on_Btn_ImgCarvingLength_clicked();
    void on_Btn_ImgCarvingWidth_clicked();
    void on_Btn_ImgCarvingDepth_clicked();
    void on_Btn_ImgCarvingStep_X_clicked();
    void on_Btn_ImgCarvingStep_Y_clicked();
    void on_Btn_ImgCarvingStep_Z_clicked();
    void on_Btn_CarvingStrartRow_clicked();
    void on_Btn_CarvingTypeSel_clicked();
    void on_Btn_MultipassCarving_clicked();
    void on_Btn_ZAxisPlungeFeed_clicked();
    void on_Btn_EndMillDia_clicked();

private:
    CScreenHost& Host() const { return HostOf(*this); }
    void LogError(const QString& strText) { Host().AddLogMsg(strText, MSG_ERROR); }
    stImgCarvingData& Data() const;
    stImgCarvingInfo& Info() const;
    bool HasImage(const QString& strElse);   // and says so

    void ShowJob();
    void ShowSizes();
    void ShowMultipass();
    void TellSteps();   // that are odd
    void LoadImageFrom(const QString& strPath);
    void AskSide(QPushButton* pButton, const stNumberField& field, double stImgCarvingInfo::*pSide,
                 bool (*fnFit)(stImgCarvingInfo&, const QImage&));
    void AskPixelStep(QPushButton* pButton, const stNumberField& field, double& fStep);
    void MarkRow(int iRow, const QColor& color);

    std::unique_ptr<Ui::CDlgImageCarving> m_pUi;
    CMyView m_View{this};
    QImage m_Shown, m_Strip;   // the picture in colours; what is under the mark
    int m_iStripRow = 0;
    QString m_strFilter;       // the kind of picture chosen last
    quint16 m_iShownRow = 0;   // the last one of a job
    quint32 m_uShownPass = 0, m_uPasses = 1;
    bool m_bEnableWanted = true;
};
