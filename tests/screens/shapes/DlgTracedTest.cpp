#include "screens/shapes/DlgShapesFixture.h"
#include "support/Files.h"

#include <QFontComboBox>
#include <QPlainTextEdit>

namespace {
class TracedDialogs : public CShapesTest
{
protected:
    QString Save(const QImage& image, const char* szName)
    {
        const QString strPath = InFolder(szName);
        EXPECT_TRUE(image.save(strPath)) << szName;
        return strPath;
    }
    // Lowest x and y of all shapes.
    stFloatPoint Corner()
    {
        stFloatPoint corner{1e9, 1e9};
        for (const stEngShape& shape : Shapes())
            for (const stFloatPoint& pos : shape.Path())
                corner = {std::min(corner.x, pos.x), std::min(corner.y, pos.y)};
        return corner;
    }
};

TEST_F(TracedDialogs, ATextFollowsItsSettings)
{
    InDialog("Btn_ShapeFromTxt", "CDlgShapeFromTxt", [&](QWidget& dialog) {
        EXPECT_TIDY(dialog);
        EXPECT_EQ(m_Host.m_lstGrabs, (std::vector<bool>{false})) << "keys go to the text";
        auto& text = Child<QPlainTextEdit>(dialog, "TextToCut");
        {
            // By touch: the letters of the text pad, with a line feed.
            CAnswer pad([](QWidget& modal) {
                Click(modal, "Btn_Shift");
                Click(modal, "Btn_Letter_o");
                Click(modal, "Btn_NewLine");
                Click(modal, "Btn_Letter_i");
                EXPECT_TIDY(modal);
                Click(modal, "Btn_OK");
            });
            Click(*text.viewport());
            EXPECT_TRUE(WaitFor([&] { return !text.toPlainText().isEmpty(); }));
        }
        EXPECT_EQ(text.toPlainText(), "O\nI");
        EXPECT_EQ(Shapes().size(), 3u);
        QTest::keyClick(&text, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&text, "O");
        ASSERT_EQ(Shapes().size(), 2u);
        EXPECT_EQ(Shapes()[1].Common().strShapeName, "Text_1");
        EXPECT_FALSE(Shapes()[1].pPolygon->bHole);
        EXPECT_EQ(Child<QLabel>(dialog, "Lbl_Found").text(), "2 shapes");
        SaveScreen(m_Host, "shapes-text");

        const stFloatPoint first = Corner();
        EXPECT_LT(first.x, 10.0);
        Click(dialog, "Btn_PosX_Inc");
        Click(dialog, "Btn_PosY_Inc");
        m_Host.Type(30.0);
        Click(dialog, "Btn_TextPos_Y");
        EXPECT_NEAR(Corner().x, first.x + 10, 1e-9);
        EXPECT_NEAR(Corner().y, first.y + 30, 1e-9);
        EXPECT_EQ(Child(dialog, "Btn_TextPos_X").text(), "10.0000\nPostion X");
        EXPECT_NEAR(m_Host.m_lstKeypads.back().fHigh, (338 - 25) / SCALE, 1e-9);
        Click(dialog, "Btn_PosX_Dec");
        Click(dialog, "Btn_PosX_Dec");   // below 0: nothing
        EXPECT_NEAR(Corner().x, first.x, 1e-9);
        for (int n = 0; n < 28; ++n) Click(dialog, "Btn_PosY_Inc");   // and nothing beyond the picture
        EXPECT_EQ(Child(dialog, "Btn_TextPos_Y").text(), "210.0000\nPostion Y");

        Click(dialog, "Btn_PosX_Inc");
        const ShapePath upright = Shapes()[0].Path();
        Click(dialog, "Btn_Orientation_CW");
        EXPECT_EQ(Child(dialog, "Btn_Orientation").text(), "10.0000\nDegree");
        const ShapePath turned = Shapes()[0].Path();
        const auto right = std::max_element(upright.begin(), upright.end(),
                                            [](const stFloatPoint& a, const stFloatPoint& b) { return a.x < b.x; });
        EXPECT_LT(turned[size_t(right - upright.begin())].y, right->y) << "clockwise";
        EXPECT_NE(turned[0].x, upright[0].x);
        Click(dialog, "Btn_TextBoldSel");   // rebuilt, and as much turned
        Click(dialog, "Btn_TextBoldSel");
        ASSERT_EQ(Shapes()[0].Path().size(), turned.size());
        EXPECT_NEAR(Shapes()[0].Path()[0].x, turned[0].x, 1e-6);
        for (int n = 0; n < 36; ++n) Click(dialog, "Btn_Orientation_CCW");
        m_Host.Type(0.0);
        Click(dialog, "Btn_Orientation");
        EXPECT_NEAR(Shapes()[0].Path()[0].x, upright[0].x, 0.01);

        m_Host.Type(10.0);
        Click(dialog, "Btn_LineSpacing");
        m_Host.Type(std::nullopt);   // shown in mm as it was typed
        Click(dialog, "Btn_LineSpacing");
        EXPECT_EQ(m_Host.m_lstKeypads.back().strValue, "10.0000");
        m_Host.Type(-2.0);
        Click(dialog, "Btn_TextDepth");
        m_Host.Type(500.0);   // beyond the picture
        Click(dialog, "Btn_TextSize");
        text.clear();
        EXPECT_TRUE(Shapes().empty());
        text.setPlainText("   ");   // a font that draws nothing
        EXPECT_TRUE(Shapes().empty());
        EXPECT_EQ(Child<QLabel>(dialog, "Lbl_Found").text(), "0 shapes");
        m_Host.Type(40.0);
        Click(dialog, "Btn_TextSize");
        text.setPlainText("I");
        Click(dialog, "Btn_Ok");
    });
    EXPECT_EQ(Names(), QStringList({"Text_0", "Text_1"})) << "one outline is cut twice";
    EXPECT_EQ(Shapes()[0].Common().fDepth, -2.0);
    EXPECT_EQ(m_Host.m_lstGrabs, (std::vector<bool>{false, true}));
    InDialog("Btn_ShapeFromTxt", "CDlgShapeFromTxt", [&](QWidget& dialog) {
        Child<QPlainTextEdit>(dialog, "TextToCut").setPlainText("Bad");
        EXPECT_GT(Shapes().size(), 5u);
        Click(dialog, "Btn_Cancel");
    });
    EXPECT_EQ(Names().size(), 2);
}

TEST_F(TracedDialogs, APictureFollowsItsSettings)
{
    QImage square(200, 100, QImage::Format_RGB32);
    square.fill(Qt::white);
    QPainter(&square).fillRect(20, 10, 40, 30, Qt::black);
    const QString strSquare = Save(square, "flower.v2.png");
    const QString strBad = Save(square, "bad.jpg");
    WriteAll(strBad, ReadAll(strBad).chopped(1));
    InDialog("Btn_ShapeFromImg", "CDlgShapeFromImg", [&](QWidget& dialog) {
        EXPECT_TIDY(dialog);
        const auto Type = [&](const char* szButton, double fValue) {
            m_Host.Type(fValue);
            Click(dialog, szButton);
        };
        const auto Load = [&](const QString& strPath) {
            AppConfig::m_strLastFolderPath = m_Home.path();
            EXPECT_EQ(PressAndAnswer(Child(dialog, "Btn_LoadImage"), CAnswer::File(strPath)),
                      "Select a file to Open...: ");
            EXPECT_EQ(AppConfig::m_strLastFolderPath, m_Home.path() + "/pictures/");
        };
        QPushButton& found = Child(dialog, "Btn_ShapesFound");
        Type("Btn_ImgThreshold", 60);   // without a picture
        EXPECT_EQ(found.text(), "0\nShapes Found");
        Load(strSquare);
        EXPECT_EQ(found.text(), "0\nShapes Found") << "four vertices are below the least number";
        Type("Btn_MinShapeSize", 3);
        EXPECT_EQ(found.text(), "2\nShapes Found") << "one outline comes twice";
        EXPECT_EQ(Shapes().at(1).Common().strShapeName, "flower.v2_1");
        EXPECT_NEAR(Corner().x, 20 * 0.5, 1e-9);
        EXPECT_NEAR(Corner().y, 100 - 39, 1e-9);
        Type("Btn_ShapeOffsetPosX", 5);
        Type("Btn_ShapeOffsetPosY", 7);
        Type("Btn_ShapeLength", 20.7);   // whole mm are kept
        Type("Btn_ShapeWidth", 50);
        EXPECT_NEAR(Corner().x, 5 + 2, 1e-9);
        EXPECT_NEAR(Corner().y, 7 + 30.5, 1e-9);
        Type("Btn_ShapeDepth", -4);
        EXPECT_EQ(Shapes()[0].Common().fDepth, -4.0);
        EXPECT_TRUE(m_Host.m_lstKeypads.back().bShowSign);
        Type("Btn_MaxShapeSize", 4);
        EXPECT_EQ(found.text(), "0\nShapes Found");
        Type("Btn_MaxShapeSize", 10000);
        SaveScreen(m_Host, "shapes-picture");

        Load(strBad);
        EXPECT_TRUE(Log().startsWith("Unable to load the image\n" + strBad + "\nthe file has no end"));
        EXPECT_EQ(Shapes().size(), 2u) << "the old ones stay";
        QImage pixel(1, 1, QImage::Format_RGB32), large(8000, 8000, QImage::Format_Grayscale8);
        pixel.fill(Qt::black);
        large.fill(Qt::white);
        QPainter(&large).fillRect(1000, 1000, 5000, 6000, Qt::black);
        QImage alpha = square.convertToFormat(QImage::Format_ARGB32);
        alpha.setPixel(1, 1, qRgba(255, 255, 255, 0));   // as white as the rest: alpha says nothing
        for (const QImage& image : {pixel, large, alpha}) {
            Load(Save(image, "next.png"));
            EXPECT_EQ(Log(), "");
            EXPECT_EQ(Shapes().size(), image.width() == 1 ? 0u : 2u) << image.width();
        }
        Click(dialog, "Btn_Ok");
    });
    EXPECT_EQ(Names(), QStringList({"next_0", "next_1"}));
    InDialog("Btn_ShapeFromImg", "CDlgShapeFromImg", [&](QWidget& dialog) {
        EXPECT_EQ(Child(dialog, "Btn_ShapeOffsetPosX").text(), "0.0000\nOffset X");
        m_Host.Type(5.0);   // the picture is still there
        Click(dialog, "Btn_ShapeOffsetPosX");
        EXPECT_EQ(Shapes().size(), 4u);
        Click(dialog, "Btn_Cancel");
    });
    EXPECT_EQ(Names().size(), 2);
}
}   // namespace
