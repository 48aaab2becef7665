// The shapes screen: a movement of the finger over a work area of 10,000 polygons, also while a vertex of one is
// dragged, the drawing of all of it anew, and a keystroke of a text that is traced.
//   cmake --build build --target shapes_screen && QT_QPA_PLATFORM=offscreen build/bin/shapes_screen
#include "common/Paths.h"
#include "screens/shapes/DlgEditPolygon.h"
#include "screens/shapes/DlgShapes.h"
#include "widgets/Look.h"
#include "window/MainWindow.h"

#include <QApplication>
#include <QListWidget>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>
#include <memory>

namespace {
constexpr int POLYGONS = 10000;

// The window with the shapes screen in front, which holds polygons of 6 points.
struct stShapesWindow
{
    stShapesWindow()
    {
        CPaths::SetHomeFolder(folder.path());
        pWindow = std::make_unique<MainWindow>();
        pWindow->show();
        pWindow->on_Btn_ShapeCarving_clicked();
        pScreen = pWindow->findChild<CDlgShapes*>();
        pView = pScreen->findChild<CMyView*>();
        auto* pList = pScreen->findChild<QListWidget*>(QStringLiteral("Lw_Shapes"));
        for (int n = 0; n < POLYGONS; ++n) {
            stEngShape shape = stEngShape::NewPolygon();
            const double fX = n % 100 * 3.0, fY = n / 100 * 2.0;
            shape.pPolygon->lstVertices = {{fX, fY},       {fX + 2.0, fY}, {fX + 2.5, fY + 0.8}, {fX + 2.0, fY + 1.6},
                                           {fX, fY + 1.6}, {fX, fY}};
            pScreen->m_stCuttingInfo.lstShapes.push_back(shape);
            pList->addItem(QStringLiteral("Shape_%1").arg(n + 1));
        }
        pList->setCurrentRow(POLYGONS - 1);
        pScreen->DrawWorkArea();
        QCoreApplication::processEvents();
    }

    // A movement of the finger and the painting that follows from it.
    void Move(QPoint at, Qt::MouseButtons buttons)
    {
        QMouseEvent move(QEvent::MouseMove, at, pView->mapToGlobal(at), Qt::NoButton, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(pView, &move);
        pView->repaint();
    }

    QTemporaryDir folder;
    std::unique_ptr<MainWindow> pWindow;
    CDlgShapes* pScreen;
    CMyView* pView;
};

void BM_MoveOverTenThousandPolygons(benchmark::State& state)
{
    stShapesWindow shown;
    int n = 0;
    for (auto _ : state) shown.Move(QPoint(60 + n++ % 300, 150), Qt::NoButton);
}
BENCHMARK(BM_MoveOverTenThousandPolygons)->Unit(benchmark::kMillisecond);

void BM_DragVertexAmongTenThousandPolygons(benchmark::State& state)
{
    stShapesWindow shown;
    auto* pList = shown.pScreen->findChild<QListWidget*>(QStringLiteral("Lw_Shapes"));
    // The dialog runs a loop of its own, in which the drag is measured.
    QTimer::singleShot(0, shown.pScreen, [&] {
        auto* pDialog = shown.pScreen->findChild<CDlgEditPolygon*>();
        pDialog->LWSelectString(shown.pScreen->m_stCuttingInfo.lstShapes.back().Path().front());
        int n = 0;
        for (auto _ : state) shown.Move(QPoint(60 + n++ % 300, 150), Qt::LeftButton);
        pDialog->Keep();
    });
    QMetaObject::invokeMethod(shown.pScreen, "on_Lw_Shapes_itemDoubleClicked",
                              Q_ARG(QListWidgetItem*, pList->item(POLYGONS - 1)));
}
BENCHMARK(BM_DragVertexAmongTenThousandPolygons)->Unit(benchmark::kMillisecond);

void BM_DrawAllAnew(benchmark::State& state)
{
    stShapesWindow shown;
    for (auto _ : state) {
        shown.pScreen->DrawWorkArea();
        shown.pView->repaint();
    }
}
BENCHMARK(BM_DrawAllAnew)->Unit(benchmark::kMillisecond);

void BM_KeystrokeOfText(benchmark::State& state)
{
    stShapesWindow shown;
    QTimer::singleShot(0, shown.pScreen, [&] {
        auto* pEdit = shown.pScreen->findChild<QPlainTextEdit*>(QStringLiteral("TextToCut"));
        int n = 0;
        for (auto _ : state) {
            pEdit->setPlainText(QStringLiteral("Mill %1\nquick brown").arg(n++ % 100));
            shown.pView->repaint();
        }
        for (QPushButton* pOk : shown.pScreen->findChildren<QPushButton*>(QStringLiteral("Btn_Ok")))
            if (pOk->isVisible()) pOk->click();
    });
    QMetaObject::invokeMethod(shown.pScreen, "on_Btn_ShapeFromTxt_clicked");
}
BENCHMARK(BM_KeystrokeOfText)->Unit(benchmark::kMillisecond);
}   // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    CLook::Apply(app);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
