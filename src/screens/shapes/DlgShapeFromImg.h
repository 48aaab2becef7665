#pragma once
#include "screens/shapes/DlgShapeSource.h"

#include <opencv2/core/mat.hpp>

namespace Ui {
class CDlgShapeFromImg;
}

// Makes polygons of the dark areas of a picture. The picture and the settings stay from one opening to the next; every
// change makes the polygons anew. Interface thread.
class CDlgShapeFromImg : public CDlgShapeSource
{
    Q_OBJECT

public:
    CDlgShapeFromImg(CShapeHost& screen, QWidget* pParent);
    ~CDlgShapeFromImg() override;

    void ConfigSettings();   // at each opening: the offsets are 0 again
    void FindContours();
    void Keep() override;

private slots:
    void on_Btn_LoadImage_clicked();
    void on_Btn_ImgThreshold_clicked();
    void on_Btn_ShapeOffsetPosX_clicked();
    void on_Btn_ShapeOffsetPosY_clicked();
    void on_Btn_MinShapeSize_clicked();
    void on_Btn_MaxShapeSize_clicked();
    void on_Btn_ShapeLength_clicked();
    void on_Btn_ShapeWidth_clicked();
    void on_Btn_ShapeDepth_clicked();
    void on_Btn_Ok_clicked();
    void on_Btn_Cancel_clicked();

private:
    std::optional<double> Ask(QPushButton* pButton, const QString& strTitle, const QString& strName, stFloatPoint range,
                              double fValue, quint16 iDecimals = PRECISION);
    void LoadImage(const QString& strPath);
    void Retrace(QPushButton* pPressed);   // which stays coloured for as long as it takes

    cv::Mat m_Img;
    stFloatPoint m_stImgOffset;
    quint16 m_uThreshold = 50;
    quint32 m_uMinVertices = 100, m_uMaxVertices = 10000;
    QString m_strImgName;
    double m_fShapeWidth = 100.0, m_fShapeLength = 100.0, m_fShapeDepth = -10.0;   // mm
    std::unique_ptr<Ui::CDlgShapeFromImg> m_pUi;
};
