#include "gcode/GCodeStore.h"
#include "machine/MoveSpy.h"
#include "machine/WorkerFixture.h"
#include "motion/MotionObserver.h"
#include "support/Files.h"
#include "support/FullDisk.h"

#include <QRandomGenerator>

// Carvings of random pictures: what the machine does, and the program that is written of it.

namespace {
constexpr double PIXEL = 0.5, PULSE = 0.001;

// Plains, steps and slopes.
std::unique_ptr<QImage> RandomPicture(QRandomGenerator& random, int iCols = 19, int iRows = 9)
{
    auto pImage = std::make_unique<QImage>(iCols, iRows, QImage::Format_Grayscale8);
    for (int row = 0; row < iRows; ++row)
        for (int col = 0, iLevel = 255, iSlope = 0; col < iCols; ++col) {
            if (col % 3 == 0) iSlope = random.bounded(3) == 0 ? random.bounded(-40, 40) : 0;
            if (random.bounded(5) == 0) iLevel = random.bounded(256);
            iLevel = std::clamp(iLevel + iSlope, 0, 255);
            pImage->scanLine(row)[col] = uchar(iLevel);
        }
    return pImage;
}

void SetJob(AppControl& app, QRandomGenerator& random, qint32 iType)
{
    app.m_stImgCarvingData.pImage = RandomPicture(random);
    stImgCarvingInfo& info = *app.m_stImgCarvingData.pInfo;
    info.fLength = 19 * PIXEL;
    info.fWidth = 9 * PIXEL;
    info.fDepth = 3.0;
    info.fXStep = random.bounded(1, 3) * PIXEL;
    info.fYStep = random.bounded(1, 3) * PIXEL;
    info.fZStep = random.bounded(4, 16) * 0.25;
    info.iCarvingType = iType;
    AppConfig::m_fEndMillDia = random.bounded(2, 5) * PIXEL;
    AppConfig::m_bMultipassImgCarving = random.bounded(2) == 0;
}

class CarvingProgram : public CMachineTest<CMoveSpy>
{
protected:
    CarvingProgram() { AppConfig::m_fZSafePos = 4.0; }
    QString Export(const char* szName = "relief.txt")
    {
        EXPECT_TRUE(m_App.CreateGCodeFromImage(m_Home.filePath(szName)));
        return QString::fromUtf8(ReadAll(m_Home.filePath(szName)));
    }
    static QStringList Moves(const QString& strText) { return strText.split("G21 G90\n").last().split('\n'); }
    stImgCarvingInfo& Info() { return *m_App.m_stImgCarvingData.pInfo; }
    QRandomGenerator m_Random{11};
};
}   // namespace

// Our own compiler takes the text, and our own executor makes the carver's moves of it, each in its place. The last
// digit may differ: the carver goes on from where the axes stand.
TEST_F(CarvingProgram, MakesTheSameMovesAsCarving)
{
    Begin();
    size_t uMoves = 0;
    for (int n = 0; n < 12; ++n) {
        SCOPED_TRACE(n);
        SetJob(m_App, m_Random, n % 2);
        const QString strText = Export();
        m_App.m_eOperation = OP_IMG_CARVING;
        m_App.m_lstTargets.clear();
        m_App.m_lstStops.clear();
        m_App.RunImgCarving();
        m_App.Settle();
        const auto carved = std::exchange(m_App.m_lstTargets, {});
        uMoves += carved.size();

        ClearProgram();
        for (const QString& strLine : strText.split('\n')) {
            CGCodeStore::m_lstOfGCodeLines.push_back(strLine);
            CGCodeStore::m_lstOfGCodeCmds.push_back(CGCodeStore::Parse_GCode_Line(strLine));
        }
        CGCodeStore::CompileGCode(nullptr);
        ASSERT_TRUE(CGCodeStore::m_CompilationErrors.empty()) << CGCodeStore::m_CompilationErrors.begin()->second;
        m_App.m_lstStops.clear();
        m_App.m_pGCodeProgram = &CGCodeStore::m_lstOfGCodeCmds;
        m_App.m_eOperation = OP_GCODE;
        for (size_t line = 0; line < m_App.m_pGCodeProgram->size(); ++line) m_App.ExecGCodeLine(int(line));
        m_App.Settle();
        ASSERT_EQ(carved.size(), m_App.m_lstTargets.size());
        for (size_t move = 0; move < carved.size(); ++move)
            for (const int axis : {X_AXIS, Y_AXIS, Z_AXIS})
                ASSERT_NEAR(AxisOf(carved[move], axis), AxisOf(m_App.m_lstTargets[move], axis), 1.01 * PULSE)
                    << "move " << move << " axis " << axis;
        EXPECT_EQ(m_App.TakeErrors(), QStringList());
    }
    EXPECT_GT(uMoves, 1500u);
}

TEST_F(CarvingProgram, BeginsAtTheStartRow)
{
    AppConfig::m_bMultipassImgCarving = false;
    AppConfig::m_fEndMillDia = 1.0;   // two pixels: 8 grid rows of 0.5 mm, from Y 4.0 down to 0.5
    m_App.m_stImgCarvingData.pImage = RandomPicture(m_Random);
    Info().fLength = 19 * PIXEL;
    Info().fWidth = 9 * PIXEL;
    Info().fXStep = Info().fYStep = PIXEL;
    const auto Rows = [&](quint16 iStartRow) {
        Info().iStartRow = iStartRow;
        return Moves(Export()).filter("Y").join(' ').toStdString();
    };
    EXPECT_EQ(Rows(0), "Y4.0000 Y3.5000 Y3.0000 Y2.5000 Y2.0000 Y1.5000 Y1.0000 Y0.5000");
    EXPECT_EQ(Rows(5), "Y1.5000 Y1.0000 Y0.5000");
    EXPECT_EQ(Rows(7), "Y0.5000");
    Info().fWidth = 20.0;   // no multiple of the rows: the last one is at the tool's radius all the same
    EXPECT_EQ(Rows(7), "Y0.5000");
    EXPECT_EQ(Rows(5), "Y17.0000 Y16.5000 Y0.5000");
    Info().fWidth = 9 * PIXEL;
    Info().fYStep = 2 * PIXEL;   // the start row is of the picture: its row 5 is in the grid's row 2
    EXPECT_EQ(Rows(5), "Y2.0000 Y1.0000 Y0.5000");
}

// Worked out by hand: posts at both ends of each row. On the way back the slope ends at the tool's radius, square steps
// go on to 0, and the row after that begins there.
TEST_F(CarvingProgram, EndsTheWayBackAtTheRadiusOrInSquareStepsAtZero)
{
    AppConfig::m_bMultipassImgCarving = false;
    AppConfig::m_fEndMillDia = PIXEL;
    auto pImage = std::make_unique<QImage>(4, 3, QImage::Format_Grayscale8);
    pImage->fill(255);
    for (int row = 0; row < 3; ++row) pImage->scanLine(row)[0] = pImage->scanLine(row)[3] = 0;
    m_App.m_stImgCarvingData.pImage = std::move(pImage);
    Info().fLength = 2.0;
    Info().fWidth = 1.5;
    Info().fDepth = Info().fZStep = 1.0;
    Info().fXStep = Info().fYStep = PIXEL;
    const std::string strOpening = "G00 Z4.0000 X0.2500 Y1.2500 G01 Z0.0000 ";
    const std::string strSlope = strOpening + "G01 Z-1.0000 X0.7500 Z0.0000 X1.2500 X1.7500 Z-1.0000 Z0.0000 Y0.7500 "
                                              "G01 Z-1.0000 X1.2500 Z0.0000 X0.7500 X0.2500 Z-1.0000 Z0.0000 Y0.2500 "
                                              "G01 Z-1.0000 X0.7500 Z0.0000 X1.2500 X1.7500 Z-1.0000 Z0.0000 ";
    EXPECT_EQ(Moves(Export()).join(' ').toStdString(), strSlope);
    Info().iCarvingType = CARVING_25D;
    const std::string strSquare = strOpening + "G01 Z-1.0000 Z0.0000 X0.7500 X1.2500 X1.7500 Z-1.0000 Z0.0000 Y0.7500 "
                                               "G01 Z-1.0000 Z0.0000 X1.2500 X0.7500 X0.0000 Z-1.0000 Z0.0000 Y0.2500 "
                                               "G01 Z-1.0000 Z0.0000 X0.5000 X1.0000 X1.7500 Z-1.0000 Z0.0000 ";
    EXPECT_EQ(Moves(Export()).join(' ').toStdString(), strSquare);
}

// Less than a pulse is flat, and a pulse is not; a row of one pulse is not cut, and one of two is.
TEST_F(CarvingProgram, TellsAPulseFromLessAndFromMore)
{
    AppConfig::m_bMultipassImgCarving = false;
    AppConfig::m_fEndMillDia = PIXEL;
    const uchar lines[2][3] = {{102, 101, 102}, {102, 101, 100}};
    auto pImage = std::make_unique<QImage>(3, 2, QImage::Format_Grayscale8);
    for (int row = 0; row < 2; ++row) std::copy_n(lines[row], 3, pImage->scanLine(row));
    m_App.m_stImgCarvingData.pImage = std::move(pImage);
    Info().fLength = 1.5;
    Info().fWidth = 1.0;
    Info().fDepth = 2 * PULSE;
    Info().fXStep = Info().fYStep = PIXEL;
    EXPECT_EQ(Moves(Export()).join(' ').toStdString(), "G00 Z4.0000 X0.2500 Y0.7500 G01 Z0.0000 Z0.0000 Y0.2500 "
                                                       "G01 Z0.0000 X0.7500 Z-0.0010 X1.2500 Z-0.0020 Z0.0000 ");
}

// Wherever the motor turns to for a positive move, the first row is cut from the left.
TEST_F(CarvingProgram, DoesNotDependOnTheWiringOfX)
{
    SetJob(m_App, m_Random, CARVING_25D);
    const QString strText = Export();
    AppConfig::m_eAxisPosDir[X_AXIS] = DIR_CCW;
    EXPECT_EQ(Export().toStdString(), strText.toStdString());
}

TEST_F(CarvingProgram, HasThePassesBehindOneHeader)
{
    SetJob(m_App, m_Random, CARVING_3D);
    AppConfig::m_bMultipassImgCarving = true;
    AppConfig::m_strLastFolderPath = "/pictures/";
    Info().fDepth = 5.0;
    Info().fZStep = 2.0;
    const QString strText = Export();
    EXPECT_EQ(strText.count("G00 Z4.0000\n"), 3);
    EXPECT_EQ(strText.count("(Carving Depth:5.0000)"), 1);
    EXPECT_EQ(strText.count("(Carving Z-Step:2.0000)"), 1);
    EXPECT_EQ(strText.count("G21"), 1);
    EXPECT_EQ(Info().fDepth, 5.0);
    EXPECT_EQ(Info().fZStep, 2.0);
    EXPECT_FALSE(strText.contains("-0.0000"));
}

TEST_F(CarvingProgram, TakesTheOldOnesPlaceOnlyWhenItIsWhole)
{
    CWorkerScreen screen;
    SetJob(m_App, m_Random, CARVING_3D);
    const QString strFile = m_Home.filePath("relief.txt");
    WriteAll(strFile, "old");
    {
        const CFullDisk disk(600);   // the header is there, and some moves
        EXPECT_FALSE(m_App.CreateGCodeFromImage(strFile));
    }
    EXPECT_EQ(ReadAll(strFile), "old");
    ASSERT_EQ(screen.m_lstCalls.size(), 1);
    EXPECT_TRUE(screen.m_lstCalls[0].startsWith(strFile + " was not written: ")) << screen.m_lstCalls[0].toStdString();
    EXPECT_TRUE(screen.m_lstCalls[0].contains("File too large"));
    EXPECT_FALSE(m_App.CreateGCodeFromImage(m_Home.filePath("no folder/relief.txt")));   // nothing is said
    EXPECT_EQ(screen.m_lstCalls.size(), 1);
    EXPECT_FALSE(m_App.CreateGCodeFromImage(m_Home.path()));
    EXPECT_EQ(QDir(m_Home.path()).entryList({"*.part"}), QStringList());
    EXPECT_FALSE(QFile::exists(m_Home.path() + ".part"));
    EXPECT_FALSE(m_App.WriteImageToGCodeFile(m_Home.filePath("no folder/relief.txt")));
}

// ---- On the machine -------------------------------------------------------------------------------------------------

namespace {
// Notes where the carriages are whenever a coordinated move has ended.
class CarvingRun : public CWorkerTest, public CMotionObserver
{
protected:
    CarvingRun()
    {
        AppConfig::m_fZSafePos = 4.0;
        CMotionObserver::Set(this);
    }
    ~CarvingRun() override { CMotionObserver::Set(nullptr); }
    void OnAxisMove(int) override {}
    void OnCoordinatedMove() override { m_ePriority = m_App.priority(); }
    void OnMoveEnd(int iAxis) override
    {
        if (iAxis < 0) m_lstWay.push_back(Carriages());
    }
    stFloatPoint Carriages() const
    {
        return {m_pMachine->CarriageMm(X_AXIS), m_pMachine->CarriageMm(Y_AXIS), m_pMachine->CarriageMm(Z_AXIS)};
    }
    stImgCarvingInfo& Info() { return *m_App.m_stImgCarvingData.pInfo; }
    // The lowest that the tool was over a place, of the moves of the last pass along a row.
    double LowestOver(double fX, double fY) const
    {
        double fLowest = 1e9;
        size_t uFirst = m_lstWay.size();
        while (uFirst > 0 && m_lstWay[uFirst - 1].z < 3.0) --uFirst;
        for (size_t n = uFirst + 1; n < m_lstWay.size(); ++n) {
            const stFloatPoint &a = m_lstWay[n - 1], &b = m_lstWay[n];
            if (std::abs(a.y - fY) > PULSE / 2 || std::abs(b.y - fY) > PULSE / 2) continue;
            if (std::min(a.x, b.x) > fX + PULSE / 2 || std::max(a.x, b.x) < fX - PULSE / 2) continue;
            if (std::abs(a.x - b.x) < PULSE / 2)
                fLowest = std::min({fLowest, a.z, b.z});
            else
                fLowest = std::min(fLowest, a.z + (b.z - a.z) * (fX - a.x) / (b.x - a.x));
        }
        return fLowest;
    }

    std::vector<stFloatPoint> m_lstWay;
    QThread::Priority m_ePriority = QThread::IdlePriority;
    QRandomGenerator m_Random{5};
};

class CarvingRunOfType : public CarvingRun, public testing::WithParamInterface<int>
{
};
}   // namespace

TEST_P(CarvingRunOfType, LeavesTheToolsCentreAtTheGridOverEachCell)
{
    Build();
    int iCut = 0;
    for (int n = 0; n < 6; ++n) {
        SCOPED_TRACE(n);
        SetJob(m_App, m_Random, GetParam());
        // Where the way back in square steps goes on to X 0, the next one is as much beside its columns: not with an
        // even left edge.
        if (GetParam() == CARVING_25D)
            for (int row = 0; row < 9; ++row)
                std::fill_n(m_App.m_stImgCarvingData.pImage->scanLine(row), 6, uchar(250));
        // 16 pixels of way are whole steps: otherwise the way back counts its columns from the padded end.
        AppConfig::m_fEndMillDia = 3 * PIXEL;
        m_lstWay.clear();
        m_App.StartImgCarving();
        EXPECT_EQ(m_App.m_eOperation, OP_IMG_CARVING);
        m_App.wait();
        EXPECT_EQ(m_ePriority, QThread::InheritPriority);
        EXPECT_EQ(m_App.TakeErrors(), QStringList());
        EXPECT_TRUE(m_App.m_bOperationFinished);
        EXPECT_NEAR(m_pMachine->CarriageMm(Z_AXIS), 4.0, PULSE / 2);
        EXPECT_EQ(int(m_App.m_iCurCarvingRow), Info().iYStepPixels * (Info().iRows - 1));
        m_App.m_eOperation = OP_NONE;

        const double fRadius = AppConfig::m_fEndMillDia / 2.0;
        for (int row = 0; row < Info().iRows; ++row) {
            const double* pRow = Info().ppZMap[row];
            if (!(*std::min_element(pRow, pRow + Info().iCols) < -PULSE)) continue;
            const double fY = row == Info().iRows - 1 ? fRadius : Info().fWidth - fRadius - Info().fYStep * row;
            for (int col = GetParam() == CARVING_25D ? 1 : 0; col < Info().iCols - 1; ++col) {
                iCut += pRow[col] < -PULSE;
                EXPECT_NEAR(LowestOver(fRadius + Info().fXStep * col, fY), pRow[col], 1.01 * PULSE)
                    << "row " << row << " column " << col;
            }
        }
    }
    EXPECT_GT(iCut, 100);
}
INSTANTIATE_TEST_SUITE_P(Types, CarvingRunOfType, testing::Values(CARVING_3D, CARVING_25D));

TEST_F(CarvingRun, HoldsWhilePausedAndGoesOnWithTheSameRow)
{
    Build();
    SetJob(m_App, m_Random, CARVING_3D);
    AppConfig::m_bMultipassImgCarving = false;
    stFloatPoint held;
    quint16 iRow = 0;
    At(4.0, [this] { m_App.m_bPause = true; });
    At(7.0, [&] {
        held = Carriages();
        iRow = m_App.m_iCurCarvingRow;
        EXPECT_FALSE(CAllAxisCtrl::GetMotionState());
    });
    At(20.0, [&] {
        EXPECT_EQ(Carriages().x, held.x);
        EXPECT_EQ(Carriages().y, held.y);
        EXPECT_EQ(Carriages().z, held.z);
        EXPECT_EQ(iRow, m_App.m_iCurCarvingRow);
        m_App.m_bPause = false;
    });
    m_App.RunAs(OP_IMG_CARVING);
    EXPECT_GT(m_Time.Now(), qint64(20e9));
    EXPECT_EQ(int(m_App.m_iCurCarvingRow), Info().iYStepPixels * (Info().iRows - 1));
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
}

TEST_F(CarvingRun, StopsWhereItIsAndHasItsDepthBack)
{
    Build();
    SetJob(m_App, m_Random, CARVING_3D);
    AppConfig::m_bMultipassImgCarving = true;
    Info().fDepth = 3.0;
    Info().fZStep = 1.0;
    EmergencyStopAt(4.0);
    m_App.RunAs(OP_IMG_CARVING);
    EXPECT_LT(m_pMachine->CarriageMm(Z_AXIS), 3.0);   // not lifted
    EXPECT_FALSE(m_App.m_bOperationFinished);
    EXPECT_EQ(Info().fDepth, 3.0);
    EXPECT_EQ(Info().fZStep, 1.0);
}

TEST_F(CarvingRun, EndsBeyondTheLimitsWithTheToolLifted)
{
    AppConfig::m_bHomeSensorsUsed = true;
    std::fill_n(AppConfig::m_fAxisPosDirLimit, MAX_AXES, 100.0);
    std::fill_n(AppConfig::m_fAxisNegDirLimit, MAX_AXES, -100.0);
    AppConfig::m_fAxisPosDirLimit[X_AXIS] = 5.0;
    Build();
    for (AxisCtrl& axis : m_App.m_AxisCtrl) axis.SetMchHome();
    SetJob(m_App, m_Random, CARVING_3D);
    m_App.m_stImgCarvingData.pImage->fill(0);   // to the full depth, all along the row
    m_App.RunAs(OP_IMG_CARVING);
    EXPECT_EQ(m_App.TakeErrors().join('|').toStdString(), "Position to move must be within the motion limits");
    EXPECT_TRUE(m_App.m_bOperationFinished);
    EXPECT_NEAR(m_pMachine->CarriageMm(Z_AXIS), 4.0, PULSE / 2);
}

TEST_F(CarvingRun, IsRefusedWithoutAJobOrWhileAnAxisMoves)
{
    Build();
    m_App.StartImgCarving();
    SetJob(m_App, m_Random, CARVING_3D);
    Info().fZStep = 0.0;
    m_App.StartImgCarving();
    Info().fZStep = 1.0;
    m_App.m_AxisCtrl[X_AXIS].m_bMoving = true;
    m_App.StartImgCarving();
    m_App.m_AxisCtrl[X_AXIS].m_bMoving = false;
    EXPECT_EQ(m_App.TakeErrors().join('|').toStdString(), "No Image loaded|Carving Z-Step is not defined|Axis in use");
    EXPECT_EQ(m_App.m_eOperation, OP_NONE);
    EXPECT_EQ(m_Screen.m_lstCalls, QStringList());
}

// The relief is cut in X, Y and Z: the others stay where the operator has left them.
TEST_F(CarvingRun, KeepsAAndBWhereTheyAre)
{
    AppConfig::m_iMchType = 5;
    Build();
    SetJob(m_App, m_Random, CARVING_25D);
    CAllAxisCtrl::StartAutoMode(&m_App);
    m_App.m_AxisCtrl[A_AXIS].SetCurPos(1.5);
    m_App.m_AxisCtrl[B_AXIS].SetCurPos(-2.5);
    EXPECT_TRUE(m_App.ImgCarving());
    EXPECT_EQ(m_App.GetCurPos(A_AXIS), 1.5);
    EXPECT_EQ(m_App.GetCurPos(B_AXIS), -2.5);
    EXPECT_EQ(m_pMachine->Carriage(A_AXIS), 0);
}
