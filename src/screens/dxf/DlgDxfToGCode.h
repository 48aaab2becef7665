#pragma once
#include "dxf/DxfToGCode.h"

#include <QDialog>

#include <memory>

class QPushButton;
namespace Ui {
class dlgDxfToGCode;
}

// Asks for the cutting values of a drawing's conversion. Modal; there is no cancel, every value holds as it is when the
// dialog closes. The values begin at their defaults each time. The window is its parent. Interface thread.
class dlgDxfToGCode : public QDialog
{
    Q_OBJECT

public:
    explicit dlgDxfToGCode(QWidget* pParent);
    ~dlgDxfToGCode() override;

    stDXF2GCode m_stSettings;

private slots:
    void on_Btn_Feed_clicked();
    void on_Btn_EndMillDia_clicked();
    void on_Btn_AxisStep_Z_clicked();
    void on_Btn_ShapeDepth_clicked();
    void on_Btn_Ok_clicked();

private:
    double Ask(QPushButton* pButton, const char* szTitle, const char* szLabel, double fValue, double fLow, double fHigh,
               bool bSign = false);

    std::unique_ptr<Ui::dlgDxfToGCode> m_pUi;
};
