#include "screens/shapes/DlgShapeFromImg.h"

#include "common/Paths.h"
#include "common/PictureFile.h"
#include "config/AppConfig.h"
#include "screens/host/PressedBtn.h"
#include "shapes/PictureTrace.h"
#include "ui_DlgShapeFromImg.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"

#include <QFileDialog>

#include <opencv2/imgcodecs.hpp>

static constexpr double FARTHEST = 1000000000.0, LARGEST = 100000000.0, MOST_VERTICES = 1000000000.0;
static constexpr double DEEPEST = -1000.0, WHITE = 255.0;

CDlgShapeFromImg::CDlgShapeFromImg(CShapeHost& screen, QWidget* pParent)
    : CDlgShapeSource(screen, pParent), m_pUi(std::make_unique<Ui::CDlgShapeFromImg>())
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_ShapesFound->setStyleSheet(CLook::VALUE_STYLE);   // a counter, not to be pressed
    m_pUi->Btn_ShapesFound->setAttribute(Qt::WA_TransparentForMouseEvents);
}

CDlgShapeFromImg::~CDlgShapeFromImg() = default;

void CDlgShapeFromImg::ConfigSettings()
{
    m_stImgOffset.y = 0.0;
    m_stImgOffset.x = 0.0;
    ShowNumber(m_pUi->Btn_ShapeOffsetPosX, {.strCaption = QStringLiteral("Offset X")}, m_stImgOffset.x);
    ShowNumber(m_pUi->Btn_ShapeOffsetPosY, {.strCaption = QStringLiteral("Offset Y")}, m_stImgOffset.y);
    m_pUi->Btn_ShapesFound->setText(QStringLiteral("0\nShapes Found"));
}

// ---- Tracing --------------------------------------------------------------------------------------------------------

void CDlgShapeFromImg::FindContours()
{
    if (m_Img.rows == 0 || m_Img.cols == 0) return;
    Job().EraseAdded();
    const stPictureToTrace picture{.img = m_Img,
                                   .stImgOffset = m_stImgOffset,
                                   .uThreshold = m_uThreshold,
                                   .uMinVertices = m_uMinVertices,
                                   .uMaxVertices = m_uMaxVertices,
                                   .fShapeLength = m_fShapeLength,
                                   .fShapeWidth = m_fShapeWidth};
    std::vector<ShapePath> lstPaths;
    try {
        lstPaths = TracePicture(picture);
    } catch (const cv::Exception&) {   // its copies are more than the computer holds
        m_Img.release();
        LogError(QStringLiteral("The image is too large to be traced"));
    }
    for (ShapePath& path : lstPaths) {
        const QString strName = m_strImgName + QStringLiteral("_%1").arg(Job().Added().size());
        Job().AddPolygon(strName, std::move(path)).fDepth = m_fShapeDepth;
    }
    m_pUi->Btn_ShapesFound->setText(QString::number(Job().Added().size()) + QStringLiteral("\nShapes Found"));
    Screen().DrawWorkArea();
}

void CDlgShapeFromImg::Retrace(QPushButton* pPressed)
{
    const CPressedBtn press(Host(), pPressed);
    FindContours();
}

void CDlgShapeFromImg::on_Btn_LoadImage_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_LoadImage);
    const QString strPath = QFileDialog::getOpenFileName(this, QStringLiteral("Select a file to Open..."),
                                                         CPaths::Map(AppConfig::m_strLastFolderPath), PICTURE_FILTER,
                                                         nullptr, QFileDialog::DontUseNativeDialog);
    if (strPath.isEmpty()) return;
    AppConfig::m_strLastFolderPath = strPath.left(strPath.lastIndexOf(QLatin1Char('/')) + 1);
    m_pUi->Btn_LoadImage->repaint();
    LoadImage(strPath);
    FindContours();
}

void CDlgShapeFromImg::LoadImage(const QString& strPath)
{
    m_Img.release();
    QString strWhy = WhyNotWhole(strPath);
    try {
        if (strWhy.isEmpty()) m_Img = cv::imread(strPath.toStdString(), cv::IMREAD_GRAYSCALE);
    } catch (const cv::Exception&) {   // what it throws is the size, before it reads the first line
        strWhy = QStringLiteral("It is too large: tracing reads %1 rows and columns, %2 pixels, and no more than the "
                                "memory of this computer holds")
                     .arg(1 << 20)
                     .arg(1 << 30);
    }
    if (m_Img.empty())
        return LogError(QStringLiteral("Unable to load the image\n") + strPath +
                        (strWhy.isEmpty() ? strWhy : QLatin1Char('\n') + strWhy));
    if (m_Img.channels() > 1) LogError(QStringLiteral("Only Greyscale Images are allowed"));
    const QString strFile = strPath.mid(strPath.lastIndexOf(QLatin1Char('/')) + 1);
    m_strImgName = strFile.left(strFile.lastIndexOf(QLatin1Char('.')));
    m_pUi->Lbl_Picture->setText(
        QStringLiteral("%1\n%2 by %3 pixels").arg(strFile.left(40)).arg(m_Img.cols).arg(m_Img.rows));
}

// ---- Numbers --------------------------------------------------------------------------------------------------------

std::optional<double> CDlgShapeFromImg::Ask(QPushButton* pButton, const QString& strTitle, const QString& strName,
                                            stFloatPoint range, double fValue, quint16 iDecimals)
{
    return AskNumber(Host(), pButton,
                     {.strTitle = strTitle,
                      .strCaption = strName,
                      .fRange = range,
                      .bSign = pButton == m_pUi->Btn_ShapeDepth,
                      .iDecimals = iDecimals},
                     fValue);
}

void CDlgShapeFromImg::on_Btn_ImgThreshold_clicked()
{
    const auto fNew = Ask(m_pUi->Btn_ImgThreshold, QStringLiteral("Threshold"), QStringLiteral("Threshold"),
                          Range(0.0, WHITE), m_uThreshold, 0);
    if (!fNew) return;
    m_uThreshold = static_cast<quint16>(*fNew);
    Retrace(m_pUi->Btn_ImgThreshold);
}

void CDlgShapeFromImg::on_Btn_ShapeOffsetPosX_clicked()
{
    const auto fNew = Ask(m_pUi->Btn_ShapeOffsetPosX, QStringLiteral("Offset X"), QStringLiteral("Offset X"),
                          Range(0.0, FARTHEST), m_stImgOffset.x);
    if (!fNew) return;
    m_stImgOffset.x = *fNew;
    Retrace(m_pUi->Btn_ShapeOffsetPosX);
}

void CDlgShapeFromImg::on_Btn_ShapeOffsetPosY_clicked()
{
    const auto fNew = Ask(m_pUi->Btn_ShapeOffsetPosY, QStringLiteral("Offset Y"), QStringLiteral("Offset Y"),
                          Range(0.0, FARTHEST), m_stImgOffset.y);
    if (!fNew) return;
    m_stImgOffset.y = *fNew;
    Retrace(m_pUi->Btn_ShapeOffsetPosY);
}

void CDlgShapeFromImg::on_Btn_MinShapeSize_clicked()
{
    const auto fNew = Ask(m_pUi->Btn_MinShapeSize, QStringLiteral("Min Shape Size"), QStringLiteral("Min Vertices"),
                          Range(1.0, m_uMaxVertices), m_uMinVertices, 0);
    if (!fNew) return;
    m_uMinVertices = static_cast<quint32>(*fNew);
    Retrace(m_pUi->Btn_MinShapeSize);
}

void CDlgShapeFromImg::on_Btn_MaxShapeSize_clicked()
{
    const auto fNew = Ask(m_pUi->Btn_MaxShapeSize, QStringLiteral("Max Shape Size"), QStringLiteral("Max Vertices"),
                          Range(m_uMinVertices, MOST_VERTICES), m_uMaxVertices, 0);
    if (!fNew) return;
    m_uMaxVertices = static_cast<quint32>(*fNew);
    Retrace(m_pUi->Btn_MaxShapeSize);
}

// Stored as whole millimetres: wanted, whatever the button shows.
void CDlgShapeFromImg::on_Btn_ShapeLength_clicked()
{
    const auto fNew = Ask(m_pUi->Btn_ShapeLength, QStringLiteral("Shape Length"), QStringLiteral("Length"),
                          Range(AppConfig::m_fAxisMovPerPulse[X_AXIS], LARGEST), m_fShapeLength);
    if (!fNew) return;
    m_fShapeLength = static_cast<quint32>(*fNew);
    Retrace(m_pUi->Btn_ShapeLength);
}

void CDlgShapeFromImg::on_Btn_ShapeWidth_clicked()
{
    const auto fNew = Ask(m_pUi->Btn_ShapeWidth, QStringLiteral("Shape Width"), QStringLiteral("Width"),
                          Range(AppConfig::m_fAxisMovPerPulse[Y_AXIS], LARGEST), m_fShapeWidth);
    if (!fNew) return;
    m_fShapeWidth = static_cast<quint32>(*fNew);
    Retrace(m_pUi->Btn_ShapeWidth);
}

void CDlgShapeFromImg::on_Btn_ShapeDepth_clicked()
{
    const auto fNew = Ask(m_pUi->Btn_ShapeDepth, QStringLiteral("Shape Depth"), QStringLiteral("Depth"),
                          DepthRange(DEEPEST), m_fShapeDepth);
    if (!fNew) return;
    m_fShapeDepth = *fNew;
    Job().SetAddedDepth(m_fShapeDepth);
}

// ---- End ------------------------------------------------------------------------------------------------------------

void CDlgShapeFromImg::Keep()
{
    Finish();
}

void CDlgShapeFromImg::on_Btn_Ok_clicked()
{
    Keep();
}

void CDlgShapeFromImg::on_Btn_Cancel_clicked()
{
    Job().EraseAdded();
    Screen().DrawWorkArea();
    Finish();
}
