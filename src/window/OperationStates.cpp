#include "window/OperationStates.h"

#include "common/Operation.h"
#include "config/AppConfig.h"
#include "ui_MainWindow.h"

static constexpr unsigned Bit(qint32 iOperation)
{
    return 1u << iOperation;
}
static constexpr unsigned SHAPES = Bit(OP_SHAPES), CARVING = Bit(OP_IMG_CARVING), GCODE = Bit(OP_GCODE),
                          Z_PROFILE = Bit(OP_Z_PROFILE);
static constexpr unsigned CUTTING = SHAPES | CARVING | GCODE;

COperationStates::COperationStates(const Ui_MainWindow& form, QWidget& jogPanel)
    : m_lstRows{
          {form.Btn_JobSettings, CUTTING, SELECTOR},
          {form.Btn_GCode, SHAPES | CARVING | Z_PROFILE, SELECTOR},
          {form.Btn_ShapeCarving, CARVING | GCODE | Z_PROFILE, SELECTOR},
          {form.Btn_ImageCarving, SHAPES | GCODE | Z_PROFILE, SELECTOR},
          {form.Btn_UserSettings, CUTTING | Z_PROFILE, SELECTOR},
          {form.Btn_MachineSettings, CUTTING | Z_PROFILE, SELECTOR},
          {form.Btn_MoveWorkZero, CUTTING},
          {form.Btn_SetZ0WithZProbe, CUTTING, PROBE},
          {form.Btn_SetWorkZero, CUTTING},
          {form.Btn_SimulationMode, CUTTING},
          {form.Btn_SetWorkPieceLength, CUTTING},
          {form.Btn_SetWorkPieceWidth, CUTTING},
          {form.Btn_SetWorkPieceHeight, CUTTING},
          {form.Btn_MoveZSafePos, CUTTING},
          {form.Btn_MoveWorkHome_X, CUTTING},
          {form.Btn_MoveWorkHome_Y, CUTTING},
          {form.Btn_MoveWorkHome_Z, CUTTING},
          {form.Btn_MoveWorkHome_A, CUTTING, EXTRA_AXIS},
          {form.Btn_MoveWorkHome_B, CUTTING, EXTRA_AXIS},
          {&jogPanel, CUTTING},
      }
{
}

bool COperationStates::MayBeEnabled(const stRow& row) const
{
    switch (row.eWhat) {
    case SELECTOR: return !m_bSelectorsOff;
    case EXTRA_AXIS: return m_bFiveAxes;
    case PROBE: return Pin(AppConfig::m_iZProbeInput) < 255;
    case PLAIN: break;
    }
    return true;
}

void COperationStates::SetFiveAxes(bool bFiveAxes)
{
    m_bFiveAxes = bFiveAxes;
    for (const stRow& row : m_lstRows)
        if (row.eWhat == EXTRA_AXIS) row.pWidget->setEnabled(bFiveAxes);
}

void COperationStates::Begin(qint32 iOperation)
{
    for (const stRow& row : m_lstRows)
        if (row.uOff & Bit(iOperation)) row.pWidget->setEnabled(false);
}

void COperationStates::End(qint32 iOperation)
{
    for (const stRow& row : m_lstRows)
        if (row.uOff & Bit(iOperation)) row.pWidget->setEnabled(MayBeEnabled(row));
}

void COperationStates::EnableSelectors(bool bEnable, qint32 iRunning)
{
    m_bSelectorsOff = !bEnable;
    for (const stRow& row : m_lstRows)
        if (row.eWhat == SELECTOR) row.pWidget->setEnabled(MayBeEnabled(row) && !(row.uOff & Bit(iRunning)));
}
