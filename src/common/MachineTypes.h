#pragma once
#include <QString>

// The vocabulary of the whole system. Distances are mm (rotary axes use the same numbers), feeds mm/s, accelerations
// mm/s^2, rates of acceleration mm/s^3; a position inside the axis controllers is a signed 32-bit count of 1/10000 mm.
// The numeric values of the enumerations go to files and into arithmetic (the opposite of a direction is one minus it).

enum eAxis
{
    X_AXIS = 0,
    Y_AXIS = 1,
    Z_AXIS = 2,   // the only axis on which the Z-probe is watched
    A_AXIS = 3,   // A and B exist only on a machine of five axes
    B_AXIS = 4
};
inline constexpr int MAX_AXES = 5;

enum eDirection : qint32   // a file may hold any byte, which must have a defined opposite
{
    DIR_CW = 0,   // level 0 on a direction pin; M3 for the spindle
    DIR_CCW = 1   // level 1 on a direction pin; M4 for the spindle
};

constexpr eDirection Opposite(eDirection eDir)
{
    return static_cast<eDirection>(1 - eDir);
}

enum eAppMsgType
{
    MSG_INFO = 0,     // green
    MSG_NOTICE = 1,   // white
    MSG_ERROR = 2     // orange
};

enum eGMoveCmnd
{
    G00_MOVE = 0,   // rapid
    G01_MOVE = 1    // feed, also the chords of arcs
};

enum eVantorController
{
    VTR3_CTRL = 0,     // three axes and M-code outputs on the Pi's own pins
    VTR5_CTRL = 1,     // five axes on the Pi's own pins
    SPI_CTRL_16 = 2,   // expansion board, 16 outputs
    SPI_CTRL_24 = 3    // expansion board, 24 outputs
};

// The five-axis position, mm. An axis that the machine does not have stays 0.0.
struct stFloatPoint
{
    double x = 0.0, y = 0.0, z = 0.0, a = 0.0, b = 0.0;
};

// The field of an axis, for loops over eAxis.
inline double& AxisOf(stFloatPoint& pos, int axis)
{
    switch (axis) {
    case X_AXIS: return pos.x;
    case Y_AXIS: return pos.y;
    case Z_AXIS: return pos.z;
    case A_AXIS: return pos.a;
    default: return pos.b;
    }
}
inline double AxisOf(const stFloatPoint& pos, int axis)
{
    return AxisOf(const_cast<stFloatPoint&>(pos), axis);
}

// The axes that take part in one coordinated move.
struct stAxisToMove
{
    bool bX = false, bY = false, bZ = false, bA = false, bB = false;

    bool& operator[](int axis)
    {
        bool* const fields[MAX_AXES] = {&bX, &bY, &bZ, &bA, &bB};
        return *fields[axis];
    }
    bool operator[](int axis) const { return const_cast<stAxisToMove&>(*this)[axis]; }
};
static_assert(sizeof(stAxisToMove) == MAX_AXES);

inline constexpr qint32 ACTION_DELAY = 2000000;             // no logic depends on it
inline constexpr quint16 MAX_GCODE_LINES_TO_LOAD = 10000;   // no logic depends on it: programs of any length load
inline constexpr double DECIMAL_MULTIPLYER = 10000.0;       // position units per mm
inline constexpr double SMALL_NUMBER_TO_AVOID_ROUND_ERRORS = 1e-05;   // mm, added away from zero before truncation
inline constexpr double SMALL_NUMBER_TO_CHECK_ZERO = 9e-05;           // a difference below this is none
inline constexpr quint16 PRECISION = 4;                               // decimals printed for positions and lengths
inline constexpr double MAX_GPIO_FREQUENCY = 1500000.0;   // pulses/s, the highest step rate that settings may ask for
inline constexpr double INCH_TO_MM_MUL_FACTOR = 25.4;
inline constexpr double MAX_FEED_CHANGE_PERCENT = 1.5;   // room of a user feed below the axis's highest feed

inline const QString SOFTWARE_VERSION = QStringLiteral("Ver4.0");   // also the version of the configuration file
inline const QString HOME_FOLDER = QStringLiteral("/home/vantor");
inline const QString WORKING_FOLDER = QStringLiteral("/home/vantor/VANTOR");
inline const QString CONFIG_FILE = WORKING_FOLDER + QStringLiteral("/VANTOR.dat");
inline const QString GCODE_EXEC_STATUS_FILE = WORKING_FOLDER + QStringLiteral("/GCodeStatus.dat");

// Style sheets of push buttons. Gray rests; green, blue and red mark what is selected or active.
#define VANTOR_BTN_GRADIENT                                                                                            \
    "qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5, stop:0 rgba(255, 255, 255, 255), stop:1 "
inline const QString BTN_BKGND_GRAY =
    QStringLiteral(":enabled {background-color: " VANTOR_BTN_GRADIENT
                   "rgba(100, 100, 100, 255));border-style: solid;border-width: 2px;border-color: black;}\n"
                   ":disabled{background-color:rgb(124,124, 124);color:rgb(0, 0, 0);}");
inline const QString BTN_BKGND_BLUE =
    QStringLiteral("background-color: " VANTOR_BTN_GRADIENT
                   "rgba(0, 0, 255, 255));border-style: solid;border-width: 2px;border-color: black;");
inline const QString BTN_BKGND_GREEN =
    QStringLiteral("background-color: " VANTOR_BTN_GRADIENT
                   "rgba(0, 100, 0, 255));border-style: solid;border-width: 2px;border-color: black;");
inline const QString BTN_BKGND_RED =
    QStringLiteral("background-color: " VANTOR_BTN_GRADIENT
                   "rgba(255, 0, 0, 255));border-style: solid;border-width: 2px;border-color: black;");
#undef VANTOR_BTN_GRADIENT
inline const QString BTN_BKGND_START = QStringLiteral("color: rgb(255, 255, 255);background-color: rgb(0, 100, 0);");
inline const QString BTN_BKGND_PAUSE = QStringLiteral("color: rgb(255, 255, 255);background-color: rgb(150, 100, 0);");
