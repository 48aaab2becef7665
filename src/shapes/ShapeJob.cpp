#include "shapes/ShapeJob.h"

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

QStringList CShapeJob::MakeEllipsePocket(stEllipse& outline)
{
    outline.bHole = true;
    QString strWhy;
    std::vector<stEngShape> lstRings = MakeEllipseRings(outline, strWhy);
    QStringList lstWhy(strWhy);
    for (stEngShape& ring : lstRings) {
        ring.Common().strShapeName = outline.strShapeName;
        ring.Common().fDepth = outline.fDepth;
        lstWhy += CreateEllipsePoints(*ring.pEllipse);
        m_stCuttingInfo.lstShapes.push_back(std::move(ring));
    }
    return lstWhy;
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
