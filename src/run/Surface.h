#pragma once
#include "common/MachineTypes.h"

#include <vector>

// A measured surface between its nodes, for the virtual probe: straight lines along X in each row, and between rows
// along Y; flat beyond the border. Any thread.
class CSurface
{
public:
    // Rows along Y, in each the nodes in whatever order along X. Rows without nodes are left out.
    explicit CSurface(std::vector<std::vector<stFloatPoint>> rows);
    bool IsEmpty() const { return m_Rows.empty(); }
    double Height(double fX, double fY) const;   // mm

private:
    static double HeightInRow(const std::vector<stFloatPoint>& row, double fX);
    std::vector<std::vector<stFloatPoint>> m_Rows;   // by Y, and by X in each
};
