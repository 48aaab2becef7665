#include "shapes/ShapeJob.h"

#include "config/AppConfig.h"
#include "shapes/EllipsePath.h"
#include "shapes/Pocket.h"
#include "shapes/PolygonEdit.h"

#include <algorithm>
#include <utility>

stPolygon* CShapeJob::PolygonAt(size_t uIndex) const
{
    return uIndex < Count() ? m_stCuttingInfo.lstShapes[uIndex].pPolygon.get() : nullptr;
}

stEllipse* CShapeJob::EllipseAt(size_t uIndex) const
{
    return uIndex < Count() ? m_stCuttingInfo.lstShapes[uIndex].pEllipse.get() : nullptr;
}

stPolygon* CShapeJob::LastPolygon() const
{
    return Count() == 0 ? nullptr : m_stCuttingInfo.lstShapes.back().pPolygon.get();
}

void CShapeJob::RemoveLastPoint()
{
    stPolygon* pPolygon = LastPolygon();
    if (pPolygon && !pPolygon->bHole && !pPolygon->lstVertices.empty()) pPolygon->lstVertices.pop_back();
}

void CShapeJob::Erase(size_t uIndex)
{
    m_stCuttingInfo.lstShapes.erase(m_stCuttingInfo.lstShapes.begin() + static_cast<std::ptrdiff_t>(uIndex));
}

void CShapeJob::EraseFrom(size_t uFirst)
{
    if (uFirst < Count()) m_stCuttingInfo.lstShapes.resize(uFirst);
}

void CShapeJob::Swap(size_t uIndex, size_t uOther)
{
    std::swap(m_stCuttingInfo.lstShapes[uIndex], m_stCuttingInfo.lstShapes[uOther]);
}

// ---- What a dialog adds ---------------------------------------------------------------------------------------------

void CShapeJob::BeginAdding()
{
    m_uShapeCountBefore = Count();
    m_Outline = {};
}

std::span<const stEngShape> CShapeJob::Added() const
{
    const std::span<const stEngShape> all(m_stCuttingInfo.lstShapes);
    return all.subspan(std::min(m_uShapeCountBefore, all.size()));
}

stEllipse& CShapeJob::AddEllipse(const QString& strName)
{
    const stEngShape& shape = m_stCuttingInfo.lstShapes.emplace_back(stEngShape::NewEllipse());
    shape.pEllipse->strShapeName = strName;
    return *shape.pEllipse;
}

stPolygon& CShapeJob::AddPolygon(const QString& strName, ShapePath path)
{
    const stEngShape& shape = m_stCuttingInfo.lstShapes.emplace_back(stEngShape::NewPolygon());
    shape.pPolygon->strShapeName = strName;
    shape.pPolygon->lstVertices = std::move(path);
    return *shape.pPolygon;
}

void CShapeJob::SetAddedDepth(double fDepth)
{
    for (const stEngShape& shape : Added()) shape.Common().fDepth = fDepth;
}

void CShapeJob::SetFirstAddedDepth(double fDepth)
{
    if (stPolygon* pPolygon = PolygonAt(m_uShapeCountBefore)) pPolygon->fDepth = fDepth;
    if (m_Outline.pPolygon) m_Outline.pPolygon->fDepth = fDepth;   // which comes back without its pocket
}

void CShapeJob::NumberAdded(const stShapesCommonInfo& common)
{
    const stShapesCommonInfo first = common;   // may be one of those that change
    int iNumber = 0;
    for (const stEngShape& shape : Added()) {
        shape.Common().strShapeName = first.strShapeName + QStringLiteral("_%1").arg(++iNumber);
        shape.Common().fDepth = first.fDepth;
    }
}

// ---- Pockets --------------------------------------------------------------------------------------------------------

static bool IsRingOf(const stEngShape& shape, const stEllipse* pOutline)
{
    return pOutline && shape.pEllipse && shape.pEllipse->pOutline.lock().get() == pOutline;
}

size_t CShapeJob::OutlineOf(size_t uIndex) const
{
    const auto& lst = m_stCuttingInfo.lstShapes;
    const stEllipse* pRing = EllipseAt(uIndex);
    for (size_t n = 0; pRing && pRing->bRing && n < lst.size(); ++n)
        if (IsRingOf(lst[uIndex], lst[n].pEllipse.get())) return n;
    return uIndex;
}

std::vector<size_t> CShapeJob::RingsOf(size_t uOutline) const
{
    std::vector<size_t> rings;
    for (size_t n = 0; n < Count(); ++n)
        if (IsRingOf(m_stCuttingInfo.lstShapes[n], EllipseAt(uOutline))) rings.push_back(n);
    return rings;
}

QStringList CShapeJob::MakeEllipsePocket(size_t uOutline)
{
    // Named as by Ok, so that a notice tells the name that stays.
    return MakeRings(uOutline, EllipseAt(uOutline)->strShapeName, Count() + 1 - m_uShapeCountBefore);
}

QStringList CShapeJob::MakeRings(size_t uOutline, const QString& strName, size_t uFirst)
{
    const std::shared_ptr<stEllipse> pOutline = m_stCuttingInfo.lstShapes[uOutline].pEllipse;
    pOutline->bHole = true;
    pOutline->bRing = false;   // it may have been one of a pocket that is gone
    QString strWhy;
    std::vector<stEngShape> lstRings = MakeEllipseRings(*pOutline, strWhy);
    QStringList lstWhy(strWhy);
    for (stEngShape& ring : lstRings) {
        ring.Common().strShapeName = strName + QStringLiteral("_%1").arg(uFirst++);
        ring.Common().fDepth = pOutline->fDepth;
        ring.pEllipse->bRing = true;
        ring.pEllipse->pOutline = pOutline;
        lstWhy += CreateEllipsePoints(*ring.pEllipse);
        m_stCuttingInfo.lstShapes.push_back(std::move(ring));
    }
    return lstWhy;
}

size_t CShapeJob::BeginEditing(size_t uIndex)
{
    auto& lst = m_stCuttingInfo.lstShapes;
    const stEngShape edited = lst[uIndex];
    const std::vector<size_t> rings = RingsOf(uIndex);
    m_uPlaceOfRings = rings.empty() ? SIZE_MAX : rings.front();
    m_lstBefore = lst;
    std::erase_if(lst, [&](const stEngShape& shape) { return IsRingOf(shape, edited.pEllipse.get()); });
    BeginAdding();
    return uIndex - static_cast<size_t>(std::ranges::count_if(rings, [&](size_t n) { return n < uIndex; }));
}

void CShapeJob::EndEditing(bool bKeep)
{
    auto& lst = m_stCuttingInfo.lstShapes;
    const auto At = [&](size_t n) { return lst.begin() + static_cast<std::ptrdiff_t>(n); };
    if (!bKeep)
        lst = m_lstBefore;
    else if (m_uPlaceOfRings < m_uShapeCountBefore)
        std::rotate(At(m_uPlaceOfRings), At(m_uShapeCountBefore), lst.end());
    m_lstBefore.clear();
}

// Named on as the old rings were.
QStringList CShapeJob::RemakePocket(size_t uOutline)
{
    const std::vector<size_t> rings = RingsOf(uOutline);
    QString strName = EllipseAt(uOutline)->strShapeName;
    size_t uFirst = 1;
    if (!rings.empty()) {
        const QString strOld = EllipseAt(rings.front())->strShapeName;
        strName = strOld.section(QLatin1Char('_'), 0, -2);
        uFirst = strOld.section(QLatin1Char('_'), -1).toUInt();
    }
    const size_t uAt = BeginEditing(uOutline);
    const QStringList lstWhy = QStringList(CreateEllipsePoints(*EllipseAt(uAt))) + MakeRings(uAt, strName, uFirst);
    EndEditing(true);
    return lstWhy;
}

QStringList CShapeJob::RemakeEllipses()
{
    static constexpr qsizetype MAX_NAMES = 10;
    QStringList lstWhy, drawn;
    int iMade = 0;
    const std::vector<stEngShape> lstAll = m_stCuttingInfo.lstShapes;   // pockets move the entries about
    for (const stEngShape& shape : lstAll) {
        if (shape.pPolygon && shape.pPolygon->bHole) drawn += shape.pPolygon->strShapeName;
        const auto& pEllipse = shape.pEllipse;
        if (!pEllipse || !pEllipse->pOutline.expired()) continue;   // rings come with their pocket
        ++iMade;
        if (!pEllipse->bHole || pEllipse->bRing) {
            lstWhy += CreateEllipsePoints(*pEllipse);
            continue;
        }
        const auto found = std::ranges::find(std::as_const(m_stCuttingInfo.lstShapes), pEllipse, &stEngShape::pEllipse);
        lstWhy += RemakePocket(static_cast<size_t>(found - m_stCuttingInfo.lstShapes.cbegin()));
    }
    lstWhy.removeAll(QString());
    if (iMade > 0)
        lstWhy.prepend(QStringLiteral("Ellipses made anew for the End-Mill of %1 mm: %2")
                           .arg(AppConfig::m_fEndMillDia)
                           .arg(iMade));
    if (drawn.isEmpty()) return lstWhy;
    QString strNames = drawn.mid(0, MAX_NAMES).join(QStringLiteral(", "));
    if (drawn.size() > MAX_NAMES) strNames += QStringLiteral(" and %1 more").arg(drawn.size() - MAX_NAMES);
    return lstWhy << QStringLiteral("Drawn pockets keep the path of the old End-Mill, draw them anew: ") + strNames;
}

// An ellipse that is new is itself the first of the dialog's entries; one that is not lies before them.
void CShapeJob::EraseRings(size_t uOutline)
{
    EraseFrom(std::max(m_uShapeCountBefore, uOutline + 1));
}

bool CShapeJob::MakePocket(const stDisplayScale& scale, double fEndMillDia)
{
    const stEngShape outline = m_stCuttingInfo.lstShapes.back();
    CloseShape(outline.pPolygon->lstVertices);
    std::vector<ShapePath> lstRings = MakePocketRings(outline.pPolygon->lstVertices, scale, fEndMillDia);
    if (lstRings.empty()) return false;
    m_Outline = outline;
    EraseAdded();   // the rings are cut in the outline's place
    for (ShapePath& path : lstRings) {
        stPolygon& ring = AddPolygon(QStringLiteral("Shape"), std::move(path));
        ring.fDepth = m_Outline.pPolygon->fDepth;   // as the button shows it
        ring.bHole = true;
    }
    return true;
}

void CShapeJob::DropPocket()
{
    EraseAdded();
    m_stCuttingInfo.lstShapes.push_back(std::exchange(m_Outline, {}));
}
