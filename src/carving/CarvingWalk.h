#pragma once
#include "carving/ImgCarving.h"
#include "common/UnitConverter.h"
#include "config/AppConfig.h"

#include <algorithm>
#include <cmath>
#include <vector>

// The tool's way over the grid of a carving: one walk for the carver and for the program that is written of it, so that
// the two cannot drift apart. A visitor does what the walk says, and knows where it has last sent the tool; where it
// returns a bool, false ends the job.
//
//   bool Open(double fX, double fY)   at the safe height to the first row, then down to the surface
//   void BeginRow(quint16 uImageRow)
//   double Height()                   of the tool now
//   void BeginLevel()                 holds until the axes stand
//   bool Plunge(double fZ)            and the way begins anew from here
//   bool MayGoOn()                    before a flat stretch: holds while the job is paused
//   double LastX()                    of the last point of the way
//   bool AlongX(double fX)
//   bool AlongZ(double fZ)
//   bool Slope(double fX, double fZ)
//   bool EndRow()                     up to the surface
//   bool StepY(double fStep)          towards the operator
//   bool GoToY(double fY)             the last row
//   void End()

// Sums of coordinates on whole units, so that tiny errors do not pile up along a row.
inline double SumOnUnits(double a, double b)
{
    return CUnitConverter::GetDouble(static_cast<long long>(CUnitConverter::GetLong(a)) + CUnitConverter::GetLong(b));
}

template <class Visitor> class CCarvingWalk
{
public:
    CCarvingWalk(const stImgCarvingInfo& info, Visitor& visitor)
        : m_Info(info), m_Visitor(visitor), m_Current(static_cast<size_t>(info.iCols)), m_Next(m_Current.size())
    {
    }

    bool Run()
    {
        const int iFirst = m_Info.iStartRow / m_Info.iYStepPixels, iLast = m_Info.iRows - 1;
        const double fTop = SumOnUnits(m_Info.fWidth, -m_fRadius);
        if (!m_Visitor.Open(m_fRadius, iFirst == iLast ? m_fRadius : SumOnUnits(fTop, -m_Info.fYStep * iFirst)))
            return false;
        for (int row = iFirst; row <= iLast; ++row) {
            m_Visitor.BeginRow(static_cast<quint16>(m_Info.iYStepPixels * row));
            if (!CutRow(m_Info.ppZMap[row]) || !m_Visitor.EndRow()) return false;
            if (row < iLast - 1 && !m_Visitor.StepY(m_Info.fYStep)) return false;
            if (row == iLast - 1 && !m_Visitor.GoToY(m_fRadius)) return false;
        }
        m_Visitor.End();
        return true;
    }

private:
    // Levels, each the other way along the row, until every column has reached its target.
    bool CutRow(const double* pTarget)
    {
        qint32 lLowest = 0;
        for (int col = 0; col < m_Info.iCols; ++col) lLowest = std::min(lLowest, CUnitConverter::GetLong(pTarget[col]));
        if (-static_cast<qint64>(lLowest) <= m_lPulse) return true;   // the tool does not go along a row of air
        std::fill(m_Current.begin(), m_Current.end(), m_Visitor.Height());
        for (bool bDone = false;;) {
            m_Visitor.BeginLevel();
            if (bDone) return true;
            bDone = NextLevel(pTarget);
            if (!m_Visitor.Plunge(m_Next[size_t(FirstColumn())]) || !WalkLevel()) return false;
            m_Current = m_Next;
        }
    }

    // True: it is the last one.
    bool NextLevel(const double* pTarget)
    {
        bool bDone = true;
        for (size_t col = 0; col < m_Next.size(); ++col) {
            m_Next[col] = SumOnUnits(m_Current[col], -m_Info.fZStep);
            // The target as it is, not in units: a hair below the step it takes a level of its own.
            if (m_Next[col] > pTarget[col])
                bDone = false;
            else
                m_Next[col] = pTarget[col];
        }
        return bDone;
    }

    bool WalkLevel()
    {
        const int iStep = IsForward() ? 1 : -1, iEnd = IsForward() ? m_Info.iCols - 1 : 0;
        int col = FirstColumn();
        do {
            double fStretch = 0.0;
            for (; col != iEnd && IsFlat(col, col + iStep); col += iStep)
                fStretch = SumOnUnits(fStretch, m_Info.fXStep);
            if (col == iEnd) {
                if (!m_Visitor.MayGoOn() || !m_Visitor.AlongX(IsForward() ? m_fRight : m_fRadius)) return false;
                break;
            }
            if (fStretch > 0.0 &&
                (!m_Visitor.MayGoOn() || !m_Visitor.AlongX(SumOnUnits(m_Visitor.LastX(), iStep * fStretch))))
                return false;
            if (!StepTo(col, col + iStep, iStep)) return false;
            col += iStep;
        } while (col != iEnd);
        m_eDir = Opposite(m_eDir);
        return true;
    }

    bool StepTo(int iFrom, int iTo, int iStep)
    {
        const bool bSlope = m_Info.iCarvingType == CARVING_3D;
        const double fX = iTo == 0 ? (bSlope ? m_fRadius : 0.0)   // the square step goes on to 0: wanted
                          : iTo == m_Info.iCols - 1 ? m_fRight
                                                    : SumOnUnits(m_Visitor.LastX(), iStep * m_Info.fXStep);
        const double fFromZ = m_Next[size_t(iFrom)], fZ = m_Next[size_t(iTo)];
        if (bSlope) return m_Visitor.Slope(fX, fZ);
        // Never through the material between the two cells.
        if (fZ > fFromZ) return m_Visitor.AlongZ(fZ) && m_Visitor.AlongX(fX);
        return m_Visitor.AlongX(fX) && m_Visitor.AlongZ(fZ);
    }

    // Cells that differ by less than a pulse can't be cut differently: one long move goes over them.
    bool IsFlat(int iFrom, int iTo) const
    {
        const qint64 lFrom = CUnitConverter::GetLong(m_Next[size_t(iFrom)]);
        return std::abs(CUnitConverter::GetLong(m_Next[size_t(iTo)]) - lFrom) < m_lPulse;
    }
    bool IsForward() const { return m_eDir == m_eForward; }
    int FirstColumn() const { return IsForward() ? 0 : m_Info.iCols - 1; }

    const stImgCarvingInfo& m_Info;
    Visitor& m_Visitor;
    const double m_fRadius = CUnitConverter::GetDouble(CUnitConverter::GetLong(AppConfig::m_fEndMillDia / 2.0));
    const double m_fRight = SumOnUnits(m_Info.fLength, -m_fRadius);
    const qint64 m_lPulse = CUnitConverter::GetLong(AppConfig::m_fAxisMovPerPulse[Z_AXIS]);
    const eDirection m_eForward = AppConfig::m_eAxisPosDir[X_AXIS];
    eDirection m_eDir = m_eForward;   // kept from row to row
    std::vector<double> m_Current, m_Next;
};

// Cuts once, or deeper and deeper copies of the relief: each pass has the full step more than the one before, so that
// its rows are cut in a single level. The record has its depth and step back afterwards.
template <class Pass> void RunCarvingPasses(stImgCarvingInfo& info, bool bMultiPass, Pass&& fnPass)
{
    if (!bMultiPass) return (void)fnPass();
    struct stKept
    {
        ~stKept()
        {
            info.fDepth = fDepth;
            info.fZStep = fZStep;
        }
        stImgCarvingInfo& info;
        const double fDepth = info.fDepth, fZStep = info.fZStep;
    };
    const stKept kept{info};
    info.fDepth = info.fZStep = 0.0;
    while (std::abs(info.fDepth - kept.fDepth) > 1e-5) {
        info.fDepth = std::min(info.fDepth + kept.fZStep, kept.fDepth);
        info.fZStep += kept.fZStep;
        if (!fnPass()) return;
    }
}
