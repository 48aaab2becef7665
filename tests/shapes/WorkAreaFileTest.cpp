#include "shapes/WorkAreaFile.h"

#include "support/CleanMachine.h"
#include "support/Files.h"
#include "support/FullDisk.h"

#include <QDir>

// Files that are not as the reference cases have them: names, tails, disks, and what nobody should have written.

namespace {
class WorkAreaFile : public CCleanMachine
{
protected:
    QString Path() const { return m_Home.filePath("area.xml"); }
    stShapeCuttingInfo Load(const QByteArray& content)
    {
        WriteAll(Path(), content);
        stShapeCuttingInfo info;
        m_lstNotices.clear();
        EXPECT_TRUE(LoadWorkArea(Path(), info, m_lstNotices));
        return info;
    }
    static QByteArray Shape(const QByteArray& count, const QByteArray& vertices)
    {
        return "<Shape><ShapeName>S</ShapeName><Hole>1</Hole><Depth>-1</Depth><Count>" + count + "</Count>" + vertices +
               "</Shape>";
    }
    QStringList m_lstNotices;
};
const QByteArray HEAD = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Project><WorkArea><Length>30</Length><Width>20"
                        "</Width></WorkArea>";
const QByteArray VERTEX = "<Vertex_0>1.0000,2.0000</Vertex_0>";

TEST_F(WorkAreaFile, NamesWithoutAnEndingGetOne)
{
    for (const auto& [szGiven, szSaved] :
         std::vector<std::pair<const char*, const char*>>{{"/a/job", "/a/job.xml"},
                                                          {"/a.b/job", "/a.b/job.xml"},
                                                          {"/a/job.v2", "/a/job.v2"},
                                                          {"/a/.cfg", "/a/.cfg.xml"},
                                                          {"/a/.cfg.old", "/a/.cfg.old"},
                                                          {"job", "job.xml"},
                                                          {"/a/job.", "/a/job."}})
        EXPECT_EQ(WorkAreaFileName(szGiven).toStdString(), szSaved);
}

TEST_F(WorkAreaFile, ALongerFileKeepsItsTailAndReadsAsTheNewOne)
{
    stShapeCuttingInfo info;
    info.lstShapes = {stEngShape::NewPolygon()};
    ASSERT_TRUE(SaveWorkArea(Path(), info));
    const QByteArray document = ReadAll(Path());
    WriteAll(Path(), QByteArray(document.size(), '?') + "</tail>\n");
    ASSERT_TRUE(SaveWorkArea(Path(), info));
    EXPECT_EQ(ReadAll(Path()), document + "</tail>\n");
    stShapeCuttingInfo loaded;
    EXPECT_TRUE(LoadWorkArea(Path(), loaded, m_lstNotices));
    EXPECT_EQ(loaded.lstShapes.size(), 1u);
    EXPECT_EQ(m_lstNotices, QStringList());
}

TEST_F(WorkAreaFile, ARefusedSaveLosesNothing)
{
    stShapeCuttingInfo info;
    WriteAll(Path(), "old");
    for (int n = 0; n < 1000; ++n) info.lstShapes.push_back(stEngShape::NewPolygon());
    {
        const CFullDisk full(4096);
        EXPECT_FALSE(SaveWorkArea(Path(), info));
    }
    EXPECT_EQ(ReadAll(Path()), "old");
    EXPECT_FALSE(SaveWorkArea(m_Home.filePath("nowhere/area.xml"), info));
    EXPECT_FALSE(SaveWorkArea(m_Home.path(), info));
    EXPECT_FALSE(LoadWorkArea(m_Home.filePath("missing.xml"), info, m_lstNotices));
    EXPECT_EQ(QDir(m_Home.path()).entryList({"area*"}, QDir::Files), QStringList("area.xml")) << "no file in between";
}

TEST_F(WorkAreaFile, ACountBeyondTheFileEndsTheListThere)
{
    const QByteArray file = HEAD + Shape("2000000000", VERTEX) + Shape("1", VERTEX) + "</Project>";
    const stShapeCuttingInfo info = Load(file);
    ASSERT_EQ(info.lstShapes.size(), 1u);
    EXPECT_EQ(info.lstShapes[0].Path().size(), size_t(file.size()));
    EXPECT_EQ(info.lstShapes[0].Path()[0].x, 1.0);
    EXPECT_EQ(info.lstShapes[0].Path().back().y, 0.0);
    ASSERT_EQ(m_lstNotices.size(), 1);
    EXPECT_TRUE(m_lstNotices[0].contains("2000000000")) << m_lstNotices[0].toStdString();
    for (const char* szNone : {"-5", "3000000000", "many", ""}) {
        EXPECT_TRUE(Load(HEAD + Shape(szNone, "")).lstShapes.at(0).Path().empty()) << szNone;
        EXPECT_EQ(m_lstNotices, QStringList());
    }
}

TEST_F(WorkAreaFile, VerticesAndHolesAreReadAsTheyStand)
{
    const auto First = [&](const QByteArray& text) {
        return Load(HEAD + Shape("1", "<V>" + text + "</V>")).lstShapes.at(0).Path().at(0);
    };
    EXPECT_EQ(First("7").x, 7.0);   // without a comma: both
    EXPECT_EQ(First("7").y, 7.0);
    EXPECT_EQ(First(",7").x, 0.0);
    EXPECT_EQ(First("1,2,3").y, 0.0) << "what is behind the first comma is no number";
    EXPECT_EQ(First(" 1 , 2 ").y, 2.0);
    for (const auto& [szHole, bHole] : std::vector<std::pair<const char*, bool>>{
             {"1", true}, {"0", false}, {"2", false}, {"true", false}, {"65537", false}})
        EXPECT_EQ(Load(HEAD + Shape("0", "").replace("<Hole>1", QByteArray("<Hole>") + szHole))
                      .lstShapes.at(0)
                      .pPolygon->bHole,
                  bHole)
            << szHole;
}

TEST_F(WorkAreaFile, AFileThatAPersonIndentedReadsItsFirstElementOnly)
{
    const QByteArray file = HEAD + Shape("1", VERTEX) + "</Project>";
    EXPECT_EQ(Load(file).lstShapes.size(), 1u);
    stShapeCuttingInfo info = Load(QByteArray(file).replace("><", ">\n  <"));
    EXPECT_EQ(info.lstShapes.size(), 0u);
    EXPECT_EQ(info.stWorkArea.x, 30.0);
    EXPECT_EQ(info.stWorkArea.y, 20.0);
}

TEST_F(WorkAreaFile, CutShortAnywhereItKeepsWhatWasRead)
{
    const QByteArray file = HEAD + Shape("1", VERTEX) +
                            "<Ellipse><ShapeName>E</ShapeName><Depth>-1</Depth><CenterX>1</CenterX><CenterY>2</CenterY>"
                            "<MajorAxis>9</MajorAxis><MinorAxis>8</MinorAxis><Orientation>0</Orientation><XAxisStep>1"
                            "</XAxisStep><XArcStartAngle>0</XArcStartAngle><XArcEndAngle>360</XArcEndAngle></Ellipse>"
                            "</Project>";
    size_t uShapes = 0;
    for (qsizetype n = file.size() % 5; n <= file.size(); n += 5) {
        const size_t uNow = Load(file.left(n)).lstShapes.size();
        EXPECT_GE(uNow, uShapes) << n;
        uShapes = uNow;
    }
    EXPECT_EQ(uShapes, 2u);
    EXPECT_EQ(m_lstNotices, QStringList());
}

TEST_F(WorkAreaFile, SmallFilesCannotAskForAnyAmountOfTimeOrMemory)
{
    QByteArray bomb = "<?xml version=\"1.0\"?><!DOCTYPE Project [<!ENTITY a \"aaaaaaaaaaaaaaaa\">";
    for (char c = 'b'; c <= 'z'; ++c)
        bomb += "<!ENTITY " + QByteArray(1, c) + " \"" + ("&" + QByteArray(1, char(c - 1)) + ";").repeated(16) + "\">";
    bomb += "]><Project><Shape><ShapeName>&z;</ShapeName><Hole>0</Hole></Shape></Project>";
    EXPECT_LE(Load(bomb).lstShapes.size(), 1u);
    (void)Load("<a>" + QByteArray("<b>").repeated(300'000));

    // Each makes 100,000 points and keeps a few of them.
    const QByteArray ellipse = "<Ellipse><N>E</N><D>-1</D><X>0</X><Y>0</Y><A>195</A><B>90</B><O>0</O><S>0.004</S><F>10"
                               "</F><T>10.1</T></Ellipse>";
    const stShapeCuttingInfo info = Load(HEAD + ellipse.repeated(250) + "</Project>");
    ASSERT_EQ(info.lstShapes.size(), 250u);
    EXPECT_FALSE(info.lstShapes[198].Path().empty());
    EXPECT_TRUE(info.lstShapes[200].Path().empty());
    EXPECT_EQ(m_lstNotices.size(), 51);
}
}   // namespace
