#include "carving/ImgCarving.h"

#include "carving/PixelFit.h"
#include "config/AppConfig.h"
#include "support/CleanMachine.h"
#include "support/Files.h"

#include <QRandomGenerator>

#include <algorithm>

// The grid, the picture and the sizes of a carving.

namespace {
class Carving : public CCleanMachine
{
protected:
    QString Save(const QImage& image, const char* szName = "picture.png")
    {
        const QString strPath = m_Home.filePath(szName);
        EXPECT_TRUE(image.save(strPath));
        return strPath;
    }
    std::unique_ptr<QImage> Load(const QString& strPath)
    {
        m_strWhy = m_strNotice = QString();
        auto pImage = LoadCarvingImage(strPath, m_strWhy, m_strNotice);
        EXPECT_EQ(pImage == nullptr, !m_strWhy.isEmpty());
        return pImage;
    }
    QString m_strWhy, m_strNotice;
};

// The padded copy of the map that the grid is told by, and the least value of each window of it.
std::vector<std::vector<double>> PlainGrid(const stImgZProfileInfo& map, int iTool, int iXStep, int iYStep)
{
    std::vector<std::vector<double>> work;
    for (int row = 0; row < map.iRows; ++row) work.emplace_back(map.ppDepth[row], map.ppDepth[row] + map.iCols);
    const int a = map.iCols - iTool, b = map.iRows - iTool;
    if (a % iXStep != 0)
        for (auto& row : work) row.insert(row.end(), size_t(iXStep - a % iXStep), row.back());
    if (a % iYStep != 0) work.insert(work.end(), size_t(iYStep - b % iYStep), std::vector<double>(work.back()));
    const int iWorkRows = int(work.size()), iWorkCols = int(work[0].size());
    std::vector<std::vector<double>> grid;
    for (int r = 0; r < (iWorkRows - iTool) / iYStep + 1; ++r) {
        grid.emplace_back();
        for (int c = 0; c < (iWorkCols - iTool) / iXStep + 1; ++c) {
            double fLeast = 1e9;
            for (int y = r * iYStep; y < std::min(r * iYStep + iTool, iWorkRows); ++y)
                for (int x = c * iXStep; x < c * iXStep + iTool; ++x)
                    fLeast = std::min(fLeast, work[size_t(y)][size_t(x)]);
            grid.back().push_back(-fLeast);
        }
    }
    return grid;
}
}   // namespace

TEST_F(Carving, SlidingMinimaAreThoseOfThePlainWindow)
{
    QRandomGenerator random(7);
    int iWindows = 0, iPadded = 0, iCut = 0;
    for (int n = 0; n < 400; ++n) {
        const int iRows = random.bounded(1, 24), iCols = random.bounded(1, 24), iTool = random.bounded(1, 14);
        stImgZProfileInfo map;
        map.iRows = static_cast<qint16>(iRows);
        map.iCols = static_cast<qint16>(iCols);
        map.ppDepth.Allocate(iRows, iCols);
        for (int row = 0; row < iRows; ++row)
            std::generate_n(map.ppDepth[row], iCols, [&random] { return random.bounded(40) / 8.0; });
        stImgCarvingInfo info;
        info.fLength = iCols * 0.5;
        info.fXStep = random.bounded(1, 6) * 0.5;
        info.fYStep = random.bounded(1, 6) * 0.5;
        AppConfig::m_fEndMillDia = iTool * 0.5;
        MakeCarvingGrid(map, info);
        EXPECT_EQ(info.iToolPixels, std::min(iTool, iCols));
        const auto plain = PlainGrid(map, info.iToolPixels, info.iXStepPixels, info.iYStepPixels);
        ASSERT_EQ(std::max<int>(info.iRows, 0), int(plain.size()));
        for (int row = 0; row < info.iRows; ++row)
            ASSERT_EQ(plain[size_t(row)], std::vector<double>(info.ppZMap[row], info.ppZMap[row] + info.iCols))
                << iRows << " x " << iCols << ", tool " << iTool << ", row " << row;
        iWindows += std::max<int>(info.iRows, 0) * info.iCols;
        iPadded += (iCols - info.iToolPixels) % info.iXStepPixels != 0;
        iCut += info.iRows > 0 && iRows < info.iToolPixels;
    }
    EXPECT_GT(iWindows, 5000);
    EXPECT_GT(iPadded, 50);
    EXPECT_GT(iCut, 3);
}

// Levels to the depths of 10 mm: stretched to the levels that are there.
TEST_F(Carving, LightestLevelStaysAtTheSurfaceAndDarkestReachesTheDepth)
{
    const struct
    {
        uchar levels[3];
        double depths[3];
    } lst[] = {{{100, 150, 200}, {10.0, 5.0, 0.0}},
               {{255, 255, 255}, {0.0, 0.0, 0.0}},
               {{254, 254, 254}, {10.0, 10.0, 10.0}},
               {{0, 0, 0}, {10.0, 10.0, 10.0}}};
    for (const auto& entry : lst) {
        QImage image(3, 2, QImage::Format_Grayscale8);
        image.fill(255);   // what pads the lines to four bytes must count for nothing
        for (int row = 0; row < 2; ++row) std::copy(entry.levels, entry.levels + 3, image.scanLine(row));
        stImgZProfileInfo map;
        MakeDepthMap(image, 10.0, map);
        for (int row = 0; row < 2; ++row)
            EXPECT_EQ(std::vector<double>(entry.depths, entry.depths + 3),
                      std::vector<double>(map.ppDepth[row], map.ppDepth[row] + 3));
    }
}

TEST_F(Carving, PicturesOfEveryKindAreReadAsOneByteAPixel)
{
    for (const QImage::Format eFormat :
         {QImage::Format_Grayscale8, QImage::Format_Grayscale16, QImage::Format_RGB32, QImage::Format_ARGB32,
          QImage::Format_Indexed8, QImage::Format_Mono, QImage::Format_RGBA64}) {
        QImage image(9, 4, QImage::Format_Grayscale8);
        image.fill(255);
        image.scanLine(2)[5] = 0;
        const auto pImage = Load(Save(image.convertToFormat(eFormat)));
        ASSERT_TRUE(pImage) << eFormat << m_strWhy.toStdString();
        EXPECT_EQ(pImage->depth(), 8) << eFormat;
        unsigned char iMin = 0, iMax = 0;
        FindGreyLevels(*pImage, iMin, iMax);
        EXPECT_EQ(int(iMin), 0) << eFormat;
        EXPECT_EQ(int(iMax), 255) << eFormat;
        EXPECT_EQ(int(pImage->constScanLine(2)[5]), 0) << eFormat;
        EXPECT_EQ(int(pImage->constScanLine(2)[6]), 255) << eFormat;
    }
    QImage clear(3, 3, QImage::Format_ARGB32);
    clear.fill(qRgba(80, 80, 80, 0));
    const auto pClear = Load(Save(clear));
    EXPECT_EQ(m_strNotice.toStdString(), "Transparency of the image is ignored");
    EXPECT_EQ(int(pClear->constScanLine(1)[1]), 80);

    EXPECT_TRUE(Load(Save(QImage(1, 1, QImage::Format_Grayscale8))));
    EXPECT_TRUE(Load(Save(QImage(1, MAX_IMAGE_SIDE, QImage::Format_Grayscale8))));
}

TEST_F(Carving, WhatIsNoPictureIsRefused)
{
    for (const QSize size : {QSize(1, 40000), QSize(40000, 1)}) {
        EXPECT_FALSE(Load(Save(QImage(size, QImage::Format_Grayscale8))));
        EXPECT_EQ(m_strWhy.toStdString(), "Image must not have more than 32767 rows or columns");
    }
    EXPECT_TRUE(Load(Save(QImage(8192, 4096, QImage::Format_Grayscale8))));
    EXPECT_FALSE(Load(Save(QImage(8192, 4097, QImage::Format_Grayscale8))));
    EXPECT_EQ(m_strWhy.toStdString(), "Image must not have more than 33554432 pixels: it has 8192 by 4097");
    const QByteArray tall = "P5 1 40000 255\n" + QByteArray(40000, '\x40');   // a format whose reader says no more
    WriteAll(m_Home.filePath("tall.pgm"), tall);
    WriteAll(m_Home.filePath("empty.png"), QByteArray());
    WriteAll(m_Home.filePath("text.jpg"), "no picture");
    // Readers take half a picture without a word. The end of the small one in a JPEG's headers is none of its own.
    const QByteArray small = "\xFF\xD8\xFF\xE1" + QByteArray("\0\x06\xFF\xD8\xFF\xD9", 6);
    for (const char* szName : {"half.bmp", "half.jpg"}) {
        QImage image(64, 64, QImage::Format_Grayscale8);
        image.fill(99);
        const QString strPath = Save(image, szName);
        QByteArray bytes = ReadAll(strPath);
        if (bytes.startsWith("\xFF\xD8")) bytes = small + bytes.mid(2);
        WriteAll(strPath, bytes);
        EXPECT_TRUE(Load(strPath)) << m_strWhy.toStdString();
        WriteAll(strPath, bytes.chopped(1));
    }
    for (const char* szName : {"empty.png", "text.jpg", "missing.png", "tall.pgm", "half.bmp", "half.jpg"}) {
        EXPECT_FALSE(Load(m_Home.filePath(szName))) << szName;
        EXPECT_TRUE(
            m_strWhy.startsWith("Image of up to 32767 rows and columns and 33554432 pixels could not be loaded: "))
            << m_strWhy.toStdString();
    }
}

// Eight times 0.1 is a hair below 0.8, nine times below 0.9 and so on.
TEST_F(Carving, AStepThatGrowsBeyondTheToolIsToldAhead)
{
    stImgCarvingData data;
    data.pImage = std::make_unique<QImage>(40, 40, QImage::Format_Grayscale8);
    AppConfig::m_fEndMillDia = 1.0;
    data.pInfo->fLength = data.pInfo->fWidth = 4.0;
    data.pInfo->fXStep = data.pInfo->fYStep = 0.8;
    data.pInfo->fDepth = 5.0;
    EXPECT_EQ(NoticeOfSteps(data, false).toStdString(), "");
    EXPECT_EQ(NoticeOfSteps(data, true).toStdString(),
              "The step of 1.1 mm in pass 3 is wider than the End-Mill of 1 mm: material stays in between");
}

TEST_F(Carving, JobsThatWouldNeverEndOrHaveNoRowAreRefused)
{
    stImgCarvingData data;
    AppConfig::m_fEndMillDia = 3.0;
    EXPECT_EQ(WhyNotCarved(data).toStdString(), "No Image loaded");
    data.pImage = std::make_unique<QImage>(40, 10, QImage::Format_Grayscale8);
    stImgCarvingInfo& info = *data.pInfo;
    info.fLength = 40.0;
    info.fXStep = info.fYStep = 1.0;
    EXPECT_EQ(WhyNotCarved(data).toStdString(), "");
    const struct
    {
        double& fField;
        std::vector<double> bad;
        const char* szWhy;
    } lst[] = {{info.fLength, {0.0, -1.0, std::nan("")}, "Carving Length is not defined"},
               {info.fLength, {0.001}, "Carving Length is too small for the image"},
               {info.fWidth, {0.0, -1.0, std::nan("")}, "Carving Width is not defined"},
               {info.fDepth, {0.0, -1.0, std::nan("")}, "Carving Depth is not defined"},
               {info.fDepth, {214749.0, HUGE_VAL}, "Carving is too large: no axis can count so far"},
               {info.fZStep, {0.0, -1.0, 1e-5, std::nan("")}, "Carving Z-Step is not defined"},
               // 12 pixels of tool over 10 rows: the grid's rows are -2 / 1 + 1.
               {AppConfig::m_fEndMillDia, {12.0}, "Image is too low for the End-Mill: there is no row to carve"}};
    for (const auto& entry : lst)
        for (const double fBad : entry.bad) {
            const double fGood = std::exchange(entry.fField, fBad);
            EXPECT_EQ(WhyNotCarved(data).toStdString(), entry.szWhy) << fBad;
            entry.fField = fGood;
        }
    AppConfig::m_fEndMillDia = 11.0;   // -1 / 1 + 1 is none either; with steps of two pixels it is one
    EXPECT_NE(WhyNotCarved(data), QString());
    info.fXStep = info.fYStep = 2.0;
    EXPECT_EQ(WhyNotCarved(data).toStdString(), "");

    info.iStartRow = 1;   // rows of two pixels
    EXPECT_EQ(WhyNotStarted(data).toStdString(), "");
    info.iStartRow = 10;
    EXPECT_EQ(WhyNotStarted(data).toStdString(), "Start Row is behind the last row of the carving");
}

// Pixels are whole pulses, four decimals at the most.
TEST_F(Carving, SizesAndStepsAreFittedToPixelsOfWholePulses)
{
    std::fill_n(AppConfig::m_fAxisMovPerPulse, MAX_AXES, 0.003);
    const QImage image(300, 70, QImage::Format_Grayscale8);
    stImgCarvingInfo info;
    info.fLength = 180.0;   // 0.6 is 200 pulses
    EXPECT_FALSE(FitToLength(info, image));
    EXPECT_EQ(info.fLength, 180.0);
    EXPECT_DOUBLE_EQ(info.fWidth, 42.0);
    EXPECT_DOUBLE_EQ(info.fXStep, 0.6);
    EXPECT_DOUBLE_EQ(info.fYStep, 0.6);

    info.fLength = 100.0;   // 0.3333 to 0.336
    EXPECT_TRUE(FitToLength(info, image));
    EXPECT_DOUBLE_EQ(info.fLength, 100.8);
    EXPECT_DOUBLE_EQ(info.fWidth, 23.52);
    EXPECT_DOUBLE_EQ(PixelOf(info, image), 0.336);

    info.fWidth = 40.0;   // 0.5714 to 0.573
    EXPECT_TRUE(FitToWidth(info, image));
    EXPECT_DOUBLE_EQ(info.fWidth, 40.11);
    EXPECT_DOUBLE_EQ(info.fLength, 171.9);

    double fStep = 1.2;
    EXPECT_FALSE(FitStep(fStep, 0.6));
    fStep = 1.7999;
    EXPECT_TRUE(FitStep(fStep, 0.6));
    EXPECT_DOUBLE_EQ(fStep, 1.2);
    EXPECT_FALSE(FitStep(fStep, 0.0));
}
