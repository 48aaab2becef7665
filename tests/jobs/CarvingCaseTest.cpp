#include "jobs/ShapeSpy.h"
#include "support/Cases.h"
#include "support/Files.h"

#include <QJsonDocument>

// Carvings against the reference cases: the grid, the moves and the G-code.

namespace {
const QString KIND = QStringLiteral("carving");

class CCarvingSpy : public CShapeSpy
{
public:
    void OnWork(const stWorkCommand& command) override
    {
        const stImgCarvingInfo& info = *m_stImgCarvingData.pInfo;
        if (command.eKind == WORK_CARVING_PASS)
            m_lstCalls.push_back({{"cmd", "PASS"}, {"depth", info.fDepth}, {"zstep", info.fZStep}});
        CShapeSpy::OnWork(command);
    }
};

std::vector<std::string> Names()
{
    std::vector<std::string> names;
    for (const std::string& strName : CCases::Names(KIND, ".json"))
        if (strName.find(".moves") == std::string::npos) names.push_back(strName);
    return names;
}

class CarvingCase : public CMachineTest<CCarvingSpy>, public testing::WithParamInterface<std::string>
{
protected:
    QString Name(const char* szEnding) const { return QString::fromStdString(GetParam()) + QLatin1String(szEnding); }
    stImgCarvingInfo& Info() { return *m_App.m_stImgCarvingData.pInfo; }
    void SetUp() override
    {
        m_In = CCases::Json(KIND, Name(".json"));
        ApplyConfig(m_In["config"].toObject());
        AppConfig::m_strLastFolderPath = m_In["folder"].toString();
        QString strWhy, strNotice;
        m_App.m_stImgCarvingData.pImage =
            LoadCarvingImage(CCases::Folder(KIND) + '/' + m_In["image"].toString(), strWhy, strNotice);
        ASSERT_TRUE(m_App.m_stImgCarvingData.pImage) << strWhy.toStdString();
        const QJsonObject job = m_In["job_before"].toObject();
        Info().fLength = job["fLength"].toDouble();
        Info().fWidth = job["fWidth"].toDouble();
        Info().fDepth = job["fDepth"].toDouble();
        Info().iCarvingType = job["iCarvingType"].toInt();
        Info().iStartRow = static_cast<quint16>(job["iStartRow"].toInt());
        Info().fXStep = job["fXStep"].toDouble();
        Info().fYStep = job["fYStep"].toDouble();
        Info().fZStep = job["fZStep"].toDouble();
    }
    void ExpectJobAfter()
    {
        const stImgCarvingInfo& info = Info();
        ExpectNear(m_In["job_after"],
                   QJsonObject{{"fLength", info.fLength},
                               {"fWidth", info.fWidth},
                               {"fDepth", info.fDepth},
                               {"iCarvingType", info.iCarvingType},
                               {"iStartRow", info.iStartRow},
                               {"fXStep", info.fXStep},
                               {"fYStep", info.fYStep},
                               {"fZStep", info.fZStep},
                               {"iRows", info.iRows},
                               {"iCols", info.iCols},
                               {"iToolPixels", info.iToolPixels},
                               {"iXStepPixels", info.iXStepPixels},
                               {"iYStepPixels", info.iYStepPixels}},
                   0.0, "job");
        QJsonArray grid;
        for (int row = 0; row < info.iRows; ++row) {
            QJsonArray values;
            for (int col = 0; col < info.iCols; ++col) values.append(info.ppZMap[row][col]);
            grid.append(values);
        }
        ExpectNear(m_In["grid_of_last_pass"], grid, 1e-12, "grid");
    }
    QJsonObject m_In;
};
}   // namespace

TEST_P(CarvingCase, IsCarvedAsWorkedOut)
{
    Begin();
    m_App.RunImgCarving();
    const QJsonArray moves = QJsonDocument::fromJson(CCases::Bytes(KIND, Name(".moves.json"))).array();
    ExpectNear(moves, m_App.Calls(), 1e-7, "call");
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
    ExpectJobAfter();
}

TEST_P(CarvingCase, IsWrittenAsWorkedOut)
{
    const QString strFile = m_Home.filePath("relief.txt");
    WriteAll(strFile, QByteArray(100000, 'x'));
    EXPECT_TRUE(m_App.CreateGCodeFromImage(strFile));
    QList<QByteArray> lines = ReadAll(strFile).split('\n');
    const int iFree = m_In["gcode_free_line"].toInt() - 1;
    EXPECT_TRUE(lines[iFree].startsWith("(Visit ") && lines[iFree].endsWith(" for more information)"));
    lines[iFree] = "(@FREE COMMENT@)";
    EXPECT_EQ(lines.join('\n').toStdString(), CCases::Bytes(KIND, Name(".txt")).toStdString());
    EXPECT_EQ(QDir(m_Home.path()).entryList({"relief*"}), QStringList("relief.txt"));
    ExpectJobAfter();
}
INSTANTIATE_TEST_SUITE_P(All, CarvingCase, testing::ValuesIn(Names()), CaseName);
