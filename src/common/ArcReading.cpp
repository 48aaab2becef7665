#include "common/ArcReading.h"

#include "common/UnitConverter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {
constexpr double WHOLE_TURN = 2.0 * std::numbers::pi;
constexpr double SAME_PLACE = 1e-9;   // radians: the ends of a full turn, as sine and cosine give them

bool Below(double fFirst, double fSecond, const stArcRule& rule)
{
    return std::abs(fFirst) < rule.fFirstPulse && std::abs(fSecond) < rule.fSecondPulse;
}

double Length(double fFirst, double fSecond)
{
    return std::sqrt(fFirst * fFirst + fSecond * fSecond);
}

// ---- Is it what is meant? -------------------------------------------------------------------------------------------

enum eFate
{
    AS_MEANT,
    NOT_CUT,   // the tool goes straight to the end, or stands
    WHOLE_TURN_INSTEAD,
    ELSEWHERE,
    REFUSED
};
constexpr std::array<const char*, 5> CERTAIN = {"", "is not cut", "becomes a full circle", "is cut beside its way",
                                                "is refused"};
constexpr std::array<const char*, 5> POSSIBLE = {"", "may not be cut", "may become a full circle",
                                                 "may be cut beside its way", "may be refused"};

// The angle of a chord as seen from the centre, positive in the arc's direction. Half a turn has no sign of its own: a
// walk never goes back.
double AngleOf(const stArcPoint& from, const stArcPoint& to, const stArcPoint& centre, eDirection eDir)
{
    const double x1 = from.fFirst - centre.fFirst, y1 = from.fSecond - centre.fSecond;
    const double x2 = to.fFirst - centre.fFirst, y2 = to.fSecond - centre.fSecond;
    double fAngle = std::atan2(x1 * y2 - y1 * x2, x1 * x2 + y1 * y2);
    if (eDir == DIR_CW) fAngle = -fAngle;
    constexpr double ALMOST_HALF = 0.99 * std::numbers::pi;
    return fAngle < -ALMOST_HALF ? fAngle + WHOLE_TURN : fAngle;
}

// Of the arc as it runs from where the axes stand.
eFate FateFrom(const stArcPoint& start, const stWrittenArc& arc, const stArcRule& rule, double fTolerance)
{
    stArcShape shape{.start = start,
                     .end = arc.end,
                     .center = {ArcCentre(start.fFirst, arc.offset.fFirst, rule.fFirstPulse),
                                ArcCentre(start.fSecond, arc.offset.fSecond, rule.fSecondPulse)},
                     .eDir = arc.eDir,
                     .fStep = rule.fStep};
    std::vector<stArcPoint> points;
    QString strWhy;
    if (!CompleteArc(shape, rule) || !WalkArc(shape, points, strWhy)) return REFUSED;
    double fSweep = 0.0, fBeside = 0.0;
    stArcPoint from = start;
    for (const stArcPoint& point : points) {
        const double fFar = Length(point.fFirst - shape.center.fFirst, point.fSecond - shape.center.fSecond);
        fBeside = std::max(fBeside, std::abs(fFar - shape.fRadius));
        fSweep += AngleOf(from, point, shape.center, arc.eDir);
        from = point;
    }
    const auto Is = [&](double fTurn) { return std::abs(fSweep - fTurn) * shape.fRadius <= fTolerance; };
    if (!Is(arc.fSweep)) return Is(WHOLE_TURN) ? WHOLE_TURN_INSTEAD : fSweep <= 0.0 || Is(0.0) ? NOT_CUT : ELSEWHERE;
    return fBeside <= fTolerance ? AS_MEANT : ELSEWHERE;
}

// Where an axis may stand that was sent somewhere: there, or at the pulse before or behind.
std::array<double, 2> Places(double fSent, double fPulse)
{
    const qint32 lPulse = CUnitConverter::GetInt(fPulse), lSent = CUnitConverter::GetInt(fSent);
    if (lPulse < 1 || lSent % lPulse == 0) return {fSent, fSent};
    const qint64 lBelow = lSent - (qint64(lSent) % lPulse + lPulse) % lPulse;
    return {CUnitConverter::GetDouble(static_cast<long long>(lBelow)),
            CUnitConverter::GetDouble(static_cast<long long>(lBelow + lPulse))};
}
}   // namespace

double ArcCentre(double fStart, double fOffset, double fPulse)
{
    return std::abs(fOffset) < fPulse ? fStart : fStart + fOffset;
}

bool CompleteArc(stArcShape& arc, const stArcRule& rule)
{
    if (Below(arc.center.fFirst - arc.start.fFirst, arc.center.fSecond - arc.start.fSecond, rule)) return false;
    if (Below(arc.end.fFirst, arc.end.fSecond, rule)) {
        arc.end = arc.start;
        arc.bFullCircle = true;
    }
    if (arc.fRadius < rule.fFirstPulse) {
        arc.fRadius = Length(CUnitConverter::Distance(arc.start.fFirst, arc.center.fFirst),
                             CUnitConverter::Distance(arc.start.fSecond, arc.center.fSecond));
    }
    return true;
}

double ArcSweep(const stArcPoint& start, const stArcPoint& end, const stArcPoint& centre, eDirection eDir)
{
    const double fSweep = AngleOf(start, end, centre, eDir);
    if (std::abs(fSweep) < SAME_PLACE) return WHOLE_TURN;
    return fSweep < 0.0 ? fSweep + WHOLE_TURN : fSweep;
}

QString WhatBecomesOf(const stWrittenArc& arc, const stArcRule& rule, double fTolerance)
{
    const std::array<double, 2> first = Places(arc.start.fFirst, rule.fFirstPulse);
    const std::array<double, 2> second = Places(arc.start.fSecond, rule.fSecondPulse);
    eFate eWorst = AS_MEANT;
    bool bAlways = true;
    for (size_t n = 0; n < 4; ++n) {
        if ((n % 2 == 1 && first[0] == first[1]) || (n / 2 == 1 && second[0] == second[1])) continue;
        const eFate eHere = FateFrom({first[n % 2], second[n / 2]}, arc, rule, fTolerance);
        if (eHere == AS_MEANT)
            bAlways = false;
        else
            eWorst = eHere;
    }
    return QLatin1String((bAlways ? CERTAIN : POSSIBLE)[eWorst]);
}

// ---- Notices --------------------------------------------------------------------------------------------------------

static constexpr double MAX_WALKED = 30'000'000.0;   // some seconds
static constexpr qint64 MAX_TOLD = 20;

void CArcCheck::Check(const QString& strWhose, qint64 lLine, const stWrittenArc& arc)
{
    if (m_fWalked > MAX_WALKED) {
        ++m_lNotChecked;
        return;
    }
    const QString strFate = WhatBecomesOf(arc, m_Rule, m_Rule.fStep + m_Rule.fFirstPulse + m_Rule.fSecondPulse);
    const double fTurned =
        Length(arc.offset.fFirst, arc.offset.fSecond) * (strFate.isEmpty() ? arc.fSweep : WHOLE_TURN);
    m_fWalked += std::min(fTurned / m_Rule.fStep, static_cast<double>(MAX_ARC_POINTS));
    if (strFate.isEmpty() || strWhose + strFate == m_strLastTold) return;
    m_strLastTold = strWhose + strFate;
    if (++m_lTold > MAX_TOLD) return;
    m_lstNotices += QStringLiteral("%1, program line %2: the arc %3 when its G-code is run")
                        .arg(strWhose, QString::number(lLine), strFate);
}

CArcCheck::~CArcCheck()
{
    if (m_lTold > MAX_TOLD)
        m_lstNotices +=
            QStringLiteral("%1 more arcs are not what is meant when the G-code is run").arg(m_lTold - MAX_TOLD);
    if (m_lNotChecked > 0)
        m_lstNotices +=
            QStringLiteral("%1 arcs behind them are not checked: the program is too long").arg(m_lNotChecked);
}
