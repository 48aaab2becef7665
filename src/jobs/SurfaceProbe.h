#pragma once
#include "machine/Machine.h"

#include <QString>

// Measures a surface with the Z-probe: the grid of AppConfig::m_ZProfileInfo, node by node.
class CSurfaceProbe
{
public:
    explicit CSurfaceProbe(CMachine& machine) : m_Machine(machine) {}

    // In the operator's words; empty: it can be measured. Settings that would never end.
    static QString WhyNotMeasured();
    void CreateZProfile();   // worker

private:
    CMachine& m_Machine;
};
