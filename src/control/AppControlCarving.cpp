#include "carving/CarvingToGCode.h"
#include "carving/CarvingWalk.h"
#include "control/AppControl.h"
#include "motion/AllAxisCtrl.h"

#include <QFile>

// A relief out of a picture: carved on the worker, or written as a program.

void AppControl::StartImgCarving()
{
    if (!ClaimForJob()) return;
    if (const QString strWhy = WhyNotStarted(m_stImgCarvingData); !strWhy.isEmpty()) return PushErrMsg(strWhy);
    LaunchJob(OP_IMG_CARVING, !AppConfig::m_bSimulationMode);
}

void AppControl::GetMinMaxValue(QImage& img, unsigned char& iMin, unsigned char& iMax)
{
    FindGreyLevels(img, iMin, iMax);
}

void AppControl::CreateImgZProfile()
{
    stImgZProfileInfo map;
    MakeDepthMap(*m_stImgCarvingData.pImage, m_stImgCarvingData.pInfo->fDepth, map);
    CreateCarvingZProfile(&map);
}

void AppControl::CreateCarvingZProfile(stImgZProfileInfo* pMap)
{
    MakeCarvingGrid(*pMap, *m_stImgCarvingData.pInfo);
}

// The other axes keep their present positions in every target.
class AppControl::CCarver
{
public:
    explicit CCarver(AppControl& app) : m_App(app) {}

    bool Open(double fX, double fY)
    {
        return Rapid(Z_AXIS, SafeHeight()) && Rapid(X_AXIS, fX) && Rapid(Y_AXIS, fY) && Rapid(Z_AXIS, 0.0);
    }
    void BeginRow(quint16 uImageRow) { m_App.m_iCurCarvingRow = uImageRow; }
    double Height() const { return m_App.GetCurPos(Z_AXIS); }
    void BeginLevel() { CAllAxisCtrl::WaitForMotion(); }
    bool Plunge(double fZ)
    {
        m_App.SetVelocityAcc(Z_AXIS, AppConfig::m_fPlungeFeed, AppConfig::m_fAxisAcc[Z_AXIS]);
        if (!m_App.G01_Move(m_App.HereBut(Z_AXIS, fZ), false, true)) return false;
        m_App.GetAllAxisCurPos(m_Last);
        return true;
    }
    bool MayGoOn() { return m_App.WaitWhilePaused(); }
    double LastX() const { return m_Last.x; }
    bool AlongX(double fX) { return Raster(fX, m_Last.z); }
    bool AlongZ(double fZ) { return Raster(m_Last.x, fZ); }
    bool Slope(double fX, double fZ) { return Raster(fX, fZ); }
    bool EndRow() { return Feed(Z_AXIS, 0.0); }
    bool StepY(double fStep)
    {
        const qint64 lY = m_App.m_AxisCtrl[Y_AXIS].GetCurPosLong();
        return GoToY(CUnitConverter::GetDouble(static_cast<long long>(lY - CUnitConverter::GetLong(fStep))));
    }
    bool GoToY(double fY) { return Feed(Y_AXIS, fY); }
    void End() { CAllAxisCtrl::WaitForMotion(); }

private:
    bool Rapid(eAxis axis, double fPos) { return m_App.G00_Move(m_App.HereBut(axis, fPos), true, true); }
    bool Feed(eAxis axis, double fPos) { return m_App.G01_Move(m_App.HereBut(axis, fPos), true, true); }
    // Prepared while the move before it runs, and not waited for.
    bool Raster(double fX, double fZ)
    {
        stFloatPoint target = m_Last;
        target.x = fX;
        target.z = fZ;
        m_App.SetAccAndVel(m_Last, target, G01_MOVE);
        if (!m_App.G01_Move(target, false, false)) return false;
        m_Last = target;
        return true;
    }

    AppControl& m_App;
    stFloatPoint m_Last;
};

bool AppControl::ImgCarving()
{
    CreateImgZProfile();
    ResetAccVel();
    CCarver carver(*this);
    return CCarvingWalk(*m_stImgCarvingData.pInfo, carver).Run();
}

void AppControl::RunImgCarving()
{
    RunCarvingPasses(*m_stImgCarvingData.pInfo, AppConfig::m_bMultipassImgCarving, [this] { return ImgCarving(); });
}

bool AppControl::WriteImageToGCodeFile(QString strFile)
{
    CreateImgZProfile();
    QFile file(strFile);
    const auto fnOnRow = [this](quint16 uRow) { m_iCurCarvingRow = uRow; };
    return file.open(QIODevice::WriteOnly | QIODevice::Append) &&
           WriteCarvingPass(file, *m_stImgCarvingData.pInfo, SafeHeight(), fnOnRow);
}

bool AppControl::CreateGCodeFromImage(QString strFile)
{
    QString strWhy;
    const auto fnOnRow = [this](quint16 uRow) { m_iCurCarvingRow = uRow; };
    if (ExportCarving(strFile, m_stImgCarvingData, SafeHeight(), fnOnRow, strWhy)) return true;
    // A file that could not be made is no news here: wanted, the export ends and nothing is said.
    if (!strWhy.isEmpty()) COperatorScreen::Get().AddLogMsg(strWhy, MSG_ERROR);
    return false;
}
