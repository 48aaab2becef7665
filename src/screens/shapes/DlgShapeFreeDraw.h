#pragma once
#include "screens/shapes/DlgShapeSource.h"

namespace Ui {
class CDlgShapeFreeDraw;
}

// Draws a polygon by touches on the work area, and clears its inside as a pocket of rings. Interface thread.
class CDlgShapeFreeDraw : public CDlgShapeSource
{
    Q_OBJECT

public:
    CDlgShapeFreeDraw(CShapeHost& screen, QWidget* pParent);
    ~CDlgShapeFreeDraw() override;

    void ConfigSettings();
    // Another way to keep the tool beside the outline, which no button calls: a second polygon along the axes.
    void ApplyToolOffset(const QString& strSide);
    void Keep() override;
    void OnPress(const stFloatPoint& at, Qt::MouseButton eButton) override;   // appends, or with the right takes away
    stMarks Marks() const override { return {.bLastPoint = true}; }

private slots:
    void on_Btn_ClosePoly_clicked();
    void on_Btn_RemovePt_clicked();   // ours: a finger has no right button
    void on_Btn_CutHole_clicked();
    void on_Btn_PolyDepth_clicked();
    void on_Btn_LoadRefGuideImg_clicked();
    void on_Btn_Save_clicked();
    void on_Btn_Cancel_clicked();

private:
    void DropPocket();
    void MakePocket();

    std::unique_ptr<Ui::CDlgShapeFreeDraw> m_pUi;
};
