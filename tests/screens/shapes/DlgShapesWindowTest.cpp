#include "screens/shapes/DlgShapes.h"
#include "window/WindowSupport.h"

namespace {
class WindowShapes : public CWindowTest
{
protected:
    CDlgShapes& Screen() { return Child<CDlgShapes>(Window(), "CDlgShapes"); }
    void OpenScreen()
    {
        Open();
        TouchButton("Btn_ShapeCarving");
        ASSERT_TRUE(Screen().isVisible());
        ClearLog();
    }
    void AddLine(std::initializer_list<stFloatPoint> points, double fDepth)
    {
        stEngShape shape = stEngShape::NewPolygon();
        shape.pPolygon->lstVertices = points;
        shape.pPolygon->fDepth = fDepth;
        Screen().m_stCuttingInfo.lstShapes.push_back(shape);
    }
    template <class Fn> void InEllipseDialog(Fn fnWork)
    {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &Screen(), [&] {
            if (!Screen().IsEditing()) return;
            timer.stop();
            fnWork();
        });
        timer.start(1);
        TouchButton("Btn_AddEllipse");
        EXPECT_FALSE(Screen().IsEditing());
    }
};

TEST_F(WindowShapes, CutsPausesAndResumesAJob)
{
    for (double& fFeed : AppConfig::m_fUserAxisFeed) fFeed = 5.0;   // slow enough to be paused in time
    OpenScreen();
    Touch(Round("m_BtnStart"));
    EXPECT_EQ(Log(), QStringList("No shapes are added"));
    EXPECT_TRUE(WaitFor([&] { return !Round("m_BtnStart").IsPressed(); }));
    AddLine({{1, 0}, {3, 0}, {3, 1}}, -0.5);
    Touch(Round("m_BtnStart"));
    EXPECT_EQ(Log().value(0), "Shapes cutting started");
    EXPECT_FALSE(Button("Btn_AddEllipse").isEnabled());
    EXPECT_FALSE(Button("Btn_GCode").isEnabled());
    EXPECT_TRUE(Button("Btn_ShapeCarving").isEnabled());
    EXPECT_TRUE(WaitFor([&] { return Machine().GetCurPos(X_AXIS) > 1.2 && Machine().GetCurPos(Z_AXIS) < 0; }));
    Touch(Round("m_BtnPause"));
    EXPECT_TRUE(WaitFor([&] { return Machine().IsMachineIdle(); }));
    EXPECT_LT(Carriages().Carriage(Y_AXIS), 1000);
    Touch(Round("m_BtnStart"));
    EXPECT_FALSE(Machine().m_bPause);
    // The start of the screen itself pauses and resumes too.
    EXPECT_TRUE(Screen().StartShapeCutting() && Machine().m_bPause);
    EXPECT_TRUE(Screen().StartShapeCutting() && !Machine().m_bPause);
    ASSERT_TRUE(WaitIdle());
    EXPECT_EQ(Log().value(0), "Shapes cutting completed");
    EXPECT_EQ(Carriages().Carriage(X_AXIS), 3000);
    EXPECT_EQ(Carriages().Carriage(Y_AXIS), 1000);
    EXPECT_TRUE(Button("Btn_AddEllipse").isEnabled() && Button("Btn_GCode").isEnabled());

    ClearLog();
    AppConfig::m_bEmergencyStopON = true;
    EXPECT_FALSE(Screen().StartShapeCutting());
    AppConfig::m_bEmergencyStopON = false;
    Machine().m_eOperation = OP_Z_PROBE;
    EXPECT_FALSE(Screen().StartShapeCutting());
    Machine().m_eOperation = OP_NONE;
    AppConfig::m_bHomeSensorsUsed = true;
    Machine().ClearHome();
    EXPECT_FALSE(Screen().StartShapeCutting());
    EXPECT_EQ(Log(), QStringList({"Homing not done!\nUse \"Move Home\" in user Settings", "Machine in use",
                                  "Release Emergency Switch"}));
    EXPECT_TRUE(Button("Btn_AddEllipse").isEnabled());
}

TEST_F(WindowShapes, HoldsTheOtherScreensWhileShapesAreEdited)
{
    OpenScreen();
    const QStringList selectors = {"Btn_JobSettings",  "Btn_GCode",        "Btn_ShapeCarving",
                                   "Btn_ImageCarving", "Btn_UserSettings", "Btn_MachineSettings"};
    const auto ExpectSelectors = [&](bool bOn) {
        for (const QString& strName : selectors) EXPECT_EQ(Button(strName).isEnabled(), bOn) << strName.toStdString();
    };
    InEllipseDialog([&] {
        ExpectSelectors(false);
        SaveScreen(Window(), "window-shapes-dialog");
        Touch(Round("m_BtnStart"));
        EXPECT_EQ(Log(), QStringList("Finish editing shapes and click start"));
        Machine().m_eOperation = OP_Z_PROFILE;   // and no end of a job gives them back
        Window().OnOperationFinish();
        ExpectSelectors(false);
        CAnswer keypad(CAnswer::Keys("C70.5"));   // the keypad over the dialog
        auto& dialog = Child<QWidget>(Screen(), "CDlgEllipse");
        Touch(Child(dialog, "Btn_EllipseCenterX"));
        EXPECT_EQ(Child(dialog, "Btn_EllipseCenterX").text(), "70.5000\nCenter X");
        Touch(Child(dialog, "Btn_Ok"));
    });
    ExpectSelectors(true);
    EXPECT_EQ(Screen().m_stCuttingInfo.lstShapes.size(), 1u);
    SaveScreen(Window(), "window-shapes");

    // The start input brings up the program: the dialog ends, its shape stays.
    InEllipseDialog([&] { Window().on_Btn_GCode_clicked(); });
    EXPECT_EQ(Screen().m_stCuttingInfo.lstShapes.size(), 2u);
    ExpectSelectors(true);
}

// The program ends while a dialog is open: its loop ends with the others.
TEST_F(WindowShapes, EndsWithTheProgram)
{
    OpenScreen();
    bool bEnded = false;
    QTimer::singleShot(0, [&] {
        QTimer::singleShot(0, [] { QCoreApplication::quit(); });
        TouchButton("Btn_AddEllipse");
        bEnded = true;
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(bEnded);
    Close();
}
}   // namespace
