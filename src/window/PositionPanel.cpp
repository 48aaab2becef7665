#include "window/PositionPanel.h"

#include "config/AppConfig.h"
#include "motion/MachineAxes.h"
#include "widgets/Look.h"

#include <QLabel>
#include <QRegularExpression>

#include <cmath>

static constexpr double SHOWN_AS_ZERO = 1e-5;   // mm, so that no "-0.0000" flickers

void CPositionPanel::SetUp(const QWidget& frame)
{
    for (QLabel* pLetter : frame.findChildren<QLabel*>(QRegularExpression(QStringLiteral("^Lbl_Axis_"))))
        pLetter->setFont(CLook::Font(24, true));
}

void CPositionPanel::Show()
{
    QString strText;
    for (int axis = 0; axis < MAX_AXES; ++axis) {
        double fPos = m_Machine.m_AxisCtrl[axis].GetCurPos();
        if (std::fabs(fPos) < SHOWN_AS_ZERO) fPos = 0.0;
        const bool bExists = AppConfig::m_iMchType != 3 || axis <= Z_AXIS;
        strText += bExists ? QString::number(fPos, 'f', PRECISION) : QStringLiteral("NA");
        strText += QLatin1Char('\n');
    }
    strText.chop(1);
    m_Positions.setText(strText);
}
