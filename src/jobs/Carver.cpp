#include "jobs/Carver.h"

#include "carving/CarvingToGCode.h"
#include "carving/CarvingWalk.h"
#include "common/OperatorScreen.h"
#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"

#include <QFile>

void CCarver::CreateImgZProfile()
{
    stImgZProfileInfo map;
    MakeDepthMap(*m_stImgCarvingData.pImage, m_stImgCarvingData.pInfo->fDepth, map);
    CreateCarvingZProfile(&map);
}

void CCarver::CreateCarvingZProfile(stImgZProfileInfo* pMap)
{
    MakeCarvingGrid(*pMap, *m_stImgCarvingData.pInfo);
}

namespace {
// Does on the machine what the walk over the grid says. The other axes keep their present positions in every target.
class CCarvingTool
{
public:
    CCarvingTool(CMachine& machine, CShared<quint16>& iCurRow) : m_Machine(machine), m_iCurRow(iCurRow) {}

    bool Open(double fX, double fY)
    {
        return Rapid(Z_AXIS, CPosition::SafeHeight()) && Rapid(X_AXIS, fX) && Rapid(Y_AXIS, fY) && Rapid(Z_AXIS, 0.0);
    }
    void BeginRow(quint16 uImageRow) { m_iCurRow = uImageRow; }
    double Height() const { return m_Machine.m_Position.GetCurPos(Z_AXIS); }
    void BeginLevel() { CAllAxisCtrl::WaitForMotion(); }
    bool Plunge(double fZ)
    {
        m_Machine.m_AxisCommands.SetVelocityAcc(Z_AXIS, AppConfig::m_fPlungeFeed, AppConfig::m_fAxisAcc[Z_AXIS]);
        if (!m_Machine.m_JobMoves.G01_Move(m_Machine.m_Position.HereBut(Z_AXIS, fZ), false, true)) return false;
        m_Machine.m_Position.GetAllAxisCurPos(m_Last);
        return true;
    }
    bool MayGoOn() { return m_Machine.WaitWhilePaused(); }
    double LastX() const { return m_Last.x; }
    bool AlongX(double fX) { return Raster(fX, m_Last.z); }
    bool AlongZ(double fZ) { return Raster(m_Last.x, fZ); }
    bool Slope(double fX, double fZ) { return Raster(fX, fZ); }
    bool EndRow() { return Feed(Z_AXIS, 0.0); }
    bool StepY(double fStep)
    {
        const qint64 lY = m_Machine.m_AxisCtrl[Y_AXIS].GetCurPosLong();
        return GoToY(CUnitConverter::GetDouble(static_cast<long long>(lY - CUnitConverter::GetLong(fStep))));
    }
    bool GoToY(double fY) { return Feed(Y_AXIS, fY); }
    void End() { CAllAxisCtrl::WaitForMotion(); }

private:
    bool Rapid(eAxis axis, double fPos) { return m_Machine.m_JobMoves.MoveAxis(axis, fPos, G00_MOVE); }
    bool Feed(eAxis axis, double fPos) { return m_Machine.m_JobMoves.MoveAxis(axis, fPos, G01_MOVE); }
    // Prepared while the move before it runs, and not waited for.
    bool Raster(double fX, double fZ)
    {
        stFloatPoint target = m_Last;
        target.x = fX;
        target.z = fZ;
        if (!m_Machine.m_JobMoves.Cut(m_Last, target)) return false;
        m_Last = target;
        return true;
    }

    CMachine& m_Machine;
    CShared<quint16>& m_iCurRow;
    stFloatPoint m_Last;
};
}   // namespace

// ---- Carving --------------------------------------------------------------------------------------------------------

bool CCarver::ImgCarving()
{
    return m_Machine.Watched([] { return stWorkCommand{.eKind = WORK_CARVING_PASS}; }, [&] { return CarvePass(); });
}

bool CCarver::CarvePass()
{
    CreateImgZProfile();
    const stImgCarvingInfo& info = *m_stImgCarvingData.pInfo;
    m_iCurCarvingRow = static_cast<quint16>(info.iStartRow / info.iYStepPixels * info.iYStepPixels);
    m_fXStepInForce = info.fXStep;
    m_fYStepInForce = info.fYStep;
    m_uCurCarvingPass = m_uCurCarvingPass + 1;   // last: whoever reads it finds the rest
    m_Machine.m_AxisCommands.ResetAccVel();
    CCarvingTool tool(m_Machine, m_iCurCarvingRow);
    return CCarvingWalk(info, tool).Run();
}

void CCarver::RunImgCarving()
{
    RunCarvingPasses(*m_stImgCarvingData.pInfo, AppConfig::m_bMultipassImgCarving, [this] { return ImgCarving(); });
}

// ---- As a program ---------------------------------------------------------------------------------------------------

bool CCarver::WriteImageToGCodeFile(QString strFile)
{
    CreateImgZProfile();
    QFile file(strFile);
    const auto fnOnRow = [this](quint16 uRow) { m_iCurCarvingRow = uRow; };
    return file.open(QIODevice::WriteOnly | QIODevice::Append) &&
           WriteCarvingPass(file, *m_stImgCarvingData.pInfo, CPosition::SafeHeight(), fnOnRow);
}

bool CCarver::CreateGCodeFromImage(QString strFile)
{
    QString strWhy;
    const auto fnOnRow = [this](quint16 uRow) { m_iCurCarvingRow = uRow; };
    if (ExportCarving(strFile, m_stImgCarvingData, CPosition::SafeHeight(), fnOnRow, strWhy)) return true;
    // A file that could not be made is no news here: wanted, the export ends and nothing is said.
    if (!strWhy.isEmpty()) COperatorScreen::Get().AddLogMsg(strWhy, MSG_ERROR);
    return false;
}
