#pragma once
#include <QString>

// What is said in several rooms when something may not start, word for word the same in each.
inline const QString MACHINE_IN_USE = QStringLiteral("Machine in use");
inline const QString AXIS_IN_USE = QStringLiteral("Axis in use");
inline const QString RELEASE_EMERGENCY_SWITCH = QStringLiteral("Release Emergency Switch");
inline const QString NOT_IN_SIMULATION = QStringLiteral("Not in simulation: it would change the real machine's place");
inline const QString HOMING_NOT_DONE = QStringLiteral("Homing not done! Use \"Move Home\" in user Settings");
inline const QString HOMING_NOT_DONE_SHOWN = QStringLiteral("Homing not done!\nUse \"Move Home\" in user Settings");
