#include "screens/carving/DlgImageCarving.h"

#include "carving/ImgCarving.h"
#include "config/AppConfig.h"
#include "support/CleanMachine.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/LoggedScreen.h"
#include "support/screens/PressAndAnswer.h"
#include "support/screens/TestHost.h"
#include "widgets/ButtonStyle.h"
#include "window/WindowSupport.h"

#include <QLabel>

namespace {
QImage Ramp(int iCols, int iRows)
{
    QImage image(iCols, iRows, QImage::Format_Grayscale8);
    for (int row = 0; row < iRows; ++row)
        for (int col = 0; col < iCols; ++col) image.scanLine(row)[col] = uchar(255 * col / std::max(1, iCols - 1));
    return image;
}

// Where a colour stands in the view: its first and last line, -1 without one.
std::pair<int, int> LinesOf(QWidget& screen, QRgb color)
{
    const QImage image = Child<CMyView>(screen, "m_View").grab().toImage().convertToFormat(QImage::Format_RGB32);
    std::pair<int, int> lines{-1, -1};
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) == color) {
                lines = {lines.first < 0 ? y : lines.first, y};
                break;
            }
    return lines;
}
constexpr QRgb CYAN = 0xff00ffff, GREEN = 0xff00ff00;

class ImageCarving : public CCleanMachine
{
protected:
    ImageCarving()
    {
        std::fill_n(AppConfig::m_fAxisMovPerPulse, MAX_AXES, 0.003);
        AppConfig::m_fEndMillDia = 3.0;
        m_Host.Place(m_Screen);
        m_Screen.ConfigSettings();
    }
    // Each in a folder of its own: the file dialog, which looks for jpg files first, hides the others of its folder.
    QString Folder()
    {
        const QString strFolder = QString("pictures%1/").arg(++m_iFolder);
        EXPECT_TRUE(QDir(m_Home.path()).mkdir(strFolder));
        return m_Home.filePath(strFolder);
    }
    QString Save(const QImage& image)
    {
        const QString strPath = Folder() + "picture.png";
        EXPECT_TRUE(image.save(strPath));
        return strPath;
    }
    void Load(const QString& strPath)
    {
        EXPECT_EQ(PressAndAnswer(Button("LoadImage"), CAnswer::File(strPath)), "Select a file to Open...: ");
    }
    QPushButton& Button(const char* szName) { return Child(m_Screen, QString("Btn_") + szName); }
    std::string Text(const char* szName) { return Button(szName).text().toStdString(); }
    void Type(const char* szName, std::optional<double> fValue)
    {
        m_Host.Type(fValue);
        Click(Button(szName));
    }
    std::string Keypad() const   // the last one
    {
        const auto& pad = m_Host.m_lstKeypads.back();
        return QString("%1|%2|%3|%4 to %5|%6|%7")
            .arg(pad.strTitle, pad.strCtrlTxt, pad.strValue)
            .arg(pad.fLow)
            .arg(pad.fHigh)
            .arg(pad.bShowSign)
            .arg(pad.iPrecision)
            .toStdString();
    }
    std::string Log() { return m_Host.TakeLog().join('|').toStdString(); }
    stImgCarvingInfo& Info() { return *m_Host.m_Machine.m_stImgCarvingData.pInfo; }
    QImage* Image() { return m_Host.m_Machine.m_stImgCarvingData.pImage.get(); }

    CTestHost m_Host;
    CDlgImageCarving m_Screen;
    int m_iFolder = 0;
};

TEST_F(ImageCarving, LoadsAPictureAndFitsItsSizes)
{
    EXPECT_EQ(Text("EndMillDia"), "3.0\nEnd-Mill");
    EXPECT_EQ(Text("ZAxisPlungeFeed"), "10.0000\nPlunge Feed");
    EXPECT_EQ(Text("MultipassCarving"), "Multi-pass\nCarving");
    EXPECT_EQ(Text("CarvingTypeSel"), "3D\nCarving");
    SaveScreen(m_Host, "carving-empty");
    EXPECT_TIDY(m_Screen);
    const QString strPath = Save(Ramp(300, 70));
    Load(strPath);
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(AppConfig::m_strLastFolderPath, m_Home.path() + "/pictures1/");
    ASSERT_TRUE(Image());
    EXPECT_EQ(Image()->size(), QSize(300, 70));
    // 200 / 300 is 0.6667; the next multiple of 0.003 is 0.669.
    EXPECT_EQ(Text("ImgCarvingLength"), "200.7000\nLength");
    EXPECT_EQ(Text("ImgCarvingWidth"), "46.8300\nWidth");
    EXPECT_EQ(Text("ImgCarvingStep_X"), "0.6690\nx Step");
    EXPECT_EQ(Text("ImgCarvingStep_Y"), "0.6690\ny Step");
    EXPECT_EQ(Child<QLabel>(m_Screen, "Lbl_PixelSize").text(), "0.669\nmm/Pixel");
    EXPECT_DOUBLE_EQ(Info().fLength, 200.7);
    EXPECT_TRUE(WaitFor([&] { return Button("LoadImage").styleSheet() == BTN_BKGND_GRAY; }));
    EXPECT_TIDY(m_Screen);

    // A picture that is none leaves the one that is held, and so does Cancel.
    const QString strEmpty = Folder() + "empty.png";
    WriteAll(strEmpty, "");
    Load(strEmpty);
    EXPECT_TRUE(Log().starts_with("Image of up to 32767 rows and columns and 33554432 pixels could not be loaded: "));
    Load(QString());
    EXPECT_EQ(Image()->size(), QSize(300, 70));
    AppConfig::m_fAxisMovPerPulse[Y_AXIS] = 0.002;
    Click(Button("LoadImage"));
    EXPECT_EQ(Log(), "X & Y axis Move/Pulse must be same\nPlease check Machine Settings->Motor");
}

TEST_F(ImageCarving, KeepsThePicturesProportions)
{
    Click(Button("ImgCarvingLength"));
    Click(Button("ImgCarvingWidth"));
    EXPECT_EQ(Log(), "Please load an image!|Please load an image!");
    Load(Save(Ramp(300, 70)));
    Type("ImgCarvingLength", 180.0);   // 0.6: 200 pulses
    EXPECT_EQ(Keypad(), "Image Carving Length(mm)|Length|200.7000|10 to 10000|0|4");
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(Text("ImgCarvingLength"), "180.0000\nLength");
    EXPECT_EQ(Text("ImgCarvingWidth"), "42.0000\nWidth");
    EXPECT_EQ(Text("ImgCarvingStep_X"), "0.6000\nx Step");
    Type("ImgCarvingWidth", 40.0);   // 0.5714 to 0.573
    EXPECT_EQ(Keypad(), "Image Carving Width(mm)|Width|42.0000|10 to 10000|0|4");
    EXPECT_EQ(Log(), "Length and Width adjusted to match\nX & Y Axis Mov/Pulse respectively");
    EXPECT_EQ(Text("ImgCarvingWidth"), "40.1100\nWidth");
    EXPECT_EQ(Text("ImgCarvingLength"), "171.9000\nLength");
    EXPECT_EQ(Child<QLabel>(m_Screen, "Lbl_PixelSize").text(), "0.573\nmm/Pixel");
    Type("ImgCarvingStep_X", 1.146);
    Type("ImgCarvingLength", std::nullopt);   // cancelled: the steps stay
    EXPECT_EQ(Text("ImgCarvingStep_X"), "1.1460\nx Step");
    EXPECT_EQ(Log(), "");
}

TEST_F(ImageCarving, RoundsStepsDownToWholePixelsAndPulses)
{
    Click(Button("ImgCarvingStep_X"));
    Click(Button("ImgCarvingStep_Y"));
    EXPECT_EQ(Log(), "Please load an image|Please load an image");
    Load(Save(Ramp(300, 70)));
    Type("ImgCarvingLength", 180.0);
    Type("ImgCarvingStep_X", 1.7);
    EXPECT_EQ(Keypad(), "X Step(mm)|x Step|0.6000|0.6 to 3|0|4");
    EXPECT_EQ(Log(), "X Axis step must be a multiple of Min Step and lesser than End-Mill Dia");
    EXPECT_EQ(Text("ImgCarvingStep_X"), "1.2000\nx Step");
    Type("ImgCarvingStep_Y", 2.3);
    EXPECT_EQ(Keypad(), "Y Step(mm)|y Step|0.6000|0.6 to 3|0|4");
    EXPECT_EQ(Log(), "Y Axis step must be a multiple of Min Step and lesser than End-Mill Dia");
    EXPECT_DOUBLE_EQ(Info().fYStep, 1.8);
    Type("ImgCarvingStep_Y", 1.2);
    EXPECT_EQ(Log(), "");
    EXPECT_DOUBLE_EQ(Info().fYStep, 1.2);
    Type("ImgCarvingStep_Z", 0.7);
    EXPECT_EQ(Keypad(), "Z Step(mm)|z Step|1.0000|0.003 to 1000|0|4");
    EXPECT_EQ(Log(), "Z Axis step must be \na multiple of Z Axis Mov/Pulse");
    EXPECT_EQ(Text("ImgCarvingStep_Z"), "0.6990\nz Step");
    Type("ImgCarvingDepth", 2.5);
    EXPECT_EQ(Keypad(), "Image Carving Depth|Depth|10.0000|0.003 to 10000|1|4");
    EXPECT_EQ(Info().fDepth, 2.5);
    AppConfig::m_bHomeSensorsUsed = true;
    AppConfig::m_fAxisNegDirLimit[Z_AXIS] = -40.0;
    Type("ImgCarvingDepth", 50.0);
    EXPECT_EQ(Info().fDepth, 40.0);
    Type("EndMillDia", 6.3);
    Type("ZAxisPlungeFeed", 4.0);
    EXPECT_EQ(AppConfig::m_fEndMillDia, 6.3);
    EXPECT_EQ(AppConfig::m_fPlungeFeed, 4.0);
}

TEST_F(ImageCarving, MarksTheStartRowOnThePicture)
{
    Click(Button("CarvingStrartRow"));
    Click(Button("CarvingTypeSel"));
    EXPECT_EQ(Log(), "Please load an image|Please load an image");
    EXPECT_EQ(LinesOf(m_Screen, CYAN).first, -1);
    Load(Save(Ramp(100, 70)));
    const auto top = LinesOf(m_Screen, CYAN);
    Type("CarvingStrartRow", 35.0);
    EXPECT_EQ(Keypad(), "Strat Row|Start Row|0|0 to 70|0|0");
    EXPECT_EQ(Text("CarvingStrartRow"), "35\nStart Row");
    EXPECT_EQ(int(Info().iStartRow), 35);
    const auto middle = LinesOf(m_Screen, CYAN);
    EXPECT_GT(middle.first, top.second + 100);   // and nothing is left at the top
    // 70 rows over 333 pixels: three of them are 14, with blurred edges.
    EXPECT_NEAR(middle.second - middle.first, 10, 3);
    Type("CarvingStrartRow", 70.0);
    EXPECT_GT(LinesOf(m_Screen, CYAN).first, middle.second + 100);
    m_Host.m_Machine.m_iCurCarvingRow = 35;
    m_Host.m_Machine.m_uCurCarvingPass = 1;
    m_Screen.FollowCarving();
    EXPECT_EQ(Child<QLabel>(m_Screen, "Lbl_RowReached").text(), "Row 35");
    const auto green = LinesOf(m_Screen, GREEN);
    EXPECT_NEAR(green.first, middle.first, 1);
    EXPECT_EQ(LinesOf(m_Screen, CYAN).first, -1);

    Click(Button("CarvingTypeSel"));
    EXPECT_EQ(Text("CarvingTypeSel"), "2.5D\nCarving");
    EXPECT_EQ(Info().iCarvingType, CARVING_25D);
    Click(Button("MultipassCarving"));
    EXPECT_EQ(Text("MultipassCarving"), "Single-pass\nCarving");
    EXPECT_EQ(Button("MultipassCarving").styleSheet(), BTN_BKGND_GREEN);
    EXPECT_FALSE(AppConfig::m_bMultipassImgCarving);
    EXPECT_TIDY(m_Screen);
}

// In this order, each with its own text.
TEST_F(ImageCarving, RefusesAStartForTheFirstThingThatIsWrong)
{
    AppConfig::m_bEmergencyStopON = true;
    AppConfig::m_bHomeSensorsUsed = true;
    m_Host.m_Machine.m_eOperation = OP_Z_PROBE;
    Info().fLength = Info().fWidth = Info().fDepth = 0.0;
    const auto Why = [this] {
        EXPECT_FALSE(m_Screen.StartImgCarving());
        return Log();
    };
    EXPECT_EQ(Why(), "Release Emergency Switch");
    AppConfig::m_bEmergencyStopON = false;
    EXPECT_EQ(Why(), "Machine in use");
    m_Host.m_Machine.m_eOperation = OP_NONE;
    EXPECT_EQ(Why(), "Homing not done!\nUse \"Move Home\" in user Settings");
    AppConfig::m_bHomeSensorsUsed = false;
    EXPECT_EQ(Why(), "No Image loaded");
    m_Host.m_Machine.m_stImgCarvingData.pImage = std::make_unique<QImage>(Ramp(20, 30));
    EXPECT_EQ(Why(), "Carving Length is not defined");
    Info().fLength = 20.0;
    EXPECT_EQ(Why(), "Carving Width is not defined");
    Info().fWidth = 30.0;
    EXPECT_EQ(Why(), "Carving Depth is not defined");
    EXPECT_TRUE(Button("LoadImage").isEnabled());
}

TEST_F(ImageCarving, WarnsOfATallPicture)
{
    AppConfig::m_fEndMillDia = 60.0;   // wider than a pixel: nothing is told of the steps
    for (const int iRows : {2000, 2001}) {
        Load(Save(Ramp(4, iRows)));
        ASSERT_TRUE(m_Screen.StartImgCarving());
        EXPECT_FALSE(Button("LoadImage").isEnabled() || Button("GenerateGCode").isEnabled());
        m_Host.m_Machine.StopAll();
        m_Host.m_Machine.wait();
        m_Host.m_Machine.m_eOperation = OP_NONE;
        m_Screen.ResetUI(true);
        EXPECT_EQ(Log(), iRows == 2000 ? "" : "Large Image, Please Wait!\nCreating tool Paths will take time ");
    }
}

TEST_F(ImageCarving, WritesTheProgramUnderATextName)
{
    AppConfig::m_fEndMillDia = 7.0;
    Click(Button("GenerateGCode"));
    EXPECT_EQ(Log(), "Please load an image");
    Load(Save(Ramp(30, 20)));
    Info().fDepth = 0.0;
    Click(Button("GenerateGCode"));
    EXPECT_EQ(Log(), "Carving Depth is not defined");
    Info().fDepth = 2.0;
    const auto File = [this](const char* szName) { return CAnswer::File(m_Home.filePath(szName)); };
    EXPECT_EQ(PressAndAnswer(Button("GenerateGCode"), File("relief")), "Select a file to Save...: ");
    EXPECT_EQ(Log(), "G-Code File Generated");
    EXPECT_TRUE(ReadAll(m_Home.filePath("relief.txt")).startsWith("(GCode Generated by VANTOR Software)\n"));
    PressAndAnswer(Button("GenerateGCode"), File("relief.NCC"));
    EXPECT_TRUE(QFile::exists(m_Home.filePath("relief.NCC")));
    EXPECT_EQ(Text("ImgCarvingStep_X"), QString::number(Info().fXStep, 'f', 4).toStdString() + "\nx Step");
    PressAndAnswer(Button("GenerateGCode"), File("relief"), QMessageBox::No);
    PressAndAnswer(Button("GenerateGCode"), CAnswer::File(QString()));
    EXPECT_EQ(Log(), "G-Code File Generated");
    CLoggedScreen log;
    const CFullDisk disk(300);
    PressAndAnswer(Button("GenerateGCode"), File("relief"), QMessageBox::Yes);
    ASSERT_EQ(log.m_lstLog.size(), 1);
    EXPECT_TRUE(log.m_lstLog[0].contains("relief.txt was not written: ")) << log.m_lstLog[0].toStdString();
    EXPECT_EQ(Log(), "G-Code File Generated");
    EXPECT_GT(ReadAll(m_Home.filePath("relief.txt")).size(), 300);   // the old one
}

// A stop while the grid is made: the worker still reads the picture.
TEST_F(ImageCarving, StaysClosedUntilTheWorkerHasGone)
{
    Load(Save(Ramp(1500, 1500)));
    ASSERT_TRUE(m_Screen.StartImgCarving());
    m_Host.m_Machine.StopAll();
    m_Host.m_Machine.m_eOperation = OP_NONE;
    m_Screen.ResetUI(true);
    EXPECT_EQ(Button("LoadImage").isEnabled(), !m_Host.m_Machine.isRunning());
    if (m_Host.m_Machine.isRunning()) {
        EXPECT_FALSE(m_Screen.StartImgCarving());
        EXPECT_EQ(Log(), "Machine in use");
    }
    EXPECT_TRUE(WaitFor([this] { return Button("LoadImage").isEnabled(); }));
    EXPECT_FALSE(m_Host.m_Machine.isRunning());
}

// ---- In the window --------------------------------------------------------------------------------------------------

class WindowImageCarving : public CWindowTest
{
protected:
    // From a folder of its own: the file dialog hides what is no jpg file in the one that it shows.
    void Load(const QImage& image)
    {
        const QString strFolder = m_Home.filePath(QString("pictures%1/").arg(++m_iFolder));
        ASSERT_TRUE(QDir().mkpath(strFolder) && image.save(strFolder + "picture.png"));
        PressAndAnswer(Button("Btn_LoadImage"), CAnswer::File(strFolder + "picture.png"));
    }
    const QImage m_Rosette{QStringLiteral(TEST_DATA_DIR "/../../examples/rosette.png")};
    int m_iFolder = 0;
};

TEST_F(WindowImageCarving, IsCarvedRowByRowWhileTheWindowShowsIt)
{
    AppConfig::m_bMultipassImgCarving = false;
    AppConfig::m_fEndMillDia = 2.0;
    Open();
    TouchButton("Btn_ImageCarving");
    Load(m_Rosette);
    SaveScreen(Window(), "carving-loaded");
    Load(Ramp(10, 6));
    for (const auto& [szName, szKeys] : {std::pair{"Length", "C10"}, std::pair{"Depth", "C0.5"}}) {
        CAnswer keys(CAnswer::Keys(szKeys));
        TouchButton(QString("Btn_ImgCarving") + szName);
    }
    auto& screen = Child<CDlgImageCarving>(Window(), "CDlgImageCarving");
    Touch(Round("m_BtnStart"));
    ASSERT_EQ(Machine().m_eOperation, OP_IMG_CARVING) << Log().join('\n').toStdString();
    EXPECT_TRUE(Logged("3D relief Carving started"));
    EXPECT_FALSE(Button("Btn_LoadImage").isEnabled());
    EXPECT_FALSE(Button("Btn_GCode").isEnabled());
    EXPECT_TRUE(Button("Btn_ImageCarving").isEnabled());
    std::vector<int> marks;   // as the picture shows them, downwards
    EXPECT_TRUE(WaitFor(
        [&] {
            const int iMark = LinesOf(screen, GREEN).first;
            if (iMark >= 0 && (marks.empty() || marks.back() != iMark)) marks.push_back(iMark);
            return Machine().m_eOperation == OP_NONE;
        },
        60000))
        << Log().join('\n').toStdString();
    EXPECT_GE(marks.size(), 3u);
    EXPECT_TRUE(std::is_sorted(marks.begin(), marks.end()));
    ExpectLogged("3D Relief carving completed");
    EXPECT_TRUE(WaitFor([&] { return Button("Btn_LoadImage").isEnabled(); }));
    EXPECT_TRUE(Button("Btn_GCode").isEnabled());
    EXPECT_NEAR(Carriages().CarriageMm(Y_AXIS), 1.0, 0.001);   // the last row, at the tool's radius
}

// A stop in the work: nothing is lifted, and the screen is open again, with the row to go on from in its picture.
TEST_F(WindowImageCarving, IsStoppedInTheMiddleOfThePicture)
{
    AppConfig::m_bMultipassImgCarving = false;
    Open();
    TouchButton("Btn_ImageCarving");
    Load(m_Rosette);
    for (const auto& [szName, szKeys] : {std::pair{"ImgCarvingLength", "C60"}, std::pair{"CarvingStrartRow", "C120"}}) {
        CAnswer keys(CAnswer::Keys(szKeys));
        TouchButton(QString("Btn_") + szName);
    }
    auto& screen = Child<CDlgImageCarving>(Window(), "CDlgImageCarving");
    const int iMiddle = LinesOf(screen, CYAN).first;
    Touch(Round("m_BtnStart"));
    ASSERT_TRUE(
        WaitFor([&] { return Machine().GetCurPos(X_AXIS) > 12.0 && Machine().GetCurPos(Z_AXIS) < -0.2; }, 30000));
    EXPECT_NEAR(LinesOf(screen, GREEN).first, iMiddle, 4);
    SaveScreen(Window(), "carving-running");
    Touch(Round("m_BtnStop"));
    EXPECT_TRUE(WaitFor([&] { return Button("Btn_LoadImage").isEnabled(); }));
    EXPECT_TRUE(Logged("Emergency switch pressed"));
    EXPECT_LT(Carriages().CarriageMm(Z_AXIS), 0.0);
    EXPECT_NEAR(LinesOf(screen, GREEN).first, iMiddle, 4);
}
}   // namespace
