#include "screens/settings/UserNumbers.h"

#include "config/AppConfig.h"

#include <algorithm>

using A = AppConfig;

static constexpr double SLOWEST_FEED = 0.01;      // mm/s; an axis refuses a feed of 0
static constexpr double THICKEST_MILL = 100.0;    // mm
static constexpr double LONGEST_REPEAT = 100.0;   // mm

static QString AxisTitle(eAxis axis, const char* szWhat)
{
    return A::m_strAxisNames[axis].left(1) + QLatin1String(" Axis ") + QLatin1String(szWhat) +
           (axis < A_AXIS ? QLatin1String("(mm/sec)") : QLatin1String("(deg/sec)"));
}

// The highest value as the keypad prints it, so that the value shown is never refused.
static stFloatPoint FeedRange(double fHighest)
{
    const double fShown = QString::number(fHighest, 'f', PRECISION).toDouble();
    return {.x = SLOWEST_FEED, .y = std::max(SLOWEST_FEED, fShown)};
}

static void AddFeeds(std::vector<stUserNumber>& list, eAxis axis)
{
    const QString strBtn = QStringLiteral("Btn_") + A::m_strAxisNames[axis].left(1);
    list.push_back({strBtn + QStringLiteral("_UserFeed"), axis, true,
                    [axis] {
                        return stNumberField{.strTitle = AxisTitle(axis, "User Feed"),
                                             .fRange = FeedRange(CMotorSettings::HighestUserFeed(axis))};
                    },
                    &A::m_fUserAxisFeed[axis],
                    [axis](CMotorSettings& motors, double f) { return motors.SetUserFeed(axis, f); }});
    list.push_back({strBtn + QStringLiteral("_JogFeed"), axis, true,
                    [axis] {
                        return stNumberField{.strTitle = AxisTitle(axis, "Jog Feed"),
                                             .fRange = FeedRange(CMotorSettings::HighestUserFeed(axis))};
                    },
                    &A::m_fAxisJogFeed[axis],
                    [axis](CMotorSettings& motors, double f) {
                        motors.SetJogFeed(axis, f);
                        return QString();
                    }});
    list.push_back({strBtn + QStringLiteral("_HomeFeed"), axis, true,
                    [axis] {
                        return stNumberField{.strTitle = AxisTitle(axis, "Home Feed"),
                                             .fRange = FeedRange(A::m_fMaxAxisFeed[axis])};
                    },
                    &A::m_fAxisHomeFeed[axis], nullptr});
    list.push_back({strBtn + QStringLiteral("_ToolChngPos"), axis, true,
                    [axis] {
                        const QString strAxis = A::m_strAxisNames[axis].left(1);
                        return stNumberField{.strTitle =
                                                 strAxis + QStringLiteral(" Axis Tool Change Pos") +
                                                 (axis < A_AXIS ? QLatin1String("(mm)") : QLatin1String("(deg)")),
                                             .strCaption = strAxis,
                                             .bSign = true};
                    },
                    &A::m_fAxisManualToolChngPos[axis], nullptr});
}

static void AddOthers(std::vector<stUserNumber>& list)
{
    list.push_back({QStringLiteral("Btn_PlungeFeed"), Z_AXIS, false,
                    [] {
                        return stNumberField{.strTitle = QStringLiteral("Plunge Feed(mm/sec)"),
                                             .strCaption = QStringLiteral("Plunge Feed"),
                                             .fRange = FeedRange(A::m_fUserAxisFeed[Z_AXIS])};
                    },
                    &A::m_fPlungeFeed,
                    [](CMotorSettings&, double f) {
                        A::m_fPlungeFeed = std::min(f, A::m_fUserAxisFeed[Z_AXIS]);
                        return QString();
                    }});
    list.push_back({QStringLiteral("Btn_ZSafePos"), Z_AXIS, false,
                    [] {
                        return stNumberField{.strTitle = QStringLiteral("Z Safe Position(mm)"),
                                             .strCaption = QStringLiteral("Z Safe Pos"),
                                             .bSign = true};
                    },
                    &A::m_fZSafePos, nullptr});
    list.push_back({QStringLiteral("Btn_EndMillDia"), Z_AXIS, false,
                    [] {
                        return stNumberField{.strTitle = QStringLiteral("End Mill Diameter(mm)"),
                                             .strCaption = QStringLiteral("End Mill Dia"),
                                             .fRange = {.x = 0.01, .y = THICKEST_MILL}};
                    },
                    &A::m_fEndMillDia, nullptr});
    list.push_back({QStringLiteral("Btn_HomeRepeatOffset"), Z_AXIS, false,
                    [] {
                        return stNumberField{.strTitle = QStringLiteral("Home Repeat Offset(mm)"),
                                             .strCaption = QStringLiteral("Repeat Offset"),
                                             .fRange = {.y = LONGEST_REPEAT}};
                    },
                    &A::m_fHomeRepeatOffset, nullptr});
}

const std::vector<stUserNumber>& UserNumbers()
{
    static const std::vector<stUserNumber> list = [] {
        std::vector<stUserNumber> numbers;
        for (int axis = 0; axis < MAX_AXES; ++axis) AddFeeds(numbers, static_cast<eAxis>(axis));
        AddOthers(numbers);
        return numbers;
    }();
    return list;
}
