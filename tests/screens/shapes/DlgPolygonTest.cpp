#include "screens/shapes/DlgShapesFixture.h"
#include "support/Files.h"
#include "widgets/ButtonStyle.h"

#include <QScrollBar>
#include <QWheelEvent>

namespace {
class PolygonDialogs : public CShapesTest
{
protected:
    ShapePath& Path(size_t uIndex = 0) { return Shapes().at(uIndex).pPolygon->lstVertices; }
    void AddPolygon(const ShapePath& path)
    {
        Shapes().push_back(stEngShape::NewPolygon());
        Path(Shapes().size() - 1) = path;
        Shapes().back().Common().strShapeName = "Plate";
        List().addItem("Plate");
        m_Screen.DrawWorkArea();
    }
    static void ExpectNear(const stFloatPoint& pos, double fX, double fY, double fWithin = 0.4)
    {
        EXPECT_NEAR(pos.x, fX, fWithin);
        EXPECT_NEAR(pos.y, fY, fWithin);
    }
    QString Picture()
    {
        QImage image(40, 20, QImage::Format_RGB32);
        image.fill(qRgb(200, 30, 30));
        const QString strPath = InFolder("guide.png");
        EXPECT_TRUE(image.save(strPath));
        return strPath;
    }
};

TEST_F(PolygonDialogs, DrawsOverAPictureAndClearsTheInsideAsAPocket)
{
    const QString strNoPicture = InFolder("half.bmp");
    EXPECT_TRUE(QImage(Picture()).save(strNoPicture));
    WriteAll(strNoPicture, ReadAll(strNoPicture).chopped(1));
    InDialog("Btn_DrawContour", "CDlgShapeFreeDraw", [&](QWidget& dialog) {
        EXPECT_TIDY(dialog);
        QPushButton &guide = Child(dialog, "Btn_LoadRefGuideImg"), &pocket = Child(dialog, "Btn_CutHole");
        EXPECT_EQ(PressAndAnswer(guide, CAnswer::File("")), "Select a file to Open...: ");
        PressAndAnswer(guide, CAnswer::File(strNoPicture));
        EXPECT_TRUE(
            Log().startsWith("Unable to load the image\n" + strNoPicture + "\nthe file has 2453 bytes of 2454"));
        EXPECT_EQ(guide.styleSheet(), BTN_BKGND_GRAY);
        PressAndAnswer(guide, CAnswer::File(Picture()));
        EXPECT_EQ(guide.styleSheet(), BTN_BKGND_GREEN);
        EXPECT_EQ(Pixel(100, 100), qRgb(200, 30, 30));

        Click(pocket);   // nothing to clear
        EXPECT_TRUE(Path().empty());
        TouchAt(100, 100);
        TouchAt(140, 100);
        TouchDown(View(), At(140, 100) + QPoint(1, 1));   // so soon that it is a double click: a point as well
        TouchUp(View(), At(140, 100) + QPoint(1, 1));
        TouchDown(View(), QPoint(10, 100));    // left of the work area
        TouchDown(View(), QPoint(200, 330));   // below it
        EXPECT_EQ(Path().size(), 3u);
        Click(dialog, "Btn_RemovePt");
        TouchAt(140, 130);
        QTest::mouseClick(&View(), Qt::RightButton, {}, At(10, 10));
        TouchAt(140, 130);
        TouchAt(100, 130);
        ASSERT_EQ(Path().size(), 4u);
        ExpectNear(Path()[2], 140, 130);
        Click(dialog, "Btn_ClosePoly");
        Click(dialog, "Btn_ClosePoly");   // closed is closed
        ASSERT_EQ(Path().size(), 5u);
        SaveScreen(m_Host, "shapes-draw");

        m_Host.Type(-1.5);
        Click(dialog, "Btn_PolyDepth");
        Click(pocket);
        EXPECT_EQ(pocket.styleSheet(), BTN_BKGND_GREEN);
        const size_t uRings = Shapes().size();
        ASSERT_GT(uRings, 5u);
        EXPECT_TRUE(Shapes()[0].pPolygon->bHole);
        ExpectNear(Path()[0], 101, 101, 2.0);   // inside the outline
        SaveScreen(m_Host, "shapes-pocket");
        TouchAt(50, 50);   // no point for a ring
        EXPECT_EQ(Log(), "Switch Pocket off to change the shape");
        Click(pocket);
        ASSERT_EQ(Shapes().size(), 1u);
        EXPECT_EQ(Path().size(), 5u);
        Click(pocket);
        EXPECT_EQ(Shapes().size(), uRings);
        Click(guide);   // and the picture away
        EXPECT_EQ(guide.styleSheet(), BTN_BKGND_GRAY);
        Click(dialog, "Btn_Save");
    });
    EXPECT_EQ(Names().value(0) + '|' + Names().value(1), "Shape_1|Shape_2");
    for (const stEngShape& ring : Shapes()) EXPECT_EQ(ring.Common().fDepth, -1.5);

    const auto uBefore = Names().size();
    InDialog("Btn_DrawContour", "CDlgShapeFreeDraw", [&](QWidget& dialog) { Click(dialog, "Btn_Save"); });
    EXPECT_EQ(Names().size(), uBefore) << "nothing was drawn";
    InDialog("Btn_DrawContour", "CDlgShapeFreeDraw", [&](QWidget& dialog) {
        for (const double fX : {10.0, 12.0, 11.0}) TouchAt(fX, 10 + fX);
        Click(dialog, "Btn_CutHole");
        EXPECT_EQ(Log(), "Shape too small for a pocket with this End-Mill");
        EXPECT_EQ(Shapes().size(), size_t(uBefore) + 1);
        Click(dialog, "Btn_Cancel");
    });
    EXPECT_EQ(Names().size(), uBefore);
    TouchAt(50, 50);   // the drawing takes no points without its dialog
    EXPECT_EQ(Names().size(), uBefore);
}

TEST_F(PolygonDialogs, MovesTurnsScalesAndGivesBackWhatWasThere)
{
    const ShapePath square = {{10, 10}, {30, 10}, {30, 20}, {10, 20}, {10, 10}};
    AddPolygon(square);
    const auto Type = [&](QWidget& dialog, const char* szButton, double fValue) {
        m_Host.Type(fValue);
        Click(dialog, szButton);
    };
    Edit(0, "CDlgEditPolygon", [&](QWidget& dialog) {
        EXPECT_TIDY(dialog);
        Type(dialog, "Btn_ShapeOffsetX", 5);
        Type(dialog, "Btn_ShapeOffsetX", 7);
        Type(dialog, "Btn_ShapeOffsetY", -3);
        ExpectNear(Path()[2], 37, 17, 1e-9);
        Type(dialog, "Btn_ShapeScale", 2);
        ExpectNear(Path()[0], 17, 7, 1e-9);
        ExpectNear(Path()[2], 57, 27, 1e-9);
        Type(dialog, "Btn_ShapeScale", 0.5);
        ExpectNear(Path()[2], 27, 12, 1e-9);
        Type(dialog, "Btn_ShapeScale", 1);
        Type(dialog, "Btn_ShapeOrientation", 45);
        Type(dialog, "Btn_ShapeOrientation", 90);   // clockwise: the lower left corner comes to the upper left
        ExpectNear(Path()[0], 22, 22, 1e-3);
        EXPECT_EQ(Child(dialog, "Btn_ShapeOrientation").text(), "90.0000\nAngle(deg)");
        EXPECT_EQ(m_Host.m_lstKeypads.back().fHigh, 360.0);
        EXPECT_EQ(Path().front().x, Path().back().x);
        SaveScreen(m_Host, "shapes-polygon");
        Click(dialog, "Btn_Cancel");
    });
    ASSERT_EQ(Path().size(), 5u);
    for (size_t n = 0; n < square.size(); ++n) ExpectNear(Path()[n], square[n].x, square[n].y, 0.0);
}

TEST_F(PolygonDialogs, ChangesVertices)
{
    AddPolygon({{10, 10}, {30, 10}, {30, 20}});
    const auto Rows = [](QWidget& dialog) {
        QStringList rows;
        auto& list = Child<QListWidget>(dialog, "LW_PolygonVertices");
        for (int n = 0; n < list.count(); ++n) rows += list.item(n)->text();
        return rows.join('|');
    };
    const auto Vertex = [this](const char* szButton) {
        return CAnswer::Fn([this, szButton](QWidget& modal) {
            for (const double fValue : {5.0, 6.5}) m_Host.Type(fValue);
            Click(modal, "Btn_PolygonVertexX");
            Click(modal, "Btn_PolygonVertexY");
            EXPECT_TIDY(modal);
            SaveScreen(modal, "shapes-vertex");
            Click(modal, szButton);
        });
    };
    Edit(0, "CDlgEditPolygon", [&](QWidget& dialog) {
        for (const char* szButton : {"Btn_MovePtUp", "Btn_MovePtDown", "Btn_DeletePt"}) Click(dialog, szButton);
        EXPECT_EQ(Rows(dialog), "10.0000,10.0000|30.0000,10.0000|30.0000,20.0000") << "no row is selected";
        Click(dialog, "Btn_ClosePoly");
        Click(dialog, "Btn_ClosePoly");
        EXPECT_EQ(Path().size(), 4u);
        PressAndAnswer(Child(dialog, "Btn_InsertPt"), Vertex("Btn_Ok"));   // before all, without a selection
        EXPECT_EQ(Rows(dialog), "5.0000,6.5000|10.0000,10.0000|30.0000,10.0000|30.0000,20.0000|10.0000,10.0000");
        Click(dialog, "Btn_MovePtUp");   // the first stays
        Click(dialog, "Btn_MovePtDown");
        EXPECT_EQ(Path()[1].x, 5.0);
        Click(dialog, "Btn_MovePtUp");
        EXPECT_EQ(Path()[0].x, 5.0);
        PressAndAnswer(Child(dialog, "Btn_InsertPt"), Vertex("Btn_Cancel"));
        EXPECT_EQ(Path().size(), 5u);
        Click(dialog, "Btn_DeletePt");

        auto& list = Child<QListWidget>(dialog, "LW_PolygonVertices");
        // Under the finger, also where the view is zoomed and scrolled.
        TouchAt(30, 20);
        EXPECT_EQ(list.currentRow(), 2);
        Drag(At(30, 20), At(60, 45));
        ExpectNear(Path()[2], 60, 45);
        Drag(At(10, 10), At(12, 14));   // where the path closes
        ExpectNear(Path().front(), 12, 14);
        ExpectNear(Path().back(), 12, 14);
        for (int n = 0; n < 20; ++n) {
            QWheelEvent wheel(QPointF(100, 100), View().mapToGlobal(QPointF(100, 100)), {}, QPoint(0, 120), {}, {},
                              Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&View(), &wheel);
        }
        ASSERT_NEAR(View().GetCurZoomFactor(), 2.0, 1e-9);
        for (QScrollBar* pBar : View().findChildren<QScrollBar*>())
            pBar->setValue(pBar->orientation() == Qt::Vertical ? 300 : 40);
        const auto Zoomed = [](double fX, double fY) { return At(fX, fY) * 2 - QPoint(40, 300); };
        Drag(Zoomed(30, 10), Zoomed(33, 14));
        EXPECT_EQ(list.currentRow(), 1);
        ExpectNear(Path()[1], 33, 14);
        Drag(Zoomed(80, 14), Zoomed(90, 14));   // nothing lies there
        ExpectNear(Path()[1], 33, 14);

        const QPoint first = list.visualItemRect(list.item(0)).center();
        CAnswer vertex(Vertex("Btn_Ok"));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, first);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, first);
        ExpectNear(Path()[0], 5, 6.5, 0.0);
        while (!Path().empty()) Click(dialog, "Btn_DeletePt");
        Click(dialog, "Btn_DeletePt");
        Click(dialog, "Btn_Ok");
    });
    EXPECT_EQ(Names(), QStringList()) << "an empty polygon goes";
}
}   // namespace
