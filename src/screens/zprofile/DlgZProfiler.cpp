#include "screens/zprofile/DlgZProfiler.h"

#include "config/AppConfig.h"
#include "screens/host/ScreenHost.h"
#include "ui_DlgZProfiler.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"

static constexpr int DECIMALS = 4;

static void ShowValue(QPushButton* pButton, double fValue, const QString& strLabel)
{
    pButton->setText(QString::number(fValue, 'f', DECIMALS) + QLatin1Char('\n') + strLabel);
}

// No range is imposed: all limits are zero.
static void AskValue(const QObject& dialog, QPushButton* pButton, double& fValue, const QString& strLabel)
{
    fValue = HostOf(dialog).OpenKeypad(pButton, strLabel, strLabel, QString::number(fValue, 'f', DECIMALS),
                                       stFloatPoint(), true, DECIMALS);
}

dlgZProfiler::dlgZProfiler(QWidget* pParent) : QDialog(pParent), m_pUi(std::make_unique<Ui::dlgZProfiler>())
{
    m_pUi->setupUi(this);
    setStyleSheet(CLook::WINDOW_STYLE);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
}

dlgZProfiler::~dlgZProfiler() = default;

static const QString LENGTH = QStringLiteral("Length"), WIDTH = QStringLiteral("Width"),
                     XY_STEP = QStringLiteral("X-Y Step"), Z_RANGE = QStringLiteral("Z Range"),
                     Z_OFFSET = QStringLiteral("Z Offset");

void dlgZProfiler::ConfigSettings()
{
    const stZProfileInfo& info = AppConfig::m_ZProfileInfo;
    ShowValue(m_pUi->Btn_Length, info.fLength, LENGTH);
    ShowValue(m_pUi->Btn_Width, info.fWidth, WIDTH);
    ShowValue(m_pUi->Btn_XYStep, info.fXYStep, XY_STEP);
    ShowValue(m_pUi->Btn_Z_Max_Range, info.fZRange, Z_RANGE);
    ShowValue(m_pUi->Btn_Z_Offset, info.fZStart, Z_OFFSET);
}

void dlgZProfiler::on_Btn_XYStep_clicked()
{
    AskValue(*this, m_pUi->Btn_XYStep, AppConfig::m_ZProfileInfo.fXYStep, XY_STEP);
}
void dlgZProfiler::on_Btn_Z_Max_Range_clicked()
{
    AskValue(*this, m_pUi->Btn_Z_Max_Range, AppConfig::m_ZProfileInfo.fZRange, Z_RANGE);
}
void dlgZProfiler::on_Btn_Length_clicked()
{
    AskValue(*this, m_pUi->Btn_Length, AppConfig::m_ZProfileInfo.fLength, LENGTH);
}
void dlgZProfiler::on_Btn_Width_clicked()
{
    AskValue(*this, m_pUi->Btn_Width, AppConfig::m_ZProfileInfo.fWidth, WIDTH);
}
void dlgZProfiler::on_Btn_Z_Offset_clicked()
{
    AskValue(*this, m_pUi->Btn_Z_Offset, AppConfig::m_ZProfileInfo.fZStart, Z_OFFSET);
}

void dlgZProfiler::on_Btn_Ok_clicked()
{
    accept();
}
void dlgZProfiler::on_Btn_Cancel_clicked()
{
    reject();
}
