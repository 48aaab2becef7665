#include "screens/shapes/DlgShapeSource.h"

#include "common/PictureFile.h"
#include "config/AppConfig.h"
#include "widgets/ButtonStyle.h"

#include <QEventLoop>
#include <QImageReader>
#include <QPointer>
#include <QPushButton>

#include <algorithm>
#include <utility>

static constexpr QPoint PLACE(525, 0);
static constexpr int LARGEST_GUIDE = 1600;   // pixels a side: zoomed in seven times, the view shows less

CDlgShapeSource::CDlgShapeSource(CShapeHost& screen, QWidget* pParent) : QDialog(pParent), m_Screen(screen)
{
    setWindowFlags(Qt::Widget);
    setAutoFillBackground(true);
    move(PLACE);
    hide();
}

CDlgShapeSource::~CDlgShapeSource()
{
    Finish();
}

// A modal dialog would keep the finger off the drawing.
void CDlgShapeSource::Run()
{
    if (IsRunning()) return;
    QEventLoop loop;
    m_pLoop = &loop;
    show();
    raise();
    const QPointer<CDlgShapeSource> alive(this);
    loop.exec();   // ends also where the program does
    if (alive) Finish();
}

void CDlgShapeSource::Finish()
{
    if (QEventLoop* pLoop = std::exchange(m_pLoop, nullptr)) pLoop->exit();
    hide();
}

double ButtonValue(const QPushButton* pButton)
{
    return pButton->text().section(QLatin1Char('\n'), 0, 0).toDouble();
}

std::optional<double> AskShown(CScreenHost& host, QPushButton* pButton, const stNumberField& field)
{
    pButton->setStyleSheet(BTN_BKGND_BLUE);
    std::optional<double> fNew = AskNumber(host, nullptr, field, ButtonValue(pButton));
    pButton->setStyleSheet(BTN_BKGND_GRAY);
    // A range whose both ends are 0 checks nothing.
    if (fNew) fNew = std::clamp(*fNew, field.fRange.x, std::max(field.fRange.x, field.fRange.y));
    return fNew;
}

stFloatPoint Range(double fLow, double fHigh)
{
    stFloatPoint range;
    range.x = fLow;
    range.y = fHigh;
    return range;
}

stFloatPoint DepthRange(double fDeepest)
{
    const double fLow = AppConfig::m_bHomeSensorsUsed ? AppConfig::m_fAxisNegDirLimit[Z_AXIS] : fDeepest;
    return Range(fLow, -AppConfig::m_fAxisMovPerPulse[Z_AXIS]);
}

std::unique_ptr<QImage> LoadGuide(CScreenHost& host, const QString& strFile)
{
    QImageReader reader(strFile);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size();
    if (size.width() > LARGEST_GUIDE || size.height() > LARGEST_GUIDE)
        reader.setScaledSize(size.scaled(LARGEST_GUIDE, LARGEST_GUIDE, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    QString strWhy = WhyNotWhole(strFile);
    auto pImage = std::make_unique<QImage>(strWhy.isEmpty() ? reader.read() : QImage());
    if (!pImage->isNull()) return pImage;
    if (strWhy.isEmpty()) strWhy = WhyTooLarge(strFile);
    host.AddLogMsg(QStringLiteral("Unable to load the image\n") + strFile +
                       (strWhy.isEmpty() ? strWhy : QLatin1Char('\n') + strWhy),
                   MSG_ERROR);
    return nullptr;
}
