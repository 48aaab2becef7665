#pragma once
#include "cases/Cases.h"
#include "machine/MoveSpy.h"

#include <optional>

inline QJsonArray CountsOf(const AxisCtrl& axis)
{
    return {qint64(axis.m_uAccPulses), qint64(axis.m_uConstPulses), qint64(axis.m_uDecPulses)};
}
inline QJsonObject Joined(QJsonObject one, const QJsonObject& other)
{
    for (auto it = other.begin(); it != other.end(); ++it) one[it.key()] = *it;
    return one;
}

// The worker on virtual time as a case of motion begins: its settings, its axes where they stand.
struct CMachineRig
{
    explicit CMachineRig(CFields& in)
    {
        Configure(in["cfg"].toObject());
        app.InitMachine();
        const QJsonValue start = in["start_mm"];
        const bool bHome = in["home_done"].toBool();
        for (int axis = 0; axis < MAX_AXES; ++axis) {
            app.m_AxisCtrl[axis].SetCurPos(start.isArray() ? start[axis].toDouble() : start.toDouble());
            app.m_AxisCtrl[axis].m_bHomeDone = bHome;
        }
        app.m_eOperation = in["operation"].toInt(OP_GCODE);
    }
    QJsonArray Positions() const
    {
        QJsonArray positions;
        for (const qint64 lUnits : app.Units()) positions.append(lUnits);
        return positions;
    }
    // A coordinated move at the axes: which were selected, with how many pulses, which way.
    QJsonObject SeenMove() const
    {
        QJsonArray toMove, counts, dirs, tables;
        for (int axis = 0; axis < MAX_AXES; ++axis) toMove.append(CAllAxisCtrl::m_lstAxisToMov[axis]);
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
            const AxisCtrl& ctrl = app.m_AxisCtrl[axis];
            counts.append(toMove[axis].toBool() ? QJsonValue(CountsOf(ctrl)) : QJsonValue());
            dirs.append(int(ctrl.m_eDir));
            tables.append(int(ctrl.m_ucCurTable));
        }
        return {{"to_move", toMove}, {"counts", counts}, {"dirs", dirs}, {"slots", tables}, {"positions", Positions()}};
    }

    std::optional<CVirtualTime> time{std::in_place};
    CMoveSpy app;
};
