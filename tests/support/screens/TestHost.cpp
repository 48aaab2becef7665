#include "support/screens/TestHost.h"

#include "support/screens/ScreenSupport.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"

#include <algorithm>

CTestHost::CTestHost()
{
    setStyleSheet(QStringLiteral("CTestHost {background-color: rgb(60, 60, 60);}"));
    setFixedSize(1250, 840);
}

CTestHost::~CTestHost()
{
    m_Machine.StopAll();
    m_Machine.wait();
    // Screens are members of the test, not of the host: they outlive it or go before it, and are never deleted by it.
    for (QObject* pChild : QList<QObject*>(children()))
        if (QWidget* pScreen = qobject_cast<QWidget*>(pChild)) pScreen->setParent(nullptr);
    EXPECT_TRUE(m_lstAnswers.empty()) << "a keypad was expected to open";
}

void CTestHost::Place(QWidget& screen, QPoint at)
{
    screen.setParent(this);
    screen.move(at);
    screen.show();
    ShowWindow(*this);
}

QStringList CTestHost::TakeLog()
{
    QStringList texts;
    for (const stLog& line : std::exchange(m_lstLog, {})) texts.append(line.strText);
    return texts;
}

bool CTestHost::IsEmergencyStopOn()
{
    if (AppConfig::m_bEmergencyStopON) AddLogMsg(QStringLiteral("Release Emergency Switch"), MSG_ERROR);
    return AppConfig::m_bEmergencyStopON;
}

void CTestHost::ResetBtnBkGnd(QPushButton* pButton, const QString& strStyle)
{
    QTimer::singleShot(150, pButton, [pButton, strStyle] { pButton->setStyleSheet(strStyle); });
}

double CTestHost::OpenKeypad(QPushButton* pButton, const QString& strTitle, const QString& strCtrlTxt,
                             const QString& strValue, stFloatPoint fRange, bool bShowSign, quint16 iPrecision)
{
    m_lstKeypads.push_back({pButton, strTitle, strCtrlTxt, strValue, fRange.x, fRange.y, bShowSign, iPrecision});
    double fResult = strValue.toDouble();
    if (m_lstAnswers.empty()) {
        ADD_FAILURE() << "unexpected keypad: " << strTitle.toStdString();
    } else {
        fResult = m_lstAnswers.front().value_or(fResult);
        m_lstAnswers.pop_front();
    }
    const bool bChecked = fRange.x != 0.0 || fRange.y != 0.0;
    if (bChecked && (fResult < fRange.x || fResult > fRange.y)) {
        AddLogMsg("Value must be between\n" + QString::number(fRange.x, 'f', 4) + " and " +
                      QString::number(fRange.y, 'f', 4),
                  MSG_ERROR);
        fResult = std::clamp(fResult, fRange.x, fRange.y);
    }
    if (pButton) {
        const QString strNumber = QString::number(fResult, 'f', iPrecision);
        pButton->setText(strCtrlTxt.isEmpty() ? strNumber : strNumber + '\n' + strCtrlTxt);
        pButton->setStyleSheet(BTN_BKGND_GRAY);
    }
    return fResult;
}
