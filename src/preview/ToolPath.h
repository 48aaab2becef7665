#pragma once
#include "common/MachineTypes.h"

#include <vector>

// The path of the tool in X, Y and Z for a picture: as many points as a picture can show, whatever the job's length.
// One thread at a time.
class CToolPath
{
public:
    struct stPoint
    {
        float fX, fY, fZ;   // mm
        bool bRapid;        // how the tool came here
        bool bJump;         // not on a straight way from the point before: lift the pen
    };
    // A straight move; the first point of a path that does not go on where the last move ended is taken in too.
    void AddMove(const stFloatPoint& from, const stFloatPoint& to, bool bRapid);

    const std::vector<stPoint>& Points() const { return m_lstPoints; }
    bool IsEmpty() const { return m_lstPoints.empty(); }
    const stFloatPoint& Min() const { return m_Min; }   // of X, Y, Z
    const stFloatPoint& Max() const { return m_Max; }

private:
    static constexpr size_t MAX_POINTS = 400'000;

    void Add(const stFloatPoint& at, bool bRapid, bool bJump);
    void Thin();

    std::vector<stPoint> m_lstPoints;
    stFloatPoint m_Min, m_Max;
    double m_fTolerance = 0.0;   // mm; grows as the path does
};
