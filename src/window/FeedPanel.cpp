#include "window/FeedPanel.h"

#include "config/AppConfig.h"
#include "machine/Machine.h"
#include "machine/MotorSettings.h"
#include "screens/host/ScreenHost.h"
#include "widgets/DlgMyHorizSlideBar.h"

#include <QMutexLocker>

#include <algorithm>

static constexpr int LOWEST_FEED = 10, HIGHEST_FEED = 150;   // percent
static constexpr QPoint SHOWN_BAR(75, 15), HIDDEN_BAR(75, 40);

// The bar of the rapid feed stays hidden: its slot runs where its value is set by code.
void CFeedPanel::SetUp(QWidget* pFrame)
{
    m_G01FeedBar.setParent(pFrame);
    m_G01FeedBar.setObjectName(QStringLiteral("m_G01FeedBar"));
    m_G01FeedBar.move(SHOWN_BAR);
    m_G01FeedBar.show();
    m_G00FeedBar.setParent(pFrame);
    m_G00FeedBar.setObjectName(QStringLiteral("m_G00FeedBar"));
    m_G00FeedBar.move(HIDDEN_BAR);
    m_G00FeedBar.hide();
    m_G01FeedBar.setValue(qRound(AppConfig::m_fAxisFeedPercent[X_AXIS] * 100.0));
    m_G00FeedBar.setValue(qRound(AppConfig::m_fAxisFeedPercent[Z_AXIS] * 100.0));
}

// A worker that a stop has ended may still be leaving: it plans nothing more.
bool CFeedPanel::MayRebuild() const
{
    const CMachine& machine = m_Host.MachineParts();
    return machine.m_eOperation == OP_NONE && machine.m_AxisCommands.IsMachineIdle();
}

void CFeedPanel::SetFeed(short iPercentage)
{
    const QMutexLocker lock(&m_mtxFeed);
    CMotorSettings(m_Host.MachineParts()).SetFeedOverride(iPercentage, MayRebuild());
}

void CFeedPanel::SetRapid(short iPercentage)
{
    const QMutexLocker lock(&m_mtxFeed);
    CMotorSettings(m_Host.MachineParts()).SetRapidOverride(iPercentage, MayRebuild());
}

void CFeedPanel::ChangeFeed(int iStep)
{
    const auto iFeed = static_cast<short>(std::clamp(m_G01FeedBar.GetValue() + iStep, LOWEST_FEED, HIGHEST_FEED));
    SetFeed(iFeed);
    m_G01FeedBar.setValue(iFeed);
}

void CFeedPanel::Reapply()
{
    SetFeed(m_G01FeedBar.GetValue());
}
