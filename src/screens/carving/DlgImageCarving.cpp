#include "screens/carving/DlgImageCarving.h"

#include "carving/PixelFit.h"
#include "common/Paths.h"
#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "screens/host/PressedBtn.h"
#include "screens/host/SettingsInput.h"
#include "ui_DlgImageCarving.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"
#include "widgets/Questions.h"

#include <QFileDialog>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>

static constexpr QRect VIEW(10, 12, 500, 363);
static constexpr int MARK_ROWS = 3;
static constexpr int WORKER_POLL_MS = 20;
static constexpr int TALL_IMAGE = 2000;   // rows; the worker takes a while before the first move

// As RunCarvingPasses counts them: what is left of less than a hundredth of a micrometre is no pass.
static quint32 PassesOf(const stImgCarvingInfo& info)
{
    return static_cast<quint32>(std::max(1.0, std::ceil((info.fDepth - 1e-5) / info.fZStep)));
}

static QString LoadAnImage()
{
    return QStringLiteral("Please load an image");
}

// ---- The fields -----------------------------------------------------------------------------------------------------

static const stNumberField LENGTH{QStringLiteral("Image Carving Length(mm)"), QStringLiteral("Length"), {10.0, 1e4}};
static const stNumberField WIDTH{QStringLiteral("Image Carving Width(mm)"), QStringLiteral("Width"), {10.0, 1e4}};
static const stNumberField DEPTH{QStringLiteral("Image Carving Depth"), QStringLiteral("Depth"), {}, true};
static const stNumberField X_STEP{QStringLiteral("X Step(mm)"), QStringLiteral("x Step")};
static const stNumberField Y_STEP{QStringLiteral("Y Step(mm)"), QStringLiteral("y Step")};
static const stNumberField Z_STEP{QStringLiteral("Z Step(mm)"), QStringLiteral("z Step")};
static const stNumberField START_ROW{QStringLiteral("Strat Row"), QStringLiteral("Start Row"), {}, false, 0};
static const stNumberField PLUNGE_FEED{QStringLiteral("Plunge Feed(mm/sec)"), QStringLiteral("Plunge Feed")};
static const stNumberField END_MILL{QStringLiteral("End-Mill"), QStringLiteral("End-Mill"), {0.1, 100.0}, false, 1};

static stNumberField Within(stNumberField field, double fLow, double fHigh)
{
    field.fRange = {fLow, fHigh};
    return field;
}

// ---- Set-up ---------------------------------------------------------------------------------------------------------

CDlgImageCarving::CDlgImageCarving(QWidget* pParent) : QDialog(pParent), m_pUi(std::make_unique<Ui::CDlgImageCarving>())
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    for (QLabel* pLabel : {m_pUi->Hdg_Picture, m_pUi->Hdg_Size, m_pUi->Hdg_Steps, m_pUi->Hdg_Way})
        pLabel->setStyleSheet(CLook::HEADING_STYLE);
    m_pUi->Lbl_PixelSize->setStyleSheet(CLook::VALUE_STYLE);
    m_View.setObjectName(QStringLiteral("m_View"));
    m_View.m_colBkGnd = QColor(50, 50, 50, 255);
    m_View.setGeometry(VIEW);
    m_View.EnableZoom(true);
}

CDlgImageCarving::~CDlgImageCarving() = default;

void CDlgImageCarving::ConfigSettings()
{
    UpdatePlungeFeed();
    ShowMultipass();
    ShowJob();
}

void CDlgImageCarving::UpdatePlungeFeed()
{
    ShowNumber(m_pUi->Btn_EndMillDia, END_MILL, AppConfig::m_fEndMillDia);
    ShowNumber(m_pUi->Btn_ZAxisPlungeFeed, PLUNGE_FEED, AppConfig::m_fPlungeFeed);
}

// After a stop the worker may be busy with the picture and the record for a moment: until it has gone nothing changes.
void CDlgImageCarving::ResetUI(bool bEnable)
{
    m_bEnableWanted = bEnable;
    const bool bFree = bEnable && !Host().IsWorkerRunning();
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setEnabled(bFree);
    if (bFree) ShowSizes();   // the steps as the last pass has fitted them
    if (bEnable == bFree) return;
    QTimer::singleShot(WORKER_POLL_MS, this, [this] {
        if (m_bEnableWanted) ResetUI(true);
    });
}

stImgCarvingData& CDlgImageCarving::Data() const
{
    return Host().Machine().m_stImgCarvingData;
}
stImgCarvingInfo& CDlgImageCarving::Info() const
{
    return *Data().pInfo;
}

bool CDlgImageCarving::HasImage(const QString& strElse)
{
    if (!Data().pImage) LogError(strElse);
    return Data().pImage != nullptr;
}

void CDlgImageCarving::ShowJob()
{
    ShowSizes();
    ShowNumber(m_pUi->Btn_ImgCarvingDepth, DEPTH, Info().fDepth);
    ShowNumber(m_pUi->Btn_ImgCarvingStep_Z, Z_STEP, Info().fZStep);
    ShowNumber(m_pUi->Btn_CarvingStrartRow, START_ROW, Info().iStartRow);
    m_pUi->Btn_CarvingTypeSel->setText(Info().iCarvingType == CARVING_3D ? QStringLiteral("3D\nCarving")
                                                                         : QStringLiteral("2.5D\nCarving"));
}

// What follows from the size of a pixel.
void CDlgImageCarving::ShowSizes()
{
    ShowNumber(m_pUi->Btn_ImgCarvingLength, LENGTH, Info().fLength);
    ShowNumber(m_pUi->Btn_ImgCarvingWidth, WIDTH, Info().fWidth);
    ShowNumber(m_pUi->Btn_ImgCarvingStep_X, X_STEP, Info().fXStep);
    ShowNumber(m_pUi->Btn_ImgCarvingStep_Y, Y_STEP, Info().fYStep);
    const QString strPixel =
        Data().pImage ? QString::number(PixelOf(Info(), *Data().pImage), 'g', 6) : QStringLiteral("-");
    m_pUi->Lbl_PixelSize->setText(strPixel + QStringLiteral("\nmm/Pixel"));
}

void CDlgImageCarving::ShowMultipass()
{
    const bool bMulti = AppConfig::m_bMultipassImgCarving;
    m_pUi->Btn_MultipassCarving->setText(bMulti ? QStringLiteral("Multi-pass\nCarving")
                                                : QStringLiteral("Single-pass\nCarving"));
    m_pUi->Btn_MultipassCarving->setStyleSheet(bMulti ? BTN_BKGND_GRAY : BTN_BKGND_GREEN);
}

// ---- The picture ----------------------------------------------------------------------------------------------------

void CDlgImageCarving::on_Btn_LoadImage_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_LoadImage);
    // A worker that was given up may still be making the depths of the picture.
    if (Host().MachineParts().IsWorkerBusy()) return LogError(MACHINE_IN_USE);
    // A picture has square pixels, and the grid one step size.
    if (AppConfig::m_fAxisMovPerPulse[X_AXIS] != AppConfig::m_fAxisMovPerPulse[Y_AXIS])
        return LogError(QStringLiteral("X & Y axis Move/Pulse must be same\nPlease check Machine Settings->Motor"));
    const QString strPath = QFileDialog::getOpenFileName(
        this, QStringLiteral("Select a file to Open..."), CPaths::Map(AppConfig::m_strLastFolderPath),
        QStringLiteral("jpg files(*.jpg);;jpeg files(*.jpeg);;png files(*.png);;bitmap files(*.bmp)"), &m_strFilter,
        QFileDialog::DontUseNativeDialog);
    if (strPath.isEmpty()) return;
    AppConfig::m_strLastFolderPath = strPath.left(strPath.lastIndexOf(QLatin1Char('/')) + 1);
    LoadImageFrom(strPath);
}

// One that can't be read leaves the old one.
void CDlgImageCarving::LoadImageFrom(const QString& strPath)
{
    QString strWhy, strNotice;
    auto pImage = LoadCarvingImage(strPath, strWhy, strNotice);
    if (!pImage) return LogError(strWhy);
    if (!strNotice.isEmpty()) Host().AddLogMsg(strNotice, MSG_NOTICE);
    Data().pImage = std::move(pImage);
    m_pUi->Lbl_RowReached->clear();
    DisplayImage(Data().pImage.get(), false);
    (void)FitToLength(Info(), *Data().pImage);
    ShowSizes();
}

void CDlgImageCarving::DisplayImage(QImage* pImage, bool bInJob)
{
    if (!pImage) return m_View.DisplayImage(nullptr);
    if (bInJob && m_Shown.size() == pImage->size()) {
        if (!m_Strip.isNull()) QPainter(&m_Shown).drawImage(0, m_iStripRow, m_Strip);
    } else {
        m_Shown = pImage->convertToFormat(QImage::Format_RGB32);
    }
    if (bInJob)
        MarkRow(m_iShownRow, QColor(0, 255, 0));
    else
        MarkRow(Info().iStartRow, QColor(0, 255, 255));
    m_View.DisplayImage(&m_Shown);
}

void CDlgImageCarving::MarkRow(int iRow, const QColor& color)
{
    m_iStripRow = std::clamp(iRow, 0, std::max(0, m_Shown.height() - MARK_ROWS));
    const QRect strip(0, m_iStripRow, m_Shown.width(), MARK_ROWS);
    m_Strip = m_Shown.copy(strip.intersected(m_Shown.rect()));
    QPainter(&m_Shown).fillRect(strip, color);
}

void CDlgImageCarving::FollowCarving()
{
    const AppControl& machine = Host().Machine();
    const quint32 uPass = machine.m_uCurCarvingPass;
    const quint16 iRow = machine.m_iCurCarvingRow;
    if (uPass == 0 || (iRow == m_iShownRow && uPass == m_uShownPass)) return;
    m_iShownRow = iRow;
    m_uShownPass = uPass;
    QString strRow = QStringLiteral("Row %1").arg(iRow);
    if (m_uPasses > 1) strRow += QStringLiteral(", pass %1 of %2").arg(uPass).arg(m_uPasses);
    m_pUi->Lbl_RowReached->setText(strRow);
    ShowNumber(m_pUi->Btn_ImgCarvingStep_X, X_STEP, machine.m_fXStepInForce);
    ShowNumber(m_pUi->Btn_ImgCarvingStep_Y, Y_STEP, machine.m_fYStepInForce);
    DisplayImage(Data().pImage.get(), true);
}

// ---- Sizes and steps ------------------------------------------------------------------------------------------------

void CDlgImageCarving::AskSide(QPushButton* pButton, const stNumberField& field, double stImgCarvingInfo::*pSide,
                               bool (*fnFit)(stImgCarvingInfo&, const QImage&))
{
    if (!HasImage(QStringLiteral("Please load an image!"))) return;
    const auto fNew = AskNumber(Host(), pButton, field, Info().*pSide);
    if (!fNew) return;
    Info().*pSide = *fNew;
    if (fnFit(Info(), *Data().pImage))
        Host().AddLogMsg(QStringLiteral("Length and Width adjusted to match\nX & Y Axis Mov/Pulse respectively"),
                         MSG_INFO);
    ShowSizes();
}

void CDlgImageCarving::on_Btn_ImgCarvingLength_clicked()
{
    AskSide(m_pUi->Btn_ImgCarvingLength, LENGTH, &stImgCarvingInfo::fLength, FitToLength);
}
void CDlgImageCarving::on_Btn_ImgCarvingWidth_clicked()
{
    AskSide(m_pUi->Btn_ImgCarvingWidth, WIDTH, &stImgCarvingInfo::fWidth, FitToWidth);
}

void CDlgImageCarving::on_Btn_ImgCarvingDepth_clicked()
{
    const double fMost = AppConfig::m_bHomeSensorsUsed ? std::abs(AppConfig::m_fAxisNegDirLimit[Z_AXIS]) : 1e4;
    const auto field = Within(DEPTH, AppConfig::m_fAxisMovPerPulse[Z_AXIS], fMost);
    if (const auto fNew = AskNumber(Host(), m_pUi->Btn_ImgCarvingDepth, field, Info().fDepth)) Info().fDepth = *fNew;
}

void CDlgImageCarving::AskPixelStep(QPushButton* pButton, const stNumberField& field, double& fStep)
{
    if (!HasImage(LoadAnImage())) return;
    const double fPixel = PixelOf(Info(), *Data().pImage);
    const auto fNew = AskNumber(Host(), pButton, Within(field, fPixel, AppConfig::m_fEndMillDia), fStep);
    if (!fNew) return;
    fStep = *fNew;
    if (!FitStep(fStep, fPixel)) return;
    Host().AddLogMsg(field.strTitle.left(1) +
                         QStringLiteral(" Axis step must be a multiple of Min Step and lesser than End-Mill Dia"),
                     MSG_INFO);
    ShowNumber(pButton, field, fStep);
}

void CDlgImageCarving::on_Btn_ImgCarvingStep_X_clicked()
{
    AskPixelStep(m_pUi->Btn_ImgCarvingStep_X, X_STEP, Info().fXStep);
}
void CDlgImageCarving::on_Btn_ImgCarvingStep_Y_clicked()
{
    AskPixelStep(m_pUi->Btn_ImgCarvingStep_Y, Y_STEP, Info().fYStep);
}

void CDlgImageCarving::on_Btn_ImgCarvingStep_Z_clicked()
{
    const double fPulse = AppConfig::m_fAxisMovPerPulse[Z_AXIS];
    double& fStep = Info().fZStep;
    const auto fNew = AskNumber(Host(), m_pUi->Btn_ImgCarvingStep_Z, Within(Z_STEP, fPulse, 1000.0), fStep);
    if (!fNew) return;
    fStep = *fNew;
    if (!FitStep(fStep, fPulse)) return;
    Host().AddLogMsg(QStringLiteral("Z Axis step must be \na multiple of Z Axis Mov/Pulse"), MSG_INFO);
    ShowNumber(m_pUi->Btn_ImgCarvingStep_Z, Z_STEP, fStep);
}

void CDlgImageCarving::on_Btn_CarvingStrartRow_clicked()
{
    if (!HasImage(LoadAnImage())) return;
    const auto field = Within(START_ROW, 0.0, Data().pImage->height());
    const auto fNew = AskNumber(Host(), m_pUi->Btn_CarvingStrartRow, field, Info().iStartRow);
    if (!fNew) return;
    Info().iStartRow = static_cast<quint16>(std::lround(*fNew));
    DisplayImage(Data().pImage.get(), false);
}

// ---- Way and tool ---------------------------------------------------------------------------------------------------

void CDlgImageCarving::on_Btn_CarvingTypeSel_clicked()
{
    if (!HasImage(LoadAnImage())) return;
    Info().iCarvingType = 1 - Info().iCarvingType;
    ShowJob();
}

void CDlgImageCarving::on_Btn_MultipassCarving_clicked()
{
    AppConfig::m_bMultipassImgCarving = !AppConfig::m_bMultipassImgCarving;
    ShowMultipass();
}

void CDlgImageCarving::on_Btn_ZAxisPlungeFeed_clicked()
{
    const auto field = Within(PLUNGE_FEED, AppConfig::m_fAxisMovPerPulse[Z_AXIS], AppConfig::m_fUserAxisFeed[Z_AXIS]);
    if (const auto fNew = AskNumber(Host(), m_pUi->Btn_ZAxisPlungeFeed, field, AppConfig::m_fPlungeFeed))
        AppConfig::m_fPlungeFeed = *fNew;
}

void CDlgImageCarving::on_Btn_EndMillDia_clicked()
{
    if (const auto fNew = AskNumber(Host(), m_pUi->Btn_EndMillDia, END_MILL, AppConfig::m_fEndMillDia))
        AppConfig::m_fEndMillDia = *fNew;
}

// ---- Start and export -----------------------------------------------------------------------------------------------

bool CDlgImageCarving::StartImgCarving()
{
    if (Host().IsEmergencyStopOn()) return false;
    if (Host().IsWorkerRunning()) return !Host().Refused(MACHINE_IN_USE);   // after a stop, with the old picture
    if (Host().Refused(Host().WhyNotFree()) || Host().Refused(Host().WhyNotHomed()) ||
        Host().Refused(WhyNotStarted(Data())))
        return false;
    TellSteps();
    ResetUI(false);
    m_uShownPass = 0;
    m_uPasses = AppConfig::m_bMultipassImgCarving ? PassesOf(Info()) : 1;
    m_pUi->Lbl_RowReached->clear();
    Data().ppRows.Free();
    Info().ppZMap.Free();
    if (Data().pImage->height() > TALL_IMAGE)
        Host().AddLogMsg(QStringLiteral("Large Image, Please Wait!\nCreating tool Paths will take time "), MSG_INFO);
    Host().ClearToolGraphics();
    DisplayImage(Data().pImage.get(), false);
    if (Host().Machine().StartImgCarving()) return true;
    ResetUI(true);   // refused; the worker has said why
    return false;
}

void CDlgImageCarving::TellSteps()
{
    const QString strNotice = NoticeOfSteps(Data(), AppConfig::m_bMultipassImgCarving);
    if (!strNotice.isEmpty()) Host().AddLogMsg(strNotice, MSG_NOTICE);
}

static bool HasProgramEnding(const QString& strPath)
{
    return strPath.endsWith(QLatin1String(".txt"), Qt::CaseInsensitive) ||
           strPath.endsWith(QLatin1String(".ncc"), Qt::CaseInsensitive);
}

void CDlgImageCarving::on_Btn_GenerateGCode_clicked()
{
    CPressedBtn press(Host(), m_pUi->Btn_GenerateGCode);
    if (!HasImage(LoadAnImage())) return;
    if (const QString strWhy = WhyNotCarved(Data()); !strWhy.isEmpty()) return LogError(strWhy);
    m_pUi->Btn_GenerateGCode->setStyleSheet(BTN_BKGND_BLUE);
    const QString strTyped = QFileDialog::getSaveFileName(
        this, QStringLiteral("Select a file to Save..."), CPaths::Map(AppConfig::m_strLastFolderPath),
        QStringLiteral("text files(*.txt);;G-Code files(*.ncc)"), nullptr, QFileDialog::DontUseNativeDialog);
    if (strTyped.isEmpty()) return;
    const QString strPath = HasProgramEnding(strTyped) ? strTyped : strTyped + QStringLiteral(".txt");
    if (!MayReplace(this, strTyped, strPath)) return;
    TellSteps();
    (void)Host().Machine().CreateGCodeFromImage(strPath);
    ShowSizes();
    // Whatever came of it: wanted, a failure has its own line.
    Host().AddLogMsg(QStringLiteral("G-Code File Generated"), MSG_INFO);
}
