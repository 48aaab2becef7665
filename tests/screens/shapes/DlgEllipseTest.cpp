#include "screens/shapes/DlgShapesFixture.h"
#include "widgets/ButtonStyle.h"

namespace {
class EllipseDialog : public CShapesTest
{
protected:
    stEllipse& Ellipse(size_t uIndex) { return *Shapes().at(uIndex).pEllipse; }
};

TEST_F(EllipseDialog, AsksForEveryNumberAndMakesThePathAtOnce)
{
    AppConfig::m_fAxisMovPerPulse[X_AXIS] = 0.1;
    AppConfig::m_fAxisMovPerPulse[Z_AXIS] = 0.05;
    const struct
    {
        const char *szButton, *szTitle, *szCaption;
        double fLow, fHigh, fTyped;
        const char* szShown;
    } lstNumbers[] = {
        {"EllipseCenterX", "Center X(mm)", "Center X", 0.01, 1e8, 60, "60.0000\nCenter X"},
        {"EllipseCenterY", "Center Y(mm)", "Center Y", 0.01, 1e8, 70, "70.0000\nCenter Y"},
        {"EllipseMajorAxisDia", "Major Axis Dia(mm)", "Major Axis Dia", 25, 1e5, 40, "40.0000\nMajor Axis Dia"},
        {"EllipseMinorAxisDia", "Minor Axis Dia(mm)", "Minor Axis Dia", 0.1, 40, 30, "30.0000\nMinor Axis Dia"},
        {"EllipseOrientation", "Orientation(deg)", "Orientation(deg)", 0, 360, 90, "90.0000\nOrientation(deg)"},
        {"EllipseDepth", "Depth(mm)", "Depth", -10000, -0.05, -3, "-3.0000\nDepth"},
        {"EllipseXStep", "X Step(mm)", "X Step", 0.1, 1000, 0.25, "0.2\nX Step"},   // whole pulses
        {"ArcEndAngle", "Arc End Angle(deg)", "Arc End Angle", 0, 360, 180, "180.0000\nArc End Angle"},
        {"ArcStartAngle", "Arc Start Angle(deg)", "Arc Start Angle", 0, 180, 90, "90.0000\nArc Start Angle"},
    };
    InDialog("Btn_AddEllipse", "CDlgEllipse", [&](QWidget& dialog) {
        EXPECT_TIDY(dialog);
        SaveScreen(m_Host, "shapes-ellipse");
        for (const auto& number : lstNumbers) {
            m_Host.Type(number.fTyped);
            QPushButton& button = Child(dialog, QString("Btn_") + number.szButton);
            Click(button);
            const auto& keypad = m_Host.m_lstKeypads.back();
            EXPECT_EQ(keypad.strTitle + '|' + keypad.strCtrlTxt, QString(number.szTitle) + '|' + number.szCaption);
            EXPECT_EQ(keypad.fLow, number.fLow) << number.szTitle;
            EXPECT_EQ(keypad.fHigh, number.fHigh) << number.szTitle;
            EXPECT_EQ(keypad.bShowSign, keypad.strTitle == "Depth(mm)");
            EXPECT_EQ(button.text(), number.szShown);
            EXPECT_EQ(button.styleSheet(), BTN_BKGND_GRAY);
        }
        EXPECT_TIDY(dialog);
        Click(dialog, "Btn_Ok");
    });
    EXPECT_EQ(Names(), QStringList("Ellipse_1"));
    const stEllipse& arc = Ellipse(0);
    EXPECT_EQ(arc.fXAxisStep, 0.2);
    EXPECT_EQ(arc.fDepth, -3.0);
    ASSERT_GT(arc.lstPoints.size(), 50u);
    // A quarter from the top leftwards, turned clockwise by 90 degrees: from the right to the top, 1 mm outside.
    EXPECT_NEAR(arc.lstPoints.front().x, 60 + 16, 0.1);
    EXPECT_NEAR(arc.lstPoints.front().y, 70, 0.3);
    EXPECT_NEAR(arc.lstPoints.back().x, 60, 2.0);
    EXPECT_NEAR(arc.lstPoints.back().y, 70 + 21, 0.2);
    EXPECT_EQ(Child(m_Screen, "Btn_ShapeDepth").text(), "-3.0000\nDepth");

    // An end at 0 leaves no room for the start: nothing but 0 is taken.
    Edit(0, "CDlgEllipse", [&](QWidget& dialog) {
        for (const double fTyped : {0.0, 0.0, 500.0}) m_Host.Type(fTyped);
        for (const char* szButton : {"Btn_ArcStartAngle", "Btn_ArcEndAngle", "Btn_ArcStartAngle"})
            Click(dialog, szButton);
        EXPECT_EQ(arc.fArcStartAngle, 0.0);
        Click(dialog, "Btn_Cancel");
    });
    EXPECT_EQ(arc.fArcStartAngle, 90.0) << "Cancel brings back what was there";
    EXPECT_GT(arc.lstPoints.size(), 50u);
    EXPECT_EQ(Names(), QStringList("Ellipse_1"));
}

TEST_F(EllipseDialog, MovesUnderTheFingerWithTheRingsOfItsPocket)
{
    InDialog("Btn_AddEllipse", "CDlgEllipse", [&](QWidget& dialog) {
        QPushButton& hole = Child(dialog, "Btn_EllipseHole");
        m_Host.Type(20.0);
        m_Host.Type(10.0);
        Click(dialog, "Btn_EllipseMinorAxisDia");
        Click(dialog, "Btn_EllipseMinorAxisDia");
        m_Host.Type(20.0);
        Click(dialog, "Btn_EllipseMajorAxisDia");
        Click(hole);
        EXPECT_EQ(hole.styleSheet(), BTN_BKGND_GREEN);
        ASSERT_EQ(Shapes().size(), 5u);   // inside 10 by 5: 9 by 4, 8 by 3, 7 by 2, 6 by 1
        EXPECT_EQ(Ellipse(1).fMajorAxisDia, 18.0);
        EXPECT_EQ(Ellipse(4).fMinorAxisDia, 2.0);

        Drag(At(55, 51), At(100, 80));
        EXPECT_NEAR(Ellipse(0).stCenter.x, 100, 0.5);
        EXPECT_NEAR(Ellipse(0).stCenter.y, 80, 0.5);
        ASSERT_EQ(Shapes().size(), 5u);
        EXPECT_EQ(Ellipse(3).stCenter.x, Ellipse(0).stCenter.x);
        Drag(At(150, 120), At(30, 30));   // beside it
        EXPECT_NEAR(Ellipse(0).stCenter.x, 100, 0.5);

        m_Host.Type(8.0);   // the rings follow
        Click(dialog, "Btn_EllipseMinorAxisDia");
        EXPECT_EQ(Shapes().size(), 4u);
        m_Host.Type(-2.5);
        Click(dialog, "Btn_EllipseDepth");
        Click(hole);
        EXPECT_EQ(Shapes().size(), 1u);
        EXPECT_FALSE(Ellipse(0).bHole);
        Click(hole);
        Click(dialog, "Btn_Ok");
    });
    EXPECT_EQ(Names(), QStringList({"Ellipse_1_1", "Ellipse_1_2", "Ellipse_1_3", "Ellipse_1_4"}));
    for (const stEngShape& ring : Shapes()) {
        EXPECT_EQ(ring.Common().fDepth, -2.5);
        EXPECT_GT(ring.Path().size(), 4u);
    }

    // A tool that just fits leaves no ring, and no larger one makes a pocket.
    AppConfig::m_fEndMillDia = 8.1;
    InDialog("Btn_AddEllipse", "CDlgEllipse", [&](QWidget& dialog) {
        m_Host.Type(8.0);
        Click(dialog, "Btn_EllipseMinorAxisDia");
        Click(dialog, "Btn_EllipseHole");
        EXPECT_EQ(Log(), "End-mill size too big. Please change the End-Mill");
        EXPECT_FALSE(Ellipse(4).bHole) << "refused: as it was";
        AppConfig::m_fEndMillDia = 8.0;
        Click(dialog, "Btn_EllipseHole");
        EXPECT_EQ(Child(dialog, "Btn_EllipseHole").styleSheet(), BTN_BKGND_GREEN);
        EXPECT_EQ(Shapes().size(), 5u);
        Click(dialog, "Btn_EllipseHole");
        Click(dialog, "Btn_Ok");
    });
    EXPECT_EQ(Names().value(4), "Ellipse_5");
    AppConfig::m_fEndMillDia = 2.0;
    InDialog("Btn_AddEllipse", "CDlgEllipse", [&](QWidget& dialog) { Click(dialog, "Btn_Cancel"); });
    EXPECT_EQ(Names().size(), 5);

    // A pocket that was there is one thing: opened by any of its rings, with one set of them, and Cancel brings it
    // back.
    const auto before = Shapes();
    Edit(2, "CDlgEllipse", [&](QWidget& dialog) {
        EXPECT_EQ(Child<QLabel>(dialog, "Lbl_Name").text(), "Ellipse_1_1");
        EXPECT_EQ(Child(dialog, "Btn_EllipseHole").styleSheet(), BTN_BKGND_GREEN);
        EXPECT_EQ(Shapes().size(), 5u);
        m_Host.Type(1.9);
        Click(dialog, "Btn_EllipseMinorAxisDia");
        EXPECT_EQ(Log(), "End-mill size too big. Please change the End-Mill");
        EXPECT_EQ(Child(dialog, "Btn_EllipseMinorAxisDia").text(), "8.0000\nMinor Axis Dia");
        EXPECT_EQ(Shapes().size(), 5u);
        Click(dialog, "Btn_EllipseHole");
        EXPECT_EQ(Shapes().size(), 2u);
        Click(dialog, "Btn_Cancel");
    });
    ASSERT_EQ(Names().size(), 5);
    for (size_t n = 0; n < 5; ++n) EXPECT_EQ(Shapes()[n].pEllipse, before[n].pEllipse) << n;
    EXPECT_TRUE(Ellipse(0).bHole);
    Edit(0, "CDlgEllipse", [&](QWidget& dialog) {
        m_Host.Type(6.0);
        Click(dialog, "Btn_EllipseMinorAxisDia");
        Click(dialog, "Btn_Ok");
    });
    EXPECT_EQ(Names(), QStringList({"Ellipse_1_1", "Ellipse_1_1_1", "Ellipse_1_1_2", "Ellipse_5"}));

    // A new tool, here or from another screen.
    Shapes().push_back(stEngShape::NewPolygon());
    Shapes().back().pPolygon->strShapeName = "Shape_1";
    Shapes().back().pPolygon->bHole = true;
    m_Host.Type(1.0);
    Click(m_Screen, "Btn_EndMillDia");
    EXPECT_EQ(Log(), "Ellipses made anew for the End-Mill of 1 mm: 2|"
                     "Drawn pockets keep the path of the old End-Mill, draw them anew: Shape_1");
    EXPECT_EQ(Names().join(' '), "Ellipse_1_1 Ellipse_1_1_1 Ellipse_1_1_2 Ellipse_1_1_3 Ellipse_1_1_4 Ellipse_1_1_5 "
                                 "Ellipse_5 Shape_1");
    EXPECT_EQ(Ellipse(6).lstPoints.front().x, 50 + 13.0);
    AppConfig::m_fEndMillDia = 6.1;   // too wide for the pocket
    m_Screen.UpdatePlungeFeed();
    EXPECT_EQ(Log().section('|', 0, 1), "Ellipses made anew for the End-Mill of 6.1 mm: 2|"
                                        "Ellipse_1_1 has no points: its pocket is narrower than the end-mill");
    AppConfig::m_fEndMillDia = 2.0;
    m_Screen.UpdatePlungeFeed();
    ASSERT_EQ(Names().size(), 5);
    while (List().currentRow() > 0) Click(m_Screen, "Btn_MoveShapeDown");
    const auto Delete = [&](QMessageBox::StandardButton eAnswer) {
        return PressAndAnswer(Child(m_Screen, "Btn_DelShape"), eAnswer);
    };
    EXPECT_EQ(Delete(QMessageBox::Cancel), "Warning: Do you want to delete the 2 rings of this pocket too?");
    EXPECT_EQ(Names().size(), 5);
    Delete(QMessageBox::Yes);
    EXPECT_EQ(Names().join(' '), "Ellipse_5 Shape_1");
}
}   // namespace
