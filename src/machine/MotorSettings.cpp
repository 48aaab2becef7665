#include "machine/MotorSettings.h"

#include "common/OperatorScreen.h"

#include <algorithm>

using A = AppConfig;

double CMotorSettings::HighestMaxFeed(eAxis axis)
{
    return A::m_fAxisMovPerPulse[axis] * MAX_GPIO_FREQUENCY;
}
double CMotorSettings::HighestUserFeed(eAxis axis)
{
    return A::m_fMaxAxisFeed[axis] / MAX_FEED_CHANGE_PERCENT;
}

static void KeepFeedRoom(eAxis axis)
{
    const double fMax = A::m_fMaxAxisFeed[axis];
    if (A::m_fUserAxisFeed[axis] * MAX_FEED_CHANGE_PERCENT > fMax)
        A::m_fUserAxisFeed[axis] = fMax / MAX_FEED_CHANGE_PERCENT;
    if (A::m_fAxisJogFeed[axis] * MAX_FEED_CHANGE_PERCENT > fMax)
        A::m_fAxisJogFeed[axis] = fMax / MAX_FEED_CHANGE_PERCENT;
    A::m_fAxisFeed[axis] = A::m_fUserAxisFeed[axis] * A::m_fAxisFeedPercent[axis];
}

// X, Y and Z only: wanted, unlike at load, where all five count.
static void UpdateLeastMaxFeed()
{
    A::m_fMinMaxAxisFeed = *std::min_element(A::m_fMaxAxisFeed, A::m_fMaxAxisFeed + Z_AXIS + 1);
}

static void FollowWithPlungeFeed()
{
    A::m_fPlungeFeed = std::min(A::m_fPlungeFeed, A::m_fUserAxisFeed[Z_AXIS]);
}

// The first text of several; the axis's own name is in it.
static QString First(const QString& strFirst, const QString& strSecond)
{
    return strFirst.isEmpty() ? strSecond : strFirst;
}

// ---- Motor values ---------------------------------------------------------------------------------------------------

QString CMotorSettings::Rebuild(eAxis axis)
{
    AxisCtrl& ctrl = Axis(axis);
    ctrl.m_bStoreVelCurve = true;
    QString strWhy;
    if (!ctrl.SetVelocityAcc(A::m_fMaxAxisFeed[axis], A::m_fAxisAcc[axis])) {
        ctrl.m_lstVelCurve.clear();
        strWhy = ctrl.GetBuildError();
    }
    ctrl.m_bStoreVelCurve = false;
    if (!ctrl.SetVelocityAcc(A::m_fAxisFeed[axis], A::m_fAxisAcc[axis])) strWhy = ctrl.GetBuildError();
    ReserveRamps();
    return strWhy;
}

// An axis goes with the feed and acceleration of the longest one of a move, or a share of both, which is the shorter
// ramp.
void CMotorSettings::ReserveRamps()
{
    // 1.5 MHz at 600 mm/s^2: 64 MB an axis. Locked memory beyond that is missed elsewhere on a Pi of 1 GB; a longer
    // ramp fetches the rest when it is built.
    static constexpr size_t MOST_TOUCHED = 2'000'000;
    const int iAxes = CMachineAxes::AxesInUse();
    for (int axis = 0; axis < iAxes; ++axis) {
        size_t uMost = 0;
        for (int main = 0; main < iAxes; ++main)
            uMost = std::max(
                uMost, MostRampEntries(stRampSettings::OfAxis(axis), A::m_fMaxAxisFeed[main], A::m_fAxisAcc[main]));
        m_Machine.m_AxisCtrl[axis].ReserveRamp(std::min(uMost, MOST_TOUCHED));
    }
}

QString CMotorSettings::RebuildAll()
{
    QString strWhy;
    for (int axis = 0; axis < MAX_AXES; ++axis) strWhy = First(strWhy, Rebuild(static_cast<eAxis>(axis)));
    return strWhy;
}

QString CMotorSettings::SetMaxFeed(eAxis axis, double fFeed)
{
    A::m_fMaxAxisFeed[axis] = fFeed;
    KeepFeedRoom(axis);
    UpdateLeastMaxFeed();
    FollowWithPlungeFeed();
    return Rebuild(axis);
}

QString CMotorSettings::SetAcc(eAxis axis, double fAcc)
{
    A::m_fAxisAcc[axis] = fAcc;
    return Rebuild(axis);
}

void CMotorSettings::SetDutyCycle(eAxis axis, double fDuty)
{
    A::m_fAxisDutyCycle[axis] = fDuty;
}

QString CMotorSettings::SetRateOfAcc(eAxis axis, double fRate)
{
    A::m_fAxisRateOfAcc[axis] = fRate;
    Axis(axis).UpdateDutyCycle();
    return Rebuild(axis);
}

QString CMotorSettings::SetMovPerPulse(eAxis axis, double fStep)
{
    if (fStep != A::m_fAxisMovPerPulse[axis]) SpoilHomes(axis, axis);
    A::m_fAxisMovPerPulse[axis] = fStep;
    m_bFeedCut = A::m_fAxisFeed[axis] / fStep > MAX_GPIO_FREQUENCY;
    if (m_bFeedCut) A::m_fAxisFeed[axis] = fStep * MAX_GPIO_FREQUENCY;
    const bool bAccepted = Axis(axis).UpdateStepResolution();
    double& fArcStep = A::m_GCodeRunSettings.fAxisStep;
    if (fArcStep < fStep) fArcStep = fStep;
    const QString strWhy = Rebuild(axis);
    return bAccepted ? strWhy : Axis(axis).GetErrorMsg();
}

QString CMotorSettings::SetSamplingTime(double fSeconds)
{
    // Rounded: 0.0011 s is 1100 us, whatever the product of two floats is.
    A::m_iVelAccSamplingTime = static_cast<quint32>(qRound64(fSeconds * 1000000.0));
    return RebuildAll();
}

QString CMotorSettings::ToggleCurveType()
{
    A::m_eAxisFeedtype = A::m_eAxisFeedtype == 1 ? 0 : 1;
    return RebuildAll();
}

QString CMotorSettings::CopyToGroup(eAxis axis)
{
    const bool bLinear = axis <= Z_AXIS;
    QString strWhy;
    for (int n = bLinear ? X_AXIS : A_AXIS; n <= (bLinear ? Z_AXIS : B_AXIS); ++n) {
        if (n == axis) continue;
        const auto other = static_cast<eAxis>(n);
        if (A::m_fAxisMovPerPulse[other] != A::m_fAxisMovPerPulse[axis]) SpoilHomes(n, n);
        A::m_fAxisMovPerPulse[other] = A::m_fAxisMovPerPulse[axis];
        A::m_fMaxAxisFeed[other] = A::m_fMaxAxisFeed[axis];
        A::m_fAxisAcc[other] = A::m_fAxisAcc[axis];
        A::m_fAxisDutyCycle[other] = A::m_fAxisDutyCycle[axis];
        A::m_fAxisRateOfAcc[other] = A::m_fAxisRateOfAcc[axis];
        const bool bAccepted = Axis(other).UpdateStepResolution();
        KeepFeedRoom(other);
        strWhy = First(strWhy, First(bAccepted ? QString() : Axis(other).GetErrorMsg(), Rebuild(other)));
    }
    UpdateLeastMaxFeed();
    FollowWithPlungeFeed();
    return strWhy;
}

// ---- Feeds of the operator ------------------------------------------------------------------------------------------

QString CMotorSettings::SetUserFeed(eAxis axis, double fFeed)
{
    // The keypad's four decimals may lie a trifle above.
    A::m_fUserAxisFeed[axis] = std::min(fFeed, HighestUserFeed(axis));
    A::m_fAxisFeed[axis] = A::m_fUserAxisFeed[axis] * A::m_fAxisFeedPercent[axis];
    if (A::m_bUseG01FeedForJog) A::m_fAxisJogFeed[axis] = A::m_fAxisFeed[axis];
    FollowWithPlungeFeed();
    AxisCtrl& ctrl = Axis(axis);
    return ctrl.SetVelocityAcc(A::m_fAxisFeed[axis], A::m_fAxisAcc[axis]) ? QString() : ctrl.GetBuildError();
}

void CMotorSettings::SetJogFeed(eAxis axis, double fFeed)
{
    A::m_fAxisJogFeed[axis] = std::min(fFeed, HighestUserFeed(axis));
}

void CMotorSettings::UseG01FeedForJog(bool bUse)
{
    A::m_bUseG01FeedForJog = bUse;
    if (bUse) std::copy_n(A::m_fAxisFeed, std::min<int>(A::m_iMchType, MAX_AXES), A::m_fAxisJogFeed);
}

// ---- Overrides ------------------------------------------------------------------------------------------------------

// Not waited for: five long ramps take half a second, and the slider is held meanwhile.
void CMotorSettings::Run(eAxis axis)
{
    Axis(axis).SetVelocityAccSoon(A::m_fAxisFeed[axis], A::m_fAxisAcc[axis]);
}

void CMotorSettings::SetFeedOverride(short iPercentage, bool bRebuild)
{
    const double fFactor = iPercentage / 100.0;
    const int iAxes = std::min<int>(A::m_iMchType, MAX_AXES);
    for (int axis = 0; axis < iAxes; ++axis) {
        A::m_fAxisFeed[axis] = fFactor * A::m_fUserAxisFeed[axis];
        if (A::m_bUseG01FeedForJog) A::m_fAxisJogFeed[axis] = A::m_fAxisFeed[axis];
        if (bRebuild) Run(static_cast<eAxis>(axis));
    }
    // Behind the feeds of all axes: a measurement that sees the new factor takes these feeds.
    for (int axis = 0; axis < iAxes; ++axis) A::m_fAxisFeedPercent[axis] = fFactor;
}

void CMotorSettings::SetRapidOverride(short iPercentage, bool bRebuild)
{
    const double fFactor = iPercentage / 100.0;
    for (const eAxis axis : {Z_AXIS, Y_AXIS, X_AXIS}) {
        A::m_fAxisFeedPercent[axis] = fFactor;
        A::m_fMaxAxisFeed[axis] = fFactor * A::m_fUserAxisFeed[axis];
    }
    if (!bRebuild) return;
    // All five, whatever the machine: wanted.
    for (int axis = 0; axis < MAX_AXES; ++axis) Run(static_cast<eAxis>(axis));
}

// ---- Limits, sensors, board -----------------------------------------------------------------------------------------

QString CMotorSettings::Config(eAxis axis)
{
    AxisCtrl& ctrl = Axis(axis);
    return ctrl.ConfigAxis() ? QString() : ctrl.GetBuildError();
}

QString CMotorSettings::SetPosLimit(eAxis axis, double fLimit)
{
    if (fLimit <= A::m_fAxisNegDirLimit[axis])
        return QStringLiteral("Positive Limit Can't be less than\nor equal to Negative Limit");
    A::m_fAxisPosDirLimit[axis] = fLimit;
    return Config(axis);
}

QString CMotorSettings::SetNegLimit(eAxis axis, double fLimit)
{
    if (fLimit >= A::m_fAxisPosDirLimit[axis])
        return QStringLiteral("Negative Limit Can't be greater than\nor equal to Positive Limit");
    A::m_fAxisNegDirLimit[axis] = fLimit;
    return Config(axis);
}

QString CMotorSettings::ConfigAxes()
{
    QString strWhy;
    for (int axis = 0; axis < std::min<int>(A::m_iMchType, MAX_AXES); ++axis)
        strWhy = First(strWhy, Config(static_cast<eAxis>(axis)));
    return strWhy;
}

void CMotorSettings::SpoilHomes(int iFirst, int iLast)
{
    QStringList names;
    for (int axis = iFirst; axis <= iLast; ++axis) {
        if (m_Machine.m_AxisCtrl[axis].IsAxisHomeSet() && axis < A::m_iMchType) names += A::m_strAxisNames[axis];
        m_Machine.m_AxisCtrl[axis].ClearHome();
    }
    if (A::m_bHomeSensorsUsed && !names.isEmpty())
        TellNotice(names.join(QStringLiteral(", ")) + QStringLiteral(" must be homed again"));
}

void CMotorSettings::SetPosDir(eAxis axis, eDirection eDir)
{
    A::m_eAxisPosDir[axis] = eDir;
    SpoilHomes(axis, axis);
}

void CMotorSettings::SetHomeDir(eAxis axis, eDirection eDir)
{
    A::m_eAxisHomeDir[axis] = eDir;
    SpoilHomes(axis, axis);
}

QString CMotorSettings::UseHomeSensors(bool bUse)
{
    A::m_bHomeSensorsUsed = bUse;
    SpoilHomes(X_AXIS, B_AXIS);   // without sensors every axis that has moved counts as homed
    return ConfigAxes();
}

void CMotorSettings::SelectBoard(int iBoard)
{
    if (iBoard != A::m_eVantorCtrl) SpoilHomes(X_AXIS, B_AXIS);
    A::m_eVantorCtrl = iBoard;
    if (iBoard == VTR3_CTRL) A::m_iMchType = 3;
    if (iBoard == VTR5_CTRL) A::m_iMchType = 5;
    for (const eAxis axis : {A_AXIS, B_AXIS})
        Axis(axis).m_bNeedsRestart = A::m_iMchType < MAX_AXES || m_Machine.m_iAxesSetUp < MAX_AXES;
}
