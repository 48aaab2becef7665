#pragma once

struct CMachineAxes;
class QLabel;
class QWidget;

// Where the axes stand, and their letters. Interface thread.
class CPositionPanel
{
public:
    CPositionPanel(QLabel& positions, const CMachineAxes& machine) : m_Positions(positions), m_Machine(machine) {}

    void SetUp(const QWidget& frame);   // that holds the letters
    void Show();                        // once a tick

private:
    QLabel& m_Positions;
    const CMachineAxes& m_Machine;
};
