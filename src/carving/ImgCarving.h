#pragma once
#include <QImage>
#include <QString>

#include <memory>
#include <vector>

// A relief out of a grey picture: each grey level is a depth, the lightest stays at the surface. mm; X runs with the
// columns, Y against the rows. Written by the interface while no operation runs, otherwise by the one who carves.

// Lengths in rows and columns, in one piece of memory: map[row][column].
class CLengthMap
{
public:
    void Allocate(int iRows, int iCols)
    {
        m_uCols = static_cast<size_t>(iCols);
        m_lst.assign(static_cast<size_t>(iRows) * m_uCols, 0.0);
    }
    void Free() { std::vector<double>().swap(m_lst); }
    bool IsEmpty() const { return m_lst.empty(); }
    double* operator[](int iRow) { return m_lst.data() + static_cast<size_t>(iRow) * m_uCols; }
    const double* operator[](int iRow) const { return m_lst.data() + static_cast<size_t>(iRow) * m_uCols; }

private:
    size_t m_uCols = 0;
    std::vector<double> m_lst;
};

enum eCarvingType : qint32
{
    CARVING_3D = 0,    // the tool follows the slope from cell to cell
    CARVING_25D = 1,   // square steps
};

struct stImgCarvingInfo
{
    double fLength = 200.0;   // along X, the picture's width
    double fWidth = 200.0;    // along Y, the picture's height
    double fDepth = 10.0;     // of the darkest level
    qint32 iCarvingType = CARVING_3D;
    double fReserved[3] = {0.2, 2.5, 12.0};   // read by nothing
    quint16 iStartRow = 0;                    // of the picture, to resume a job
    CLengthMap ppZMap;                        // Z of the tool's tip in each cell, 0 or below; minus zero is one of them
    qint16 iRows = 100, iCols = 100;          // of the grid
    double fXStep = 0.2, fYStep = 0.2;        // between its columns and rows; building the grid fits them to the pixels
    double fZStep = 1.0;                      // of one level
    // As the last grid had them.
    qint16 iToolPixels = 15, iXStepPixels = 10, iYStepPixels = 10;
};

struct stImgCarvingData
{
    std::unique_ptr<QImage> pImage;   // null until one is loaded; one byte a pixel
    std::unique_ptr<stImgCarvingInfo> pInfo = std::make_unique<stImgCarvingInfo>();
    CLengthMap ppRows;   // filled by nothing
};

// Depths at the pixels, 0 at the surface and positive below.
struct stImgZProfileInfo
{
    qint16 iRows = 0, iCols = 0;
    double fDepth = 0.0;
    CLengthMap ppDepth;
};

inline constexpr int MAX_IMAGE_SIDE = 32767;   // rows and columns are counted in 16 bits

// Null, and strWhy says why in the operator's words. strNotice: what is odd about one that was loaded. Any thread.
std::unique_ptr<QImage> LoadCarvingImage(const QString& strPath, QString& strWhy, QString& strNotice);

// The lowest and the highest grey level.
void FindGreyLevels(const QImage& image, unsigned char& iMin, unsigned char& iMax);
// Stretched to the levels that the picture holds. One of a single level is cut to the full depth, unless it is white.
void MakeDepthMap(const QImage& image, double fDepth, stImgZProfileInfo& map);
// The tool's heights on a flat end-mill of m_fEndMillDia: it rests on the highest point below it. Sets the grid, its
// size, the steps that it really has, and the pixel counts.
void MakeCarvingGrid(const stImgZProfileInfo& map, stImgCarvingInfo& info);

// Why the job can't be carved, in the operator's words; empty: it can.
QString WhyNotCarved(const stImgCarvingData& data);
// The same, and a start row that is not there: the tool would go beside the work and down to its surface for nothing.
QString WhyNotStarted(const stImgCarvingData& data);
// What is odd about the steps of a job that can be started: each pass fits them to the pixels anew, and a pixel that is
// a hair below its rounded size makes them grow, in the end beyond the tool. Empty: nothing.
QString NoticeOfSteps(const stImgCarvingData& data, bool bMultiPass);
