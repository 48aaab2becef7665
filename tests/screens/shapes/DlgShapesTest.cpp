#include "screens/shapes/DlgShapesFixture.h"
#include "support/Files.h"
#include "widgets/ButtonStyle.h"

namespace {
class ShapesScreen : public CShapesTest
{
protected:
    void Add(const char* szName, double fDepth = -2.0)
    {
        Shapes().push_back(stEngShape::NewPolygon());
        stPolygon& polygon = *Shapes().back().pPolygon;
        polygon.strShapeName = szName;
        polygon.fDepth = fDepth;
        polygon.lstVertices = {{0, 0}, {30, 0}, {30, 30}, {0, 30}, {0, 0}};
        List().addItem(szName);
    }
    QString Press(const char* szButton)
    {
        Click(m_Screen, szButton);
        return Names().join(' ');
    }
    void SelectByTouch(int iRow)
    {
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, List().visualItemRect(List().item(iRow)).center());
    }
    QString Path(const char* szName) const { return m_Home.filePath(szName); }
    template <class... A> QString Do(const char* szButton, const A&... answers)
    {
        return PressAndAnswer(Child(m_Screen, szButton), answers...);
    }
};

TEST_F(ShapesScreen, KeepsRowsAndEntriesTogether)
{
    for (const char* szButton : {"Btn_DelShape", "Btn_MoveShapeUp", "Btn_MoveShapeDown", "Btn_ShapeDepth"})
        EXPECT_EQ(Press(szButton), "") << szButton;   // nothing is selected
    for (const char* szName : {"A", "B", "C"}) Add(szName, szName[0] - 'D');
    EXPECT_EQ(Press("Btn_MoveShapeUp"), "A B C");
    SelectByTouch(0);
    EXPECT_EQ(Child(m_Screen, "Btn_ShapeDepth").text(), "-3.0000\nDepth");
    EXPECT_EQ(Press("Btn_MoveShapeDown"), "A B C");
    EXPECT_EQ(Press("Btn_MoveShapeUp"), "B A C");   // up is towards the end
    EXPECT_EQ(Press("Btn_MoveShapeUp"), "B C A");
    EXPECT_EQ(Press("Btn_MoveShapeUp"), "B C A");
    EXPECT_EQ(Press("Btn_MoveShapeDown"), "B A C");
    EXPECT_EQ(Shapes()[1].Common().fDepth, -3.0);
    EXPECT_EQ(Press("Btn_DelShape"), "B C");
    m_Host.Type(-7.5);
    const int iRow = List().currentRow();
    Click(m_Screen, "Btn_ShapeDepth");
    EXPECT_EQ(Shapes()[size_t(iRow)].Common().fDepth, -7.5);
    EXPECT_EQ(Do("Btn_DelAllShapes", QMessageBox::No), "Warning: Do you want to delete all Shapes");
    EXPECT_EQ(Names().size(), 2);
    Do("Btn_DelAllShapes", QMessageBox::Yes);
    EXPECT_EQ(Names().size(), 0);
}

TEST_F(ShapesScreen, AsksForItsNumbers)
{
    AppConfig::m_fAxisMovPerPulse[Z_AXIS] = 0.05;
    AppConfig::m_fUserAxisFeed[Z_AXIS] = 30.0;
    AppConfig::m_fAxisNegDirLimit[Z_AXIS] = -80.0;
    Add("A");
    SelectByTouch(0);
    const auto Ask = [this](const char* szButton, double fTyped) {
        m_Host.Type(fTyped);
        Click(m_Screen, szButton);
        const auto& keypad = m_Host.m_lstKeypads.back();
        return QString("%1|%2|%3|%4|%5|%6")
            .arg(keypad.strTitle, keypad.strCtrlTxt)
            .arg(keypad.fLow)
            .arg(keypad.fHigh)
            .arg(keypad.iPrecision)
            .arg(keypad.bShowSign ? "sign" : "");
    };
    EXPECT_EQ(Ask("Btn_WorkAreaLength", 480), "Work Area Length(mm)|Length|1|1e+06|4|");
    EXPECT_EQ(Ask("Btn_WorkAreaWidth", 100), "Work Area Width(mm)|Width|1|1e+06|4|");
    EXPECT_EQ(m_Screen.Scale().fPixPerMM, (480.0 - 50.0) / 480.0);
    EXPECT_EQ(Ask("Btn_WorkAreaWidth", 500), "Work Area Width(mm)|Width|1|1e+06|4|");
    EXPECT_EQ(m_Screen.Scale().fPixPerMM, (338.0 - 50.0) / 500.0);
    EXPECT_EQ(Ask("Btn_ShapeDepth", -3), "Shape Depth(mm)|Depth|-10000|-0.05|4|sign");
    EXPECT_EQ(Ask("Btn_AxisStep_Z", 0.5), "Z Step(mm)|z Step|0.05|10000|4|");
    EXPECT_EQ(m_Screen.m_stCuttingInfo.fZStep, 0.5);
    EXPECT_EQ(Ask("Btn_ZAxisPlungeFeed", 12), "Plunge Feed(mm/sec)|Plunge Feed|0.05|30|4|");
    EXPECT_EQ(AppConfig::m_fPlungeFeed, 12.0);
    EXPECT_EQ(Ask("Btn_EndMillDia", 3.2), "End-Mill|End-Mill|0.1|100|1|");
    EXPECT_EQ(AppConfig::m_fEndMillDia, 3.2);
    EXPECT_TIDY(m_Screen);

    // Home sensors: the area is the travel from work zero on, and Z has an end.
    AppConfig::m_bHomeSensorsUsed = true;
    AppConfig::m_fAxisPosDirLimit[X_AXIS] = 400.0;
    AppConfig::m_fAxisPosDirLimit[Y_AXIS] = 250.0;
    AppConfig::m_fAxisWorkZero[X_AXIS] = 40.0;
    m_Screen.ResetUI(true);
    m_Screen.hide();
    m_Screen.show();
    EXPECT_EQ(m_Screen.m_stCuttingInfo.stWorkArea.x, 360.0);
    EXPECT_EQ(Child(m_Screen, "Btn_WorkAreaWidth").text(), "250\nWidth");
    EXPECT_FALSE(Child(m_Screen, "Btn_WorkAreaLength").isEnabled());
    EXPECT_EQ(Ask("Btn_ShapeDepth", -3), "Shape Depth(mm)|Depth|-80|-0.05|4|sign");
    EXPECT_EQ(Ask("Btn_AxisStep_Z", 0.5), "Z Step(mm)|z Step|0.05|80|4|");
    m_Screen.ResetUI(false);
    EXPECT_FALSE(Child(m_Screen, "Btn_AddEllipse").isEnabled());
    AppConfig::m_bHomeSensorsUsed = false;
    m_Screen.ResetUI(true);
    EXPECT_TRUE(Child(m_Screen, "Btn_WorkAreaLength").isEnabled());
}

TEST_F(ShapesScreen, SavesLoadsAndWritesGCode)
{
    Click(m_Screen, "Btn_SaveWorkArea");
    Click(m_Screen, "Btn_GenerateGCode");
    EXPECT_EQ(Log(), "No shapes added|No Shapes Added");
    Add("A");
    m_Host.m_Machine.m_eOperation = OP_MCH_HOME;   // of which it would wait for the pause, and take the speeds
    Click(m_Screen, "Btn_GenerateGCode");
    EXPECT_EQ(Log(), "Machine in use");
    m_Host.m_Machine.m_eOperation = OP_NONE;
    Do("Btn_SaveWorkArea", CAnswer::File(""));
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(Do("Btn_SaveWorkArea", CAnswer::File(Path("job"))), "Select file tosave...: ");
    EXPECT_EQ(Log(), "Work area saved to\n" + Path("job.xml"));
    EXPECT_TRUE(WaitFor([this] { return Child(m_Screen, "Btn_SaveWorkArea").styleSheet() == BTN_BKGND_GRAY; }));
    Do("Btn_SaveWorkArea", CAnswer::File(Path("job")), QMessageBox::No);   // the dialog asks about the name as typed
    EXPECT_EQ(Log(), "");
    Do("Btn_SaveWorkArea", CAnswer::File(Path("none/job.xml")));
    EXPECT_EQ(Log(), "Unable to Create the file");

    m_Screen.m_stCuttingInfo.stWorkArea = {50, 40};
    m_Screen.UpdateWorkArea();
    EXPECT_EQ(Do("Btn_LoadWorkArea", CAnswer::File(Path("job.xml"))), "Select file to open...: ");
    EXPECT_EQ(Log(), "Shapes loaded: 1");
    EXPECT_EQ(Names(), QStringList({"A", "A"})) << "behind those that are there";
    EXPECT_EQ(Child(m_Screen, "Btn_WorkAreaLength").text(), "300\nLength");
    EXPECT_EQ(m_Screen.Scale().fPixPerMM, SCALE);
    EXPECT_EQ(AppConfig::m_strLastFolderPath, m_Home.path() + '/');
    WriteAll(Path("person.xml"), "<Project>\n <WorkArea><Length>120</Length><Width>0</Width></WorkArea>\n</Project>");
    Do("Btn_LoadWorkArea", CAnswer::File(Path("person.xml")));
    EXPECT_EQ(Names().size(), 2);

    Shapes().push_back(stEngShape::NewEllipse());
    List().addItem("");
    Shapes().back().pEllipse->bHole = true;
    Do("Btn_SaveWorkArea", CAnswer::File(Path("pocket")));
    EXPECT_EQ(Log().section('|', -1),
              "Hole is not in the file: 1 ellipses will be loaded as outlines, with the tool outside");
    Do("Btn_LoadWorkArea", CAnswer::File(Path("pocket.xml")));
    EXPECT_EQ(Log().section('|', -1), "1 ellipses are outlines, with the tool outside: a file does not hold Hole");
    Shapes().resize(2);

    EXPECT_EQ(Do("Btn_GenerateGCode", CAnswer::File(Path("part"))), "Select a file to Save...: ");
    EXPECT_EQ(Log().section('|', -1), "G-Code File Generated");
    EXPECT_TRUE(ReadAll(Path("part.txt")).contains("(Number of Shapes:2.0000)"));
    Do("Btn_GenerateGCode", CAnswer::File(Path("part.ncc")));
    Do("Btn_GenerateGCode", CAnswer::File(Path("part.NCC")));
    EXPECT_TRUE(QFile::exists(Path("part.ncc")) && QFile::exists(Path("part.NCC.txt")));
    Log();
    Do("Btn_GenerateGCode", CAnswer::File(Path("none/part.txt")));
    EXPECT_TRUE(Log().startsWith("Unable to Create the file"));
}

// What is drawn: shapes, their marks on demand, the selected one.
TEST_F(ShapesScreen, DrawsTheWorkArea)
{
    SaveScreen(m_Host, "shapes-empty");
    EXPECT_EQ(Pixel(15, 30), CWorkAreaPicture::BACKGROUND);
    Add("A");
    m_Screen.DrawWorkArea();
    const QRgb plain = Pixel(15, 30), mark = Pixel(31, 30);
    EXPECT_NE(plain, CWorkAreaPicture::BACKGROUND);
    EXPECT_NE(mark, plain);
    EXPECT_NE(mark, CWorkAreaPicture::BACKGROUND);
    Click(m_Screen, "Btn_DispGraphics");
    EXPECT_NE(Pixel(31, 30), mark);
    SelectByTouch(0);
    EXPECT_NE(Pixel(15, 30), plain);
    EXPECT_EQ(Pixel(15, 33), CWorkAreaPicture::BACKGROUND);
    m_Screen.m_stCuttingInfo.stWorkArea = {0, 0};   // of a file: nothing to scale by
    m_Screen.UpdateWorkArea();
    EXPECT_EQ(m_Screen.Scale().fPixPerMM, 1.0);
}

TEST_F(ShapesScreen, KeepsWhatIsEditedWhenTheScreenGoes)
{
    InDialog("Btn_DrawContour", "CDlgShapeFreeDraw", [this](QWidget&) {
        TouchAt(50, 50);
        m_Screen.hide();   // the start input brings up the program
    });
    EXPECT_EQ(Names(), QStringList("Shape_1"));
    m_Screen.show();
    m_Host.m_Machine.m_eOperation = OP_SHAPES;
    QTest::mouseDClick(List().viewport(), Qt::LeftButton, {}, List().visualItemRect(List().item(0)).center());
    EXPECT_EQ(m_Host.m_lstSelectors, std::vector<bool>()) << "nothing is edited while it is cut";
    m_Host.m_Machine.m_eOperation = OP_NONE;
}

// The screen's window goes while a dialog waits: the wait ends, and nothing of the screen is touched any more.
TEST_F(ShapesScreen, MayGoWhileADialogIsOpen)
{
    for (const char* szButton : {"Btn_AddEllipse", "Btn_DrawContour", "Btn_ShapeFromTxt", "Btn_ShapeFromImg"}) {
        auto pHost = std::make_unique<CTestHost>();
        auto pScreen = std::make_unique<CDlgShapes>();
        pHost->Place(*pScreen);
        pScreen->ConfigSettings();
        QTimer::singleShot(0, qApp, [&] { pScreen.reset(); });
        Child(*pScreen, szButton).click();
        EXPECT_FALSE(pScreen);
        EXPECT_EQ(pHost->m_lstSelectors, (std::vector<bool>{false})) << szButton;
    }
}
}   // namespace
