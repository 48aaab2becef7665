#include "machine/WorkerFixture.h"

#include <cmath>

namespace {
// Measuring a surface: the walk over the grid, and what is kept of it.

class ZProfile : public CWorkerTest
{
protected:
    ZProfile()
    {
        m_Info.fXYStep = 10.0;
        m_Info.fLength = 20.0;
        m_Info.fWidth = 10.0;
    }
    void BuildOver(CVirtualMachine::HeightFn fnSurface)
    {
        Build();
        m_pMachine->SetSurface(std::move(fnSurface));
    }
    stZProfileInfo& m_Info = AppConfig::m_ZProfileInfo;
};

static double Plane(double x, double y)
{
    return 0.01 * x - 0.02 * y + 0.05;
}

TEST_F(ZProfile, AnExtentWithoutACellKeepsNothing)
{
    BuildOver(Plane);
    for (const auto& [fLength, fWidth, uRows] : {std::tuple{20.0, 0.0, 0u}, {0.0, 10.0, 0u}, {0.5, 0.5, 2u}}) {
        m_Info.fLength = fLength;
        m_Info.fWidth = fWidth;
        AppConfig::m_bUseZProfile = true;
        m_App.CreateZProfile();
        EXPECT_EQ(m_Info.lstPoints.size(), uRows);
        EXPECT_EQ(bool(AppConfig::m_bUseZProfile), uRows > 0);
    }
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
}

TEST_F(ZProfile, SettingsThatWouldNeverEndAreRefusedAtTheStart)
{
    Build();
    for (double* pSetting : {&m_Info.fXYStep, &m_Info.fZRange})
        for (const double fBad : {0.0, -1.0, std::nan("")}) {
            const double fGood = std::exchange(*pSetting, fBad);
            m_App.RunZProfile();
            EXPECT_EQ(m_App.TakeErrors(),
                      QStringList(pSetting == &m_Info.fXYStep ? "Z-Profile: X-Y Step must be greater than zero"
                                                              : "Z-Profile: Z Range must be greater than zero"));
            EXPECT_EQ(m_App.m_eOperation, OP_NONE);
            EXPECT_EQ(m_App.m_iWorkZeroMoves, 0);
            *pSetting = fGood;
        }
    m_App.m_eOperation = OP_GCODE;
    m_App.RunZProfile();
    EXPECT_EQ(m_App.TakeErrors(), QStringList("Axis in use"));
}

TEST_F(ZProfile, NewRowsGoBehindTheOldOnesAndTheOffsetIsAddedToAll)
{
    m_Info.lstPoints = {{{1, 2, 3}, {4, 5, 6}}};
    m_Info.fZStart = -0.1;
    BuildOver(Plane);
    m_App.CreateZProfile();
    EXPECT_EQ(m_Screen.m_lstCalls,
              QStringList("New Z-Profile rows are added behind the old ones, which stay in force"));
    ASSERT_EQ(m_Info.lstPoints.size(), 3u);
    EXPECT_DOUBLE_EQ(m_Info.lstPoints[0][1].z, 5.9);
    EXPECT_DOUBLE_EQ(m_Info.lstPoints[1][0].z, -0.1);   // the first node too
}

TEST_F(ZProfile, AnOverrideChangedDuringTheMeasurementTakesEffect)
{
    BuildOver(Plane);
    m_App.ResetAccVel();
    At(3.0, [] {
        for (int axis = 0; axis < 3; ++axis) {
            AppConfig::m_fAxisFeed[axis] = 7.5;
            AppConfig::m_fAxisFeedPercent[axis] = 0.5;
        }
    });
    m_App.CreateZProfile();
    EXPECT_EQ(m_Info.lstPoints.size(), 2u);
    for (int axis = 0; axis < 3; ++axis) EXPECT_EQ(NextFeed(axis), 7.5) << axis;
}

TEST_F(ZProfile, AnEmergencyStopLeavesNoMessageAndNoWatch)
{
    for (double fAt = 0.1; fAt < 12.0; fAt += 0.7) {
        AppConfig::m_bEmergencyStopON = false;
        m_Info.lstPoints.clear();
        BuildOver(Plane);
        EmergencyStopAt(fAt);
        m_App.CreateZProfile();
        EXPECT_EQ(m_App.TakeErrors(), QStringList()) << fAt;
        EXPECT_FALSE(m_App.m_AxisCtrl[Z_AXIS].m_bWatchZProbe);
        EXPECT_TRUE(m_App.IsMachineIdle());
    }
}
}   // namespace
