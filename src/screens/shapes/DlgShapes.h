#pragma once
#include "screens/host/ScreenHost.h"
#include "screens/shapes/ShapeDrawing.h"
#include "screens/shapes/ShapeHost.h"
#include "screens/shapes/ShapeRows.h"

#include <QDialog>

#include <memory>

class CDlgEditPolygon;
class CDlgEllipse;
class CDlgShapeFromImg;
class QListWidgetItem;
namespace Ui {
class CDlgShapes;
}

// The screen of shape jobs: a picture of the work area, and the list of shapes with what makes, edits, keeps and cuts
// them. The job lives here until the program ends. The window is its parent before ConfigSettings. Interface thread.
class CDlgShapes : public QDialog, public CShapeHost, private CShapeJob
{
    Q_OBJECT

public:
    explicit CDlgShapes(QWidget* pParent = nullptr);
    ~CDlgShapes() override;

    void ConfigSettings();
    void UpdatePlungeFeed();   // and the end mill, which the ellipses follow
    // The scale follows the size of the work area.
    void UpdateWorkArea();
    void ResetUI(bool bEnable);

    // True: the job has been started, or a running one paused or resumed. False: refused, with a line in the log.
    bool StartShapeCutting();
    bool IsEditing() const { return m_Drawing.Dialog() != nullptr; }   // a dialog lies on the list

    void reject() override {}   // Escape must not hide a screen

    using CShapeJob::m_stCuttingInfo;
    using CShapeJob::m_uShapeCountBefore;

    // ---- For the dialogs that make and edit shapes ----
    CShapeJob& Job() override { return *this; }
    const stDisplayScale& Scale() const override { return m_Drawing.Scale(); }
    void DrawWorkArea() override;
    void CreateEllipsePoints(quint32 uIndex) override;
    void LogOnce(const QString& strWhy) override;
    void ToggleBackground(QPushButton* pButton) override;
    bool HasBackground() const override { return m_Drawing.HasBackground(); }

protected:
    void mousePressEvent(QMouseEvent* pEvent) override;
    bool eventFilter(QObject* pObject, QEvent* pEvent) override;   // of the view
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;

private slots:
    void OnMouseMove();
    void on_Lw_Shapes_itemClicked(QListWidgetItem* pItem);
    void on_Lw_Shapes_itemDoubleClicked(QListWidgetItem* pItem);
    void on_Btn_DelShape_clicked();
    void on_Btn_DelAllShapes_clicked();
    void on_Btn_MoveShapeUp_clicked();
    void on_Btn_MoveShapeDown_clicked();
    void on_Btn_AddEllipse_clicked();
    void on_Btn_DrawContour_clicked();
    void on_Btn_ShapeFromTxt_clicked();
    void on_Btn_ShapeFromImg_clicked();
    void on_Btn_SaveWorkArea_clicked();
    void on_Btn_LoadWorkArea_clicked();
    void on_Btn_GenerateGCode_clicked();
    void on_Btn_DispGraphics_clicked();
    void on_Btn_WorkAreaLength_clicked();
    void on_Btn_WorkAreaWidth_clicked();
    void on_Btn_ShapeDepth_clicked();
    void on_Btn_AxisStep_Z_clicked();
    void on_Btn_ZAxisPlungeFeed_clicked();
    void on_Btn_EndMillDia_clicked();

private:
    CScreenHost& Host() const { return HostOf(*this); }
    void LogError(const QString& strText) const { Host().AddLogMsg(strText, MSG_ERROR); }
    void LogAll(const QStringList& lstNotices) const;

    // ---- List ----
    void ShowDepth();   // of the current row
    void MoveRow(int iStep);
    void FollowEndMill();
    bool RemoveRings(int iRow);
    void EditEllipse(size_t uRow);
    void EditPolygon(size_t uIndex);
    // Runs a dialog with the screen selectors off; it changes the entry uEdited, if any, and those that it adds. False:
    // the screen is gone.
    bool RunDialog(CDlgShapeSource& dialog, size_t uEdited = SIZE_MAX);
    void ListNewShapes();    // a dialog's, or a file's
    void AdoptNewShapes();   // the same, and they are drawn

    // ---- Files ----
    QString AskSaveName();
    QString AskGCodeName();
    void ShowSize();

    std::unique_ptr<Ui::CDlgShapes> m_pUi;
    std::unique_ptr<QImage> m_pWorkAreaImg;   // the view's, less its scroll bars
    CShapeRows m_Rows;
    CShapeDrawing m_Drawing;
    double m_fEndMill = 0.0;       // of the ellipses, mm
    QString m_strToldOnce;         // by the dialog that is open
    bool m_bEnableWanted = true;   // as soon as the worker has gone
    std::unique_ptr<CDlgEllipse> m_dlgEllipse;
    std::unique_ptr<CDlgEditPolygon> m_dlgEditPolygon;
    std::unique_ptr<CDlgShapeFromImg> m_dlgShapeFromImg;
};
