#pragma once
#include "screens/shapes/DlgShapeSource.h"

namespace Ui {
class CDlgEllipse;
}

// Edits one ellipse of the job, or the pocket of rings inside it. Every change is on the drawing at once. Interface
// thread.
class CDlgEllipse : public CDlgShapeSource
{
    Q_OBJECT

public:
    CDlgEllipse(CShapeHost& screen, QWidget* pParent);
    ~CDlgEllipse() override;

    void ConfigSettings();
    void UpdateEllipseParams();   // shows the record, and makes its points anew
    void Keep() override;
    void OnDrag(const stFloatPoint& from, const stFloatPoint& to) override;   // the ellipse

    size_t m_uIndex = 0;        // of the ellipse; set before ConfigSettings
    bool m_bAccepted = false;   // by Ok

private slots:
    void on_Btn_EllipseCenterX_clicked();
    void on_Btn_EllipseCenterY_clicked();
    void on_Btn_EllipseMajorAxisDia_clicked();
    void on_Btn_EllipseMinorAxisDia_clicked();
    void on_Btn_EllipseOrientation_clicked();
    void on_Btn_EllipseDepth_clicked();
    void on_Btn_EllipseXStep_clicked();
    void on_Btn_ArcStartAngle_clicked();
    void on_Btn_ArcEndAngle_clicked();
    void on_Btn_EllipseHole_clicked();
    void on_Btn_Ok_clicked();
    void on_Btn_Cancel_clicked();

private:
    // The keypad for one number of the ellipse. True: it has changed.
    bool Ask(QPushButton* pButton, const QString& strName, const QString& strUnit, stFloatPoint range, double& fField,
             bool bSign = false);
    void AskDiameter(QPushButton* pButton, const QString& strName, stFloatPoint range, double stEllipse::*pField);
    void ShowParams(const stEllipse& ellipse);
    void UpdateEllipse();
    void AfterChange();   // the rings of a pocket follow their outline
    void MakeHole();
    void DropHole(stEllipse& ellipse);

    bool m_bHole = false;
    std::unique_ptr<Ui::CDlgEllipse> m_pUi;
};
