#pragma once
#include "common/MachineTypes.h"

#include <QDialog>

#include <memory>

class CScreenHost;
class QPushButton;
namespace Ui {
class CDlgEditPolygonVertex;
}

// Asks for the place of one vertex, mm. Interface thread.
class CDlgEditPolygonVertex : public QDialog
{
    Q_OBJECT

public:
    CDlgEditPolygonVertex(CScreenHost& host, QWidget* pParent);
    ~CDlgEditPolygonVertex() override;

    void ConfigSettings();   // shows the vertex

    stFloatPoint m_stVertex;
    bool m_bAccepted = false;   // by Ok

private slots:
    void on_Btn_PolygonVertexX_clicked();
    void on_Btn_PolygonVertexY_clicked();
    void on_Btn_Ok_clicked();
    void on_Btn_Cancel_clicked();

private:
    void Ask(QPushButton* pButton, const QString& strName, double& fField);

    CScreenHost& m_Host;
    std::unique_ptr<Ui::CDlgEditPolygonVertex> m_pUi;
};
